// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/trend_span.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace fxview {

namespace {

// In seconds, up to a day.
constexpr std::array<qint64, 17> timeSteps = {1,   2,   5,    10,   15,   30,    60,    120,  300,
                                              600, 900, 1800, 3600, 7200, 14400, 43200, 86400};

}  // namespace

void TrendSpan::setLength(qint64 lengthMs)
{
    m_lengthMs = std::clamp(lengthMs, shortestMs, longestMs);
}

void TrendSpan::zoom(double factor, qint64 aroundMs)
{
    const auto before = static_cast<double>(m_lengthMs);
    setLength(std::llround(before * factor));
    if (m_stoppedMs) {
        const double part = static_cast<double>(m_lengthMs) / before;
        m_stoppedMs = aroundMs + std::llround(static_cast<double>(*m_stoppedMs - aroundMs) * part);
    }
}

void TrendSpan::pan(qint64 byMs, qint64 nowMs)
{
    const qint64 end = endMs(nowMs) + byMs;
    if (end >= nowMs)
        follow();
    else
        m_stoppedMs = std::max(end, nowMs - longestMs);
}

QVector<double> marksBetween(double lowest, double highest, int most)
{
    const double width = highest - lowest;
    if (!(width > 0) || most < 1 || !std::isfinite(width))
        return {};
    double step = std::pow(10, std::floor(std::log10(width / most)));
    for (const double factor : {2.0, 2.5, 2.0, 1.0}) {
        if (std::floor(highest / step) - std::ceil(lowest / step) < most)
            break;
        step *= factor;
    }
    QVector<double> marks;
    const double first = std::ceil(lowest / step);
    const double count = std::floor(highest / step) - first + 1;
    for (int number = 0; number < count; ++number)
        marks += (first + number) * step + 0.0;  // no "-0"
    return marks;
}

QVector<qint64> timeMarks(qint64 fromMs, qint64 toMs, int most, qint64 aheadOfUtcMs)
{
    const auto fits = [&](qint64 step) { return (toMs - fromMs) / (step * 1000) < most; };
    const auto* const step = std::find_if(timeSteps.begin(), timeSteps.end(), fits);
    const qint64 stepMs = (step == timeSteps.end() ? timeSteps.back() : *step) * 1000;
    QVector<qint64> marks;
    qint64 mark = (fromMs + aheadOfUtcMs + stepMs - 1) / stepMs * stepMs - aheadOfUtcMs;
    for (; mark <= toMs; mark += stepMs)
        marks += mark;
    return marks;
}

}  // namespace fxview
