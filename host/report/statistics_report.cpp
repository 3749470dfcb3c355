// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See statistics_report.h.

#include "host/report/statistics_report.h"

#include "host/report/table.h"

namespace fxhost {

namespace {

QString milliseconds(qint64 timeUs)
{
    return QString::number(static_cast<double>(timeUs) / 1000.0, 'f', timeUs < 10000 ? 2 : 0);
}

QStringList kindRow(const QString& title, const KindCounts& counts)
{
    return {title, QString::number(counts.sent), QString::number(counts.accepted),
            QString::number(counts.repeated), QString::number(counts.failed)};
}

QStringList kindLines(const Statistics& statistics)
{
    Table table({{"exchanges"},
                 {"frames", Align::Right},
                 {"good", Align::Right},
                 {"sent again", Align::Right},
                 {"given up", Align::Right}});
    for (int index = 0; index < exchangeKinds; ++index) {
        const auto kind = static_cast<ExchangeKind>(index);
        if (statistics.of(kind).sent > 0)
            table.add(kindRow(kindText(kind), statistics.of(kind)));
    }
    table.add(kindRow(QStringLiteral("all"), statistics.total()));
    return table.lines();
}

QString rejectionLine(const Statistics& statistics)
{
    QStringList causes;
    for (int index = 0; index < replyVerdicts; ++index) {
        const auto verdict = static_cast<ReplyVerdict>(index);
        if (verdict != ReplyVerdict::Good && statistics.of(verdict) > 0)
            causes += QStringLiteral("%1 %2").arg(statistics.of(verdict)).arg(verdictName(verdict));
    }
    return causes.isEmpty() ? QStringLiteral("  no reply was rejected")
                            : QStringLiteral("  rejected: ") + causes.join(QStringLiteral(", "));
}

}  // namespace

QStringList statisticsLines(const Statistics& statistics, qint64 elapsedUs)
{
    const double busyShare = elapsedUs > 0 ? 100.0 * static_cast<double>(statistics.busyUs) /
                                                 static_cast<double>(elapsedUs)
                                           : 0.0;
    QStringList lines = kindLines(statistics);
    lines += rejectionLine(statistics);
    lines += QStringLiteral("  bytes: %1 sent, %2 received, %3 of them thrown away; "
                            "%4 enquiries, %5 answered")
                 .arg(statistics.bytesSent)
                 .arg(statistics.bytesReceived)
                 .arg(statistics.bytesThrownAway)
                 .arg(statistics.enquiriesSent)
                 .arg(statistics.enquiriesAnswered);
    lines += QStringLiteral("  response time: p50 %1 ms, p95 %2 ms, p99 %3 ms, longest %4 ms")
                 .arg(milliseconds(statistics.responses.percentileUs(50)),
                      milliseconds(statistics.responses.percentileUs(95)),
                      milliseconds(statistics.responses.percentileUs(99)),
                      milliseconds(statistics.responses.largestUs()));
    lines += QStringLiteral("  time: %1 s, of which the line was in use %2 %")
                 .arg(static_cast<double>(elapsedUs) / 1e6, 0, 'f', 1)
                 .arg(busyShare, 0, 'f', 0);
    return lines;
}

}  // namespace fxhost
