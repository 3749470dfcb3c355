// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Statistics for people.

#pragma once

#include "tools/exchange/adaptive_timeout.h"
#include "tools/exchange/statistics.h"

#include <QStringList>

namespace fxtools {

// What is known about a line after polling over it.
struct LineReport
{
    const Statistics& statistics;
    const Histogram& cycleTimes;
    qint64 elapsedUs;
    const AdaptiveTimeout& timeout;
};

QStringList lineReportLines(const LineReport& report);
QString lineReportJson(const LineReport& report);

// Lines of "name,value": the members of the JSON, those within others as "responseMs.p50".
QStringList lineReportCsv(const LineReport& report);

QStringList statisticsLines(const Statistics& statistics, qint64 elapsedUs);

}  // namespace fxtools
