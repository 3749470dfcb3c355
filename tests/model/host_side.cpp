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

Host::Host() : memory(60117, 0), recipe(recipeWordCount, 0)
{
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

std::string textOf(const VARIABLE& request)
{
    const std::string bytes = hexOf(request.data, sizeof request.data);
    return std::to_string(request.tag) + ":" + std::to_string(request.stationNo) + "#" +
           request.registerType.toStdString() + std::to_string(request.addressIndex) + "(" +
           std::to_string(request.count) + ")" + bytes.substr(0, bytes.find_last_not_of('0') + 1);
}

std::string textOf(const FRAME_PRO& frame)
{
    const int length = std::max(0, std::min(frame.frameLength, recordBytes));
    return "frame " + hexOf(frame.frame, static_cast<std::size_t>(length)) + " " +
           std::to_string(frame.frameLength) + "," + std::to_string(frame.replyLength) + "," +
           std::to_string(frame.isRead) + "," + std::to_string(frame.replyDataChars) + "," +
           std::to_string(frame.spare) + " for " + textOf(frame.variable);
}
