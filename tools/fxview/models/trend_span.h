// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The part of the history that a trend shows: up to now, or up to a moment where somebody has
// stopped it; and where the marks of its axes are.

#pragma once

#include <QVector>
#include <QtGlobal>

#include <optional>

namespace fxview {

class TrendSpan
{
public:
    static constexpr qint64 shortestMs = 1000;
    static constexpr qint64 longestMs = qint64(24) * 60 * 60 * 1000;

    qint64 lengthMs() const { return m_lengthMs; }
    qint64 endMs(qint64 nowMs) const { return m_stoppedMs.value_or(nowMs); }
    qint64 beginMs(qint64 nowMs) const { return endMs(nowMs) - m_lengthMs; }
    bool isStopped() const { return m_stoppedMs.has_value(); }

    void stop(qint64 nowMs) { m_stoppedMs = endMs(nowMs); }
    void follow() { m_stoppedMs.reset(); }

    // Up to the same moment.
    void setLength(qint64 lengthMs);

    // A factor below 1 shows less of the time. What is shown at `aroundMs` stays where it is,
    // unless the trend follows the clock.
    void zoom(double factor, qint64 aroundMs);

    // Into the past if it is negative. At the present it follows the clock again.
    void pan(qint64 byMs, qint64 nowMs);

private:
    qint64 m_lengthMs = 60000;
    std::optional<qint64> m_stoppedMs;
};

// At most so many round numbers from the lowest to the highest.
QVector<double> marksBetween(double lowest, double highest, int most);

// The same for times, round as clocks show them that are so much ahead of UTC.
QVector<qint64> timeMarks(qint64 fromMs, qint64 toMs, int most, qint64 aheadOfUtcMs);

}  // namespace fxview
