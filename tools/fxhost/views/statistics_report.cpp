// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/statistics_report.h"

#include "tools/fxhost/views/records.h"
#include "tools/library/csv.h"

namespace fxtools {

namespace {

constexpr int longestBar = 40;

double asMilliseconds(qint64 timeUs)
{
    return static_cast<double>(timeUs) / 1000.0;
}

QString milliseconds(qint64 timeUs)
{
    const bool isFine = timeUs > 0 && timeUs < 10000;
    return QString::number(asMilliseconds(timeUs), 'f', !isFine ? 0 : timeUs < 1000 ? 3 : 2);
}

QStringList histogramLines(const Histogram& times)
{
    QStringList lines;
    for (const TimeClass& one : timeClasses(times)) {
        const auto width =
            static_cast<int>((one.number * longestBar + times.total() - 1) / times.total());
        const QString limits =
            one.toUs > 0 ? QStringLiteral("%1 to %2 ms")
                               .arg(milliseconds(one.fromUs), 6)
                               .arg(milliseconds(one.toUs), 6)
                         : QStringLiteral("longer than %1 ms").arg(milliseconds(one.fromUs), 4);
        lines += QStringLiteral("  %1  %2 %3")
                     .arg(limits, -19)
                     .arg(QStringLiteral("█").repeated(width), -longestBar)
                     .arg(one.number);
    }
    return lines;
}

double rounded(double number, int decimals)
{
    return QString::number(number, 'f', decimals).toDouble();
}

double percentOf(qint64 part, qint64 whole)
{
    return whole > 0 ? rounded(100.0 * static_cast<double>(part) / static_cast<double>(whole), 1)
                     : 0.0;
}

// Frames that were not accepted, in per cent.
double errorPercent(const KindCounts& counts)
{
    return percentOf(counts.repeated + counts.failed, counts.sent);
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

QStringList kindRow(const QString& title, const KindCounts& counts)
{
    return {title,
            QString::number(counts.sent),
            QString::number(counts.accepted),
            QString::number(counts.repeated),
            QString::number(counts.failed),
            QString::number(errorPercent(counts)) + " %"};
}

QStringList kindLines(const Statistics& statistics)
{
    Table table({{"exchanges"},
                 {"frames", Align::Right},
                 {"good", Align::Right},
                 {"retried", Align::Right},
                 {"given up", Align::Right},
                 {"errors", Align::Right}});
    for (const ExchangeKind kind : allExchangeKinds()) {
        if (statistics.of(kind).sent > 0)
            table.add(kindRow(kindText(kind), statistics.of(kind)));
    }
    table.add(kindRow(QStringLiteral("all"), statistics.total()));
    return table.lines();
}

QString rejectionLine(const Statistics& statistics)
{
    QStringList causes;
    for (const ReplyVerdict verdict : allVerdicts()) {
        if (verdict != ReplyVerdict::Good && statistics.of(verdict) > 0)
            causes += QStringLiteral("%1 %2").arg(verdictText(verdict)).arg(statistics.of(verdict));
    }
    return "  rejected replies: " +
           (causes.isEmpty() ? QStringLiteral("none") : causes.join(QStringLiteral(", ")));
}

// "median 25 ms, 95 % in 31 ms, longest 210 ms"
QString timesText(const Histogram& times)
{
    return QStringLiteral("median %1 ms, 95 % in %2 ms, longest %3 ms")
        .arg(milliseconds(times.percentileUs(50)), milliseconds(times.percentileUs(95)),
             milliseconds(times.largestUs()));
}

void addPercentiles(JsonFields& fields, const QString& name, const Histogram& times)
{
    for (const int percent : {50, 95, 99})
        fields.append(
            {name + ".p" + QString::number(percent), asMilliseconds(times.percentileUs(percent))});
    fields.append({name + ".longest", asMilliseconds(times.largestUs())});
}

void addExchanges(JsonFields& fields, const Statistics& statistics)
{
    for (const ExchangeKind kind : allExchangeKinds()) {
        const KindCounts counts = statistics.of(kind);
        const QString prefix = "exchanges." + jsonName(kindText(kind)) + '.';
        fields += {{prefix + "frames", counts.sent},
                   {prefix + "good", counts.accepted},
                   {prefix + "sentAgain", counts.repeated},
                   {prefix + "givenUp", counts.failed}};
    }
    fields.append({"errorPercent", errorPercent(statistics.total())});
    for (const ReplyVerdict verdict : allVerdicts()) {
        if (verdict != ReplyVerdict::Good)
            fields.append({"rejected." + jsonName(verdictName(verdict)), statistics.of(verdict)});
    }
}

void addBlocks(JsonFields& fields, const QVector<BlockTimes>& blocks)
{
    for (int index = 0; index < blocks.size(); ++index) {
        const BlockTimes& block = blocks[index];
        const QString prefix = QStringLiteral("blocks.%1.").arg(index);
        fields += {{prefix + "block", block.registers},
                   {prefix + "registers", block.registerCount},
                   {prefix + "ms", asMilliseconds(block.meanUs())},
                   {prefix + "msPerRegister",
                    rounded(asMilliseconds(block.meanUs()) / block.registerCount, 3)},
                   {prefix + "longestMs", asMilliseconds(block.longestUs)},
                   {prefix + "errorPercent", percentOf(block.rejected, block.frames)}};
    }
}

void addPeriods(JsonFields& fields, const QVector<PeriodTimes>& periods)
{
    for (int index = 0; index < periods.size(); ++index) {
        const PeriodTimes& period = periods[index];
        const QString prefix = QStringLiteral("periods.%1.").arg(index);
        fields += {{prefix + "addresses", period.addresses},
                   {prefix + "wantedMs", asMilliseconds(period.wantedUs)}};
        if (period.meanUs > 0) {
            fields += {{prefix + "meanMs", asMilliseconds(period.meanUs)},
                       {prefix + "longestMs", asMilliseconds(period.longestUs)}};
        }
    }
}

JsonFields fieldsOf(const LineReport& report)
{
    const Statistics& statistics = report.statistics;
    const TimeoutLimits& limits = report.timeout.limits();
    JsonFields fields;
    addExchanges(fields, statistics);
    addBlocks(fields, report.blocks);
    addPeriods(fields, report.periods);
    fields += {{"bytesSent", statistics.bytesSent},
               {"bytesReceived", statistics.bytesReceived},
               {"bytesThrownAway", statistics.bytesThrownAway},
               {"enquiriesSent", statistics.enquiriesSent},
               {"enquiriesAnswered", statistics.enquiriesAnswered},
               {"linksLost", statistics.linksLost},
               {"reconnects", statistics.reconnects}};
    addPercentiles(fields, "responseMs", statistics.responses);
    const QVector<TimeClass> classes = timeClasses(statistics.responses);
    for (int index = 0; index < classes.size(); ++index) {
        const TimeClass& one = classes[index];
        const QString prefix = QStringLiteral("responseHistogram.%1.").arg(index);
        fields.append({prefix + "fromMs", asMilliseconds(one.fromUs)});
        if (one.toUs > 0)
            fields.append({prefix + "toMs", asMilliseconds(one.toUs)});
        fields.append({prefix + "answers", one.number});
    }
    addPercentiles(fields, "cycleMs", report.cycleTimes);
    fields += {{"timeoutMs", report.timeout.milliseconds()},
               {"timeoutFloorMs", limits.quickFloorMs},
               {"timeoutCeilingMs", limits.ceilingMs},
               {"busyMs", asMilliseconds(statistics.busyUs)},
               {"elapsedMs", asMilliseconds(report.elapsedUs)},
               {"lineSharePercent", percentOf(statistics.busyUs, report.elapsedUs)}};
    return fields;
}

// "Without D140: 37 ms a cycle less": a block that is read for one address alone.
QStringList blockLines(const QVector<BlockTimes>& blocks)
{
    Table table({{"block"},
                 {"registers", Align::Right},
                 {"ms", Align::Right},
                 {"ms per register", Align::Right},
                 {"longest, ms", Align::Right},
                 {"errors", Align::Right}});
    QStringList savings;
    for (const BlockTimes& block : blocks) {
        table.add({block.registers, QString::number(block.registerCount),
                   milliseconds(block.meanUs()), milliseconds(block.meanUs() / block.registerCount),
                   milliseconds(block.longestUs),
                   QString::number(percentOf(block.rejected, block.frames)) + " %"});
        if (!block.onlyFor.isEmpty() && blocks.size() > 1)
            savings += QStringLiteral("  without %1: %2 ms a cycle less")
                           .arg(block.onlyFor, milliseconds(block.meanUs()));
    }
    return table.lines() + savings;
}

QStringList periodLines(const QVector<PeriodTimes>& periods)
{
    Table table({{"values"},
                 {"wanted every, ms", Align::Right},
                 {"mean", Align::Right},
                 {"longest", Align::Right}});
    for (const PeriodTimes& period : periods) {
        QStringList row = {period.addresses};
        for (const qint64 timeUs : {period.wantedUs, period.meanUs, period.longestUs})
            row += timeUs > 0 ? milliseconds(timeUs) : QString();
        table.add(row);
    }
    return table.lines();
}

}  // namespace

// The width of a class is 1, 2 or 5 times a power of ten, for about eight of them up to the time
// that 95 per cent do not exceed. The buckets of the histogram are finer than that.
QVector<TimeClass> timeClasses(const Histogram& times)
{
    const qint64 usualUs = times.percentileUs(95);
    qint64 widthUs = 10;
    for (const int factor :
         {2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000, 50000, 100000, 200000}) {
        if (8 * widthUs < usualUs)
            widthUs = qint64(10) * factor;
    }
    QVector<TimeClass> classes;
    qint64 counted = 0;
    qint64 fromUs = 0;
    for (; fromUs < usualUs; fromUs += widthUs) {
        const qint64 number = times.between(fromUs, fromUs + widthUs);
        counted += number;
        if (number > 0 || !classes.isEmpty())
            classes.append({fromUs, fromUs + widthUs, number});
    }
    if (counted < times.total())
        classes.append({fromUs, 0, times.total() - counted});
    return classes;
}

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
    lines += "  response time: " + timesText(statistics.responses);
    lines += QStringLiteral("  time: %1 s; line in use: %2 %")
                 .arg(static_cast<double>(elapsedUs) / 1e6, 0, 'f', 1)
                 .arg(percentOf(statistics.busyUs, elapsedUs), 0, 'f', 0);
    return lines;
}

QStringList lineReportLines(const LineReport& report)
{
    QStringList lines = statisticsLines(report.statistics, report.elapsedUs);
    lines += "  cycle time: " + timesText(report.cycleTimes);
    lines << QString() << blockLines(report.blocks) << QString();
    if (!report.periods.isEmpty())
        lines << periodLines(report.periods) << QString();
    lines += "  response times (" + timeoutText(report.timeout) + "):";
    return lines + histogramLines(report.statistics.responses);
}

QString lineReportJson(const LineReport& report, const QVector<JsonMember>& plc)
{
    const QByteArray measured = jsonTree(fieldsOf(report)).chopped(1);
    return QString::fromUtf8(jsonLines(measured + ',' + jsonObject(plc).mid(1)));
}

QStringList lineReportCsv(const LineReport& report)
{
    QStringList lines = {QStringLiteral("name,value")};
    for (const auto& field : fieldsOf(report))
        lines += csvLine({field.first, field.second.toVariant().toString()});
    return lines;
}

}  // namespace fxtools
