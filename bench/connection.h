// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A driver that is set up, and what measurements give it: monitored ranges and replies.

#pragma once

#include "driver/intf.h"

#include <QMutex>

#include <vector>

namespace fxbench {

constexpr int station = 1;
constexpr int firstFilled = 1000;  // the first "D" word of the cache's filling

// A monitored range of "D" words.
KEY_ADDRESS wordKey(int stationNo, int startIndex, int length);

// Values of `wordCount` words: their number, or with every `changedEach`-th one `variant` off.
QByteArray wordPattern(int wordCount, int variant, int changedEach);

// The reply that carries those value bytes.
QByteArray readReply(const QByteArray& values);

// A driver that is set up, with the host's side of the connection.
class Connection
{
public:
    // `areaCount` areas of "D" words are in the cache, above the block that is polled.
    explicit Connection(int areaCount = 0);

private:
    void fillCache(int areaCount);

    std::vector<unsigned char> m_memory;
    std::vector<unsigned short> m_recipeWords;
    QMutex m_mutex;
};

}  // namespace fxbench
