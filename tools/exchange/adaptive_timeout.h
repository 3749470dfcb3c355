// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How long to wait for a reply: the smoothed response time plus four times its variation, as in
// transport protocols, doubled after each time-out, between a floor and a ceiling. A late reply
// counts too, so that the time-out grows to what a slow PLC needs.

#pragma once

#include <QtGlobal>

namespace fxtools {

struct TimeoutLimits
{
    int floorMs = 250;      // the longest request takes 150 ms at 9600 baud
    int firstMs = 1000;     // until the first reply, and the most without slow replies
    int ceilingMs = 5000;   // for slow replies
    int quickFloorMs = 50;  // on a line that is too fast to be a slow serial line

    static TimeoutLimits fixed(int timeoutMs)
    {
        return {timeoutMs, timeoutMs, timeoutMs, timeoutMs};
    }
};

class AdaptiveTimeout
{
public:
    explicit AdaptiveTimeout(const TimeoutLimits& limits) : m_limits(limits) {}

    void answered(qint64 responseUs);  // in time or late
    void timedOut();

    int milliseconds() const;
    const TimeoutLimits& limits() const { return m_limits; }
    qint64 typicalResponseUs() const { return m_smoothedUs; }  // 0: no reply yet

private:
    TimeoutLimits m_limits;
    qint64 m_smoothedUs = 0;
    qint64 m_variationUs = 0;
    int m_backOff = 0;  // doublings
};

}  // namespace fxtools
