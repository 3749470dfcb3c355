// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/statistics_report.h"

#include "tools/fxhost/views/table.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace fxtools {

namespace {

constexpr int longestBar = 40;

QString milliseconds(qint64 timeUs)
{
    return QString::number(static_cast<double>(timeUs) / 1000.0, 'f',
                           timeUs < 1000    ? 3
                           : timeUs < 10000 ? 2
                                            : 0);
}

double asMilliseconds(qint64 timeUs)
{
    return static_cast<double>(timeUs) / 1000.0;
}

struct Bar
{
    qint64 fromUs;
    qint64 toUs;  // not in it
    qint64 number;
};

// One bar for each doubling of the time; empty ones are left out.
QVector<Bar> barsOf(const Histogram& times)
{
    QVector<Bar> bars;
    for (qint64 fromUs = 1; fromUs <= times.largestUs(); fromUs *= 2) {
        const qint64 number = times.between(fromUs, 2 * fromUs);
        if (number > 0)
            bars.append({fromUs, 2 * fromUs, number});
    }
    return bars;
}

QStringList histogramLines(const Histogram& times)
{
    QStringList lines;
    for (const Bar& bar : barsOf(times)) {
        const auto width =
            static_cast<int>((bar.number * longestBar + times.total() - 1) / times.total());
        lines += QStringLiteral("  %1 to %2 ms  %3 %4")
                     .arg(milliseconds(bar.fromUs), 8)
                     .arg(milliseconds(bar.toUs), 6)
                     .arg(QStringLiteral("█").repeated(width), -longestBar)
                     .arg(bar.number);
    }
    return lines;
}

QJsonArray histogramOf(const Histogram& times)
{
    QJsonArray array;
    for (const Bar& bar : barsOf(times)) {
        array.append(QJsonObject{{"fromMs", asMilliseconds(bar.fromUs)},
                                 {"toMs", asMilliseconds(bar.toUs)},
                                 {"answers", bar.number}});
    }
    return array;
}

double shareOf(qint64 busyUs, qint64 elapsedUs)
{
    return elapsedUs > 0 ? 100.0 * static_cast<double>(busyUs) / static_cast<double>(elapsedUs)
                         : 0.0;
}

QString timeoutText(const AdaptiveTimeout& timeout)
{
    const TimeoutLimits& limits = timeout.limits();
    if (limits.quickFloorMs == limits.ceilingMs)
        return QStringLiteral("time-out: %1 ms, as given").arg(timeout.milliseconds());
    return QStringLiteral("time-out: %1 ms, adapts between %2 and %3 ms")
        .arg(timeout.milliseconds())
        .arg(limits.quickFloorMs)
        .arg(limits.ceilingMs);
}

QJsonObject percentilesOf(const Histogram& times)
{
    return {{"p50", asMilliseconds(times.percentileUs(50))},
            {"p95", asMilliseconds(times.percentileUs(95))},
            {"p99", asMilliseconds(times.percentileUs(99))},
            {"longest", asMilliseconds(times.largestUs())}};
}

QJsonObject countsOf(const KindCounts& counts)
{
    return {{"frames", counts.sent},
            {"good", counts.accepted},
            {"sentAgain", counts.repeated},
            {"givenUp", counts.failed}};
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
                 {"retried", Align::Right},
                 {"given up", Align::Right}});
    for (const ExchangeKind kind : allExchangeKinds()) {
        if (statistics.of(kind).sent > 0)
            table.add(kindRow(kindText(kind), statistics.of(kind)));
    }
    table.add(kindRow(QStringLiteral("all"), statistics.total()));
    return table.lines();
}

// Programs read these names.
QString memberName(ExchangeKind kind)
{
    return kind == ExchangeKind::ConditionalRead ? QStringLiteral("conditional read")
                                                 : kindText(kind);
}

QString rejectionLine(const Statistics& statistics)
{
    QStringList causes;
    for (const ReplyVerdict verdict : allVerdicts()) {
        if (verdict != ReplyVerdict::Good && statistics.of(verdict) > 0)
            causes += QStringLiteral("%1 %2").arg(verdictName(verdict)).arg(statistics.of(verdict));
    }
    return "  rejected replies: " +
           (causes.isEmpty() ? QStringLiteral("none") : causes.join(QStringLiteral(", ")));
}

QJsonObject objectOf(const LineReport& report)
{
    const Statistics& statistics = report.statistics;
    QJsonObject kinds;
    QJsonObject rejected;
    for (const ExchangeKind kind : allExchangeKinds()) {
        kinds.insert(memberName(kind), countsOf(statistics.of(kind)));
    }
    for (const ReplyVerdict verdict : allVerdicts()) {
        if (verdict != ReplyVerdict::Good)
            rejected.insert(verdictName(verdict), statistics.of(verdict));
    }
    const TimeoutLimits& limits = report.timeout.limits();
    return {{"exchanges", kinds},
            {"rejected", rejected},
            {"bytesSent", statistics.bytesSent},
            {"bytesReceived", statistics.bytesReceived},
            {"bytesThrownAway", statistics.bytesThrownAway},
            {"enquiriesSent", statistics.enquiriesSent},
            {"enquiriesAnswered", statistics.enquiriesAnswered},
            {"linksLost", statistics.linksLost},
            {"reconnects", statistics.reconnects},
            {"responseMs", percentilesOf(statistics.responses)},
            {"responseHistogram", histogramOf(statistics.responses)},
            {"cycleMs", percentilesOf(report.cycleTimes)},
            {"timeoutMs", report.timeout.milliseconds()},
            {"timeoutFloorMs", limits.quickFloorMs},
            {"timeoutCeilingMs", limits.ceilingMs},
            {"busyMs", asMilliseconds(statistics.busyUs)},
            {"elapsedMs", asMilliseconds(report.elapsedUs)},
            {"lineSharePercent", shareOf(statistics.busyUs, report.elapsedUs)}};
}

void appendFlat(const QJsonValue& value, const QString& name, QStringList& lines)
{
    const QString prefix = name.isEmpty() ? name : name + '.';
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member)
            appendFlat(member.value(), prefix + member.key(), lines);
    } else if (value.isArray()) {
        const QJsonArray array = value.toArray();
        for (int index = 0; index < array.size(); ++index)
            appendFlat(array[index], prefix + QString::number(index), lines);
    } else {
        lines += name + ',' + value.toVariant().toString();
    }
}

}  // namespace

QStringList statisticsLines(const Statistics& statistics, qint64 elapsedUs)
{
    QStringList lines = kindLines(statistics);
    lines += rejectionLine(statistics);
    lines += QStringLiteral("  bytes: %1 sent, %2 received, %3 of them discarded; "
                            "ENQ: %4 sent, %5 answered")
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
    lines += QStringLiteral("  time: %1 s; line in use: %2 %")
                 .arg(static_cast<double>(elapsedUs) / 1e6, 0, 'f', 1)
                 .arg(shareOf(statistics.busyUs, elapsedUs), 0, 'f', 0);
    return lines;
}

QStringList lineReportLines(const LineReport& report)
{
    QStringList lines = statisticsLines(report.statistics, report.elapsedUs);
    lines += QStringLiteral("  cycle time: p50 %1 ms, p95 %2 ms, longest %3 ms")
                 .arg(milliseconds(report.cycleTimes.percentileUs(50)),
                      milliseconds(report.cycleTimes.percentileUs(95)),
                      milliseconds(report.cycleTimes.largestUs()));
    lines += QString();
    lines += "  response times (" + timeoutText(report.timeout) + "):";
    return lines + histogramLines(report.statistics.responses);
}

QString lineReportJson(const LineReport& report)
{
    return QString::fromUtf8(QJsonDocument(objectOf(report)).toJson().trimmed());
}

QStringList lineReportCsv(const LineReport& report)
{
    QStringList lines = {QStringLiteral("name,value")};
    appendFlat(objectOf(report), QString(), lines);
    return lines;
}

}  // namespace fxtools
