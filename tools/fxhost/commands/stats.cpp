// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost stats: polls for a while and reports on the link: exchanges, reasons for rejection, what
// each block costs, and a histogram of response times with the time-out that follows from them.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/fxhost/views/statistics_report.h"

#include <algorithm>

namespace fxtools {

namespace {

struct StatsOptions
{
    AddressOptions addresses;
    PlanningOptions planning;
    int cycles = 100;
};

void showReport(const LineReport& report, const OutputOptions& output)
{
    if (output.mode == OutputMode::Json)
        Console().line(lineReportJson(report, output.plc));
    else
        Console().lines(output.mode == OutputMode::Csv ? lineReportCsv(report)
                                                       : lineReportLines(report));
}

// The address for which alone a block is read; empty if there are several.
QString onlyAddressIn(const RegisterRange& block, const QVector<RegisterRange>& asked)
{
    QString only;
    for (const RegisterRange& range : asked) {
        if (!overlap(range, block))
            continue;
        if (!only.isEmpty() || !isInside(range, block))
            return {};
        only = range.text();
    }
    return only;
}

// Adds an exchange to the times of its block.
void note(const Exchange& exchange, qint64 tookUs, const RegisterRange& block,
          const QVector<RegisterRange>& asked, QVector<BlockTimes>& times)
{
    const QString registers = fromToText(block);
    auto one = std::find_if(times.begin(), times.end(), [&registers](const BlockTimes& other) {
        return other.registers == registers;
    });
    if (one == times.end()) {
        BlockTimes begun;
        begun.registers = registers;
        begun.registerCount = block.count;
        begun.onlyFor = onlyAddressIn(block, asked);
        times.append(begun);
        one = times.end() - 1;
    }
    ++one->frames;
    one->rejected += exchange.answer != DriverAnswer::Accepted;
    one->totalUs += tookUs;
    one->longestUs = std::max(one->longestUs, tookUs);
}

ExitCode runStats(const CommonOptions& common, const StatsOptions& options)
{
    Connection connection(common);
    ExchangeLoop& loop = connection.loop();
    const QVector<RegisterRange> asked = rangesOf(options.addresses, connection.services());
    QVector<BlockTimes> blocks;
    const Progress progress = lateProgressOf(common.output, QStringLiteral("stats"));
    PlanCycle plan(loop, plannerFor(loop, connectionSettings(common), options.planning));
    plan.plan(asked);
    loop.onExchange = [&](const Exchange& exchange) {
        if (exchange.kind != ExchangeKind::CyclicRead)
            return;
        note(exchange, loop.elapsedUs() - exchange.startedUs,
             blockRange(connection.catalogue(), exchange.frame.variable), asked, blocks);
    };
    Histogram cycleTimes;
    int cycles = 0;
    const ExitCode code = pollCycles(connection, plan, options.cycles, [&](qint64 cycleUs) {
        cycleTimes.add(cycleUs);
        progress(++cycles, options.cycles);
    });
    showReport({blocks, loop.statistics(), cycleTimes, loop.elapsedUs(), loop.timeout()},
               common.output);
    return code;
}

}  // namespace

void addStatsCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("stats", "Measure a link: errors, response times, cycle times");
    const auto options = std::make_shared<StatsOptions>();
    addAddressOptions(*command, options->addresses);
    addPlanningOptions(*command, options->planning);
    addCountOption(*command, options->cycles, false);
    addExamples(*command,
                {"fxhost stats D0:64 -n 20 -b 115200", "fxhost stats D0:64 X0:16 --json"});
    onRun(*command, action, [&common, options] { return runStats(common, *options); });
}

}  // namespace fxtools
