// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/plan_report.h"

#include "tools/exchange/blocks.h"
#include "tools/table.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace fxtools {

namespace {

constexpr int savingsShown = 5;

double toMicroseconds(double ms)
{
    return std::round(1000 * ms) / 1000;
}

QString wholeMs(double ms)
{
    return QString::number(std::round(ms));
}

bool isDue(const PlannedBlock& block, const RegisterRange& one)
{
    return std::any_of(block.due.begin(), block.due.end(),
                       [&one](const RegisterRange& range) { return isInside(one, range); });
}

QByteArray blockJson(const PlannedBlock& block)
{
    QJsonArray which;
    int unasked = 0;
    for (const RegisterRange& run : unaskedRuns(block)) {
        which.append(fromToText(run));
        unasked += run.count;
    }
    const RegisterRange& registers = block.registers;
    return jsonObject({{"type", jsonText(registers.type.name)},
                       {"first", jsonText(registers.nameOf(0))},
                       {"last", jsonText(registers.nameOf(registers.count - 1))},
                       {"registers", jsonText(registers.count)},
                       {"bytes", jsonText(block.bytes())},
                       {"characters", jsonText(block.characters())},
                       {"unasked", jsonText(unasked)},
                       {"which", jsonText(which)}});
}

QByteArray planJson(const ReportedPlan& plan)
{
    QList<QByteArray> blocks;
    for (const PlannedBlock& block : plan.blocks)
        blocks += blockJson(block);
    QVector<JsonMember> times;
    for (const auto& [baud, ms] : plan.cycleMs)
        times.append({QString::number(baud), jsonText(toMicroseconds(ms))});
    return jsonObject({{"blocks", jsonArray(blocks)},
                       {"characters", jsonText(plan.characters())},
                       {"cycleMs", jsonObject(times)}});
}

QStringList cycleTable(const PlanReport& report)
{
    QVector<Table::Column> columns = {{QStringLiteral("cycle, ms, at baud")}};
    for (const auto& [baud, ms] : report.given.cycleMs)
        columns.append({QString::number(baud), Align::Right});
    Table table(columns);
    for (const ReportedPlan* const plan : {&report.given, &report.shortest}) {
        QStringList cells = {plan->name};
        for (const auto& [baud, ms] : plan->cycleMs)
            cells += wholeMs(ms);
        table.add(cells);
    }
    return table.lines();
}

QString summary(const PlanReport& report)
{
    const auto given = static_cast<double>(costOf(report.given.blocks, report.line));
    const auto shortest = static_cast<double>(costOf(report.shortest.blocks, report.line));
    const QString blocks = counted(report.shortest.blocks.size(), "block");
    if (report.areAlike())
        return "  The driver's own plan is the shortest one: " + blocks + '.';
    const bool isLonger = shortest > given;
    return QStringLiteral("  The driver's own plan has %1, the shortest %2: %3 % %4.")
        .arg(counted(report.given.blocks.size(), "block"), blocks,
             QString::number(std::round(100 * std::abs(1 - shortest / given))),
             QLatin1String(isLonger ? "more time, because it reads at most 64 bytes at once"
                                    : "less time"));
}

}  // namespace

int ReportedPlan::characters() const
{
    return std::accumulate(blocks.begin(), blocks.end(), 0, [](int sum, const PlannedBlock& block) {
        return sum + block.characters();
    });
}

bool PlanReport::areAlike() const
{
    return std::equal(given.blocks.begin(), given.blocks.end(), shortest.blocks.begin(),
                      shortest.blocks.end(),
                      [](const PlannedBlock& one, const PlannedBlock& other) {
                          return isInside(one.registers, other.registers) &&
                                 one.registers.count == other.registers.count;
                      });
}

QVector<RegisterRange> unaskedRuns(const PlannedBlock& block)
{
    QVector<RegisterRange> runs;
    bool inRun = false;
    for (int index = 0; index < block.registers.count; ++index) {
        const RegisterRange one = block.registers.part(index, 1);
        const bool isUnasked = !isDue(block, one);
        if (isUnasked && inRun)
            ++runs.last().count;
        else if (isUnasked)
            runs.append(one);
        inRun = isUnasked;
    }
    return runs;
}

QString planReportJson(const PlanReport& report)
{
    QVector<JsonMember> less;
    for (const PlanSaving& saving : report.savings)
        less.append({saving.address, jsonText(toMicroseconds(saving.ms))});
    return jsonLines(
        jsonObject({{"baud", jsonText(report.line.baud)},
                    {"turnaroundMs", jsonText(double(report.line.turnaroundUs) / 1000)},
                    {"given", planJson(report.given)},
                    {"shortest", planJson(report.shortest)},
                    {"msLessWithout", jsonObject(less)}}));
}

QStringList planReportLines(const PlanReport& report)
{
    QStringList lines = {summary(report), {}};
    lines += cycleTable(report);
    lines += QStringLiteral("  with %1 ms from each request to its reply (--turnaround)")
                 .arg(double(report.line.turnaroundUs) / 1000);
    if (!report.savings.isEmpty())
        lines += QString();
    for (const PlanSaving& saving : report.savings.mid(0, savingsShown)) {
        lines += QStringLiteral("  without %1: %2 ms a cycle less at %3 baud")
                     .arg(saving.address, wholeMs(saving.ms))
                     .arg(report.line.baud);
    }
    return lines;
}

}  // namespace fxtools
