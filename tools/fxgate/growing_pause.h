// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How long to wait before what has failed is tried again: a second, then twice as long each time up
// to a limit. Up to a quarter is taken off by chance, so that what failed together does not come
// back together. After a minute of good work it begins anew.

#pragma once

#include <QtGlobal>

#include <algorithm>

namespace fxgate {

class GrowingPause
{
public:
    static constexpr qint64 firstMs = 1000;
    static constexpr qint64 goodWorkMs = 60000;

    explicit GrowingPause(qint64 longestMs) : m_longestMs(longestMs) {}

    // After work for so long; `chance` is from 0 to 1.
    qint64 next(qint64 workedMs, double chance)
    {
        if (workedMs >= goodWorkMs)
            m_nextMs = firstMs;
        const double pauseMs = static_cast<double>(m_nextMs) * (1 - chance / 4);
        m_nextMs = std::min(2 * m_nextMs, m_longestMs);
        return static_cast<qint64>(pauseMs);
    }

private:
    qint64 m_longestMs;
    qint64 m_nextMs = firstMs;
};

}  // namespace fxgate
