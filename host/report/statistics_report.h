// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Statistics for people.

#pragma once

#include "host/statistics.h"

#include <QStringList>

namespace fxhost {

// What is known about a line after polling over it.
struct LineReport
{
    const Statistics& statistics;
    const Histogram& cycleTimes;
    qint64 elapsedUs;
    int timeoutMs;  // that the response times have led to
};

QStringList lineReportLines(const LineReport& report);
QStringList lineReportJson(const LineReport& report);

QStringList statisticsLines(const Statistics& statistics, qint64 elapsedUs);

}  // namespace fxhost
