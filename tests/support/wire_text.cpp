// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Readable text for the bytes on the wire, and back. Knows nothing of the driver, so that what it
// yields can judge the driver's frames.

#include "tests/support/wire_text.h"

#include <cstdlib>

namespace {
struct NamedByte
{
    unsigned char byte;
    const char* name;
};

constexpr NamedByte namedBytes[] = {{0x02, "STX"}, {0x03, "ETX"}, {0x06, "ACK"}, {0x15, "NAK"}};
constexpr char hexDigits[] = "0123456789ABCDEF";

std::string nameOf(unsigned char byte)
{
    for (const NamedByte& named : namedBytes) {
        if (named.byte == byte)
            return named.name;
    }
    return {hexDigits[byte / 16], hexDigits[byte % 16]};
}

char byteOf(const std::string& name)
{
    for (const NamedByte& named : namedBytes) {
        if (name == named.name)
            return static_cast<char>(named.byte);
    }
    return static_cast<char>(std::strtol(name.c_str(), nullptr, 16));
}

bool isPlain(unsigned char byte)
{
    return byte > 0x20 && byte < 0x7F && byte != '<';
}
}  // namespace

std::string wireText(const unsigned char* bytes, int length)
{
    std::string text;
    for (int i = 0; i < length; ++i) {
        if (isPlain(bytes[i]))
            text += static_cast<char>(bytes[i]);
        else
            text += '<' + nameOf(bytes[i]) + '>';
    }
    return text;
}

QByteArray wireBytes(const std::string& text)
{
    QByteArray bytes;
    for (std::string::size_type i = 0; i < text.size(); ++i) {
        if (text[i] != '<') {
            bytes.append(text[i]);
            continue;
        }
        const std::string::size_type end = text.find('>', i);
        bytes.append(byteOf(text.substr(i + 1, end - i - 1)));
        i = end;
    }
    return bytes;
}

QByteArray framedReply(const std::string& dataChars)
{
    unsigned int sum = 0x03;
    for (const char dataByte : wireBytes(dataChars))
        sum += static_cast<unsigned char>(dataByte);
    const char sumChars[] = {hexDigits[sum / 16 % 16], hexDigits[sum % 16], '\0'};
    return wireBytes("<STX>" + dataChars + "<ETX>" + sumChars);
}
