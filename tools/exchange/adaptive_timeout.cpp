// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/adaptive_timeout.h"

#include <algorithm>

namespace fxtools {

namespace {

constexpr int maxBackOff = 5;
constexpr int quickFactor = 20;  // at 9600 baud the shortest reply takes a twentieth of the longest

}  // namespace

void AdaptiveTimeout::answered(qint64 responseUs)
{
    m_backOff = 0;
    if (m_smoothedUs == 0) {
        m_smoothedUs = std::max<qint64>(responseUs, 1);
        m_variationUs = responseUs / 2;
        return;
    }
    const qint64 deviationUs = qAbs(responseUs - m_smoothedUs);
    m_variationUs += (deviationUs - m_variationUs) / 4;
    m_smoothedUs = std::max<qint64>(m_smoothedUs + (responseUs - m_smoothedUs) / 8, 1);
}

void AdaptiveTimeout::timedOut()
{
    m_backOff = std::min(m_backOff + 1, maxBackOff);
}

int AdaptiveTimeout::milliseconds() const
{
    if (m_smoothedUs == 0)
        return m_limits.firstMs;
    const qint64 floorMs =
        qBound<qint64>(m_limits.quickFloorMs, quickFactor * m_smoothedUs / 1000, m_limits.floorMs);
    const qint64 expectedMs = (m_smoothedUs + 4 * m_variationUs) / 1000 + 1;
    const qint64 waitMs = std::max(expectedMs, floorMs) << m_backOff;
    const qint64 mostMs = std::max<qint64>(m_limits.firstMs, expectedMs);
    return static_cast<int>(std::min({waitMs, mostMs, qint64(m_limits.ceilingMs)}));
}

}  // namespace fxtools
