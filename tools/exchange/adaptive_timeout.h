// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How long to wait for an answer: what the line shows plus four times how much it varies, as
// transport protocols do it, doubled after each time-out, between a floor and a ceiling.

#pragma once

#include <QtGlobal>

namespace fxtools {

struct TimeoutLimits
{
    int floorMs = 250;      // the longest frame takes 150 ms at 9600 baud before it can be answered
    int ceilingMs = 1000;   // what is waited before anything is known
    int quickFloorMs = 50;  // on a line that answers so fast that it cannot be a slow one

    static TimeoutLimits fixed(int timeoutMs) { return {timeoutMs, timeoutMs, timeoutMs}; }
};

class AdaptiveTimeout
{
public:
    explicit AdaptiveTimeout(const TimeoutLimits& limits) : m_limits(limits) {}

    void answered(qint64 responseUs);
    void timedOut();

    int milliseconds() const;
    const TimeoutLimits& limits() const { return m_limits; }
    qint64 typicalResponseUs() const { return m_smoothedUs; }  // 0: nothing was answered yet

private:
    TimeoutLimits m_limits;
    qint64 m_smoothedUs = 0;
    qint64 m_variationUs = 0;
    int m_backOff = 0;  // doublings
};

}  // namespace fxtools
