// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The texts in which a host records what it was given.

#include "tests/model/host_side.h"

#include <algorithm>

std::function<int(int, int, QString&, int)> activeHost;

int callActiveHost(int linkNo, int stationNo, QString& text, int value)
{
    return activeHost ? activeHost(linkNo, stationNo, text, value) : 0;
}

void Host::refill()
{
    std::fill(memory.begin(), memory.end(), static_cast<unsigned char>(0));
    for (std::size_t word = 0; word < recipe.size(); ++word)
        recipe[word] = static_cast<unsigned short>(word * 257);
}

void Host::noteRecipeWords(int word)
{
    note("recipe " + hexOf(&recipe.at(static_cast<std::size_t>(word)), 4));
}

std::string hexOf(const void* bytes, std::size_t byteCount)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * byteCount);
    for (std::size_t i = 0; i < byteCount; ++i) {
        const unsigned char byte = static_cast<const unsigned char*>(bytes)[i];
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string describe(const VARIABLE& request)
{
    std::size_t used = sizeof request.data;  // zeros at the end are not worth showing
    while (used > 0 && request.data[used - 1] == 0)
        --used;
    return std::to_string(request.tag) + ":" + std::to_string(request.stationNo) + "#" +
           request.registerType.toStdString() + std::to_string(request.addressIndex) + "(" +
           std::to_string(request.count) + ")" + hexOf(request.data, used);
}

std::string describe(const FRAME_PRO& frame)
{
    const int length = std::max(0, std::min(frame.frameLength, fxRecordBytes));
    return "frame " + hexOf(frame.frame, static_cast<std::size_t>(length)) + " " +
           std::to_string(frame.frameLength) + "," + std::to_string(frame.replyLength) + "," +
           std::to_string(frame.isRead) + "," + std::to_string(frame.replyDataChars) + "," +
           std::to_string(frame.spare) + " for " + describe(frame.variable);
}
