// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Two characters a byte, the upper half first.

#include "protocol/reply_decoding.h"

#include "driver/intf.h"
#include "protocol/frame_format.h"

#include <array>

namespace {

constexpr int bytesPerCounter = 4;

// Lower-case digits decode like upper-case ones, anything else to some digit: a reply that passed
// its sum is taken as it is.
constexpr unsigned int nibble(unsigned int character)
{
    if (character < 0x30 || character == 0x40)
        return 0;
    return character < 0x40 ? character - 0x30 : (character - 0x37) % 16;
}

constexpr std::array<unsigned char, 256> nibbles = [] {
    std::array<unsigned char, 256> table = {};
    for (unsigned int character = 0; character < table.size(); ++character)
        table[character] = static_cast<unsigned char>(nibble(character));
    return table;
}();

unsigned int nibbleAt(const QByteArray& reply, int position)
{
    return position < reply.size() ? nibbles[static_cast<unsigned char>(reply.at(position))] : 0U;
}

}  // namespace

int dataChars(const FRAME_PRO& frame)
{
    return qBound(0, frame.replyDataChars, charsPerByte * bytesPerCounter * fxMaxElements);
}

std::vector<unsigned char> decodeReply(const FRAME_PRO& frame, const QByteArray& reply)
{
    std::vector<unsigned char> bytes(static_cast<std::size_t>(dataChars(frame) / charsPerByte));
    int position = frame.isRead;
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(nibbleAt(reply, position) << 4 |
                                          nibbleAt(reply, position + 1));
        position += charsPerByte;
    }
    return bytes;
}
