// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Makes up keys and replies.

#include "bench/workload.h"

KEY_ADDRESS wordKey(int station, int startIndex, int length)
{
    KEY_ADDRESS key;
    key.stationNo = station;
    key.registerType = "D";
    key.startIndex = startIndex;
    key.length = length;
    return key;
}

QList<KEY_ADDRESS> wordRange(int station, int wordCount)
{
    constexpr int rangeWords = 1000;
    QList<KEY_ADDRESS> keys;
    for (int start = 0; start < wordCount; start += rangeWords)
        keys.append(wordKey(station, start, qMin(rangeWords, wordCount - start)));
    return keys;
}

QByteArray wordPattern(int wordCount, int variant, int changedEach)
{
    QByteArray values;
    for (int i = 0; i < wordCount; ++i) {
        const int value = i + (i % changedEach == 0 ? variant : 0);
        values.append(static_cast<char>(value & 0xFF));
        values.append(static_cast<char>((value >> 8) & 0xFF));
    }
    return values;
}

QByteArray readReply(const QByteArray& values)
{
    QByteArray summed = values.toHex().toUpper() + '\x03';
    unsigned int sum = 0;
    for (const char character : summed)
        sum += static_cast<unsigned char>(character);
    return '\x02' + summed + QByteArray(1, static_cast<char>(sum)).toHex().toUpper();
}
