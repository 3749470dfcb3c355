// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Statistics for people.

#pragma once

#include "tools/exchange/adaptive_timeout.h"
#include "tools/exchange/statistics.h"
#include "tools/fxhost/views/json_text.h"

#include <QStringList>
#include <QVector>

#include <algorithm>

namespace fxtools {

// One block of the polling plan.
struct BlockTimes
{
    QString registers;  // "D100 … D131"
    int registerCount = 0;
    QString onlyFor;  // the address or tag without which it would not be read; empty: several
    qint64 frames = 0;
    qint64 rejected = 0;
    qint64 totalUs = 0;  // from the request to the end of the reply, retries included
    qint64 longestUs = 0;

    qint64 meanUs() const { return totalUs / std::max<qint64>(frames - rejected, 1); }
};

// How often the values of one period were read.
struct PeriodTimes
{
    QString addresses;
    qint64 wantedUs = 0;  // 0: as fast as the line allows
    qint64 meanUs = 0;    // 0: no value was read twice
    qint64 longestUs = 0;
};

// What is known about a line after polling over it.
struct LineReport
{
    QVector<BlockTimes> blocks;
    const Statistics& statistics;
    const Histogram& cycleTimes;
    qint64 elapsedUs;
    const AdaptiveTimeout& timeout;
    QVector<PeriodTimes> periods = {};  // empty: all is read in each cycle
};

QStringList lineReportLines(const LineReport& report);
QString lineReportJson(const LineReport& report, const QVector<JsonMember>& plc);

// Lines of "name,value": the members of the JSON, those within others as "responseMs.p50".
QStringList lineReportCsv(const LineReport& report);

// Classes of equal width for a histogram; the last one may have no upper limit (0).
struct TimeClass
{
    qint64 fromUs;
    qint64 toUs;  // not in it
    qint64 number;
};
QVector<TimeClass> timeClasses(const Histogram& times);

QStringList statisticsLines(const Statistics& statistics, qint64 elapsedUs);

}  // namespace fxtools
