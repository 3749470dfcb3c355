// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost stats: polls for a while and reports on the link: exchanges, reasons for rejection, and a
// histogram of response times with the time-out that follows from them.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/fxhost/views/statistics_report.h"

namespace fxtools {

namespace {

struct StatsOptions
{
    AddressOptions addresses;
    int cycles = 100;
};

void show(const LineReport& report, OutputMode mode)
{
    switch (mode) {
    case OutputMode::People:
        for (const QString& line : lineReportLines(report))
            Console().line(line);
        return;
    case OutputMode::Json:
        Console().line(lineReportJson(report));
        return;
    case OutputMode::Csv:
        for (const QString& line : lineReportCsv(report))
            Console().line(line);
        return;
    }
}

ExitCode runStats(const CommonOptions& common, const StatsOptions& options)
{
    Connection connection(common);
    ExchangeLoop& loop = connection.loop();
    Histogram cycleTimes;
    const ExitCode code =
        pollCycles(connection, rangesOf(options.addresses, connection.catalogue()), options.cycles,
                   [&cycleTimes](qint64 cycleUs) { cycleTimes.add(cycleUs); });
    show({loop.statistics(), cycleTimes, loop.elapsedUs(), loop.timeout()}, common.output.mode);
    return code;
}

}  // namespace

void addStatsCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("stats", "Measure a link: errors, response times, cycle times");
    const auto options = std::make_shared<StatsOptions>();
    addAddressOptions(*command, options->addresses);
    addCountOption(*command, options->cycles, false);
    addExamples(*command,
                {"fxhost stats D0:64 -n 20 -b 115200", "fxhost stats D0:64 X0:16 --json"});
    command->callback([&action, &common, options] {
        action = [&common, options] { return runStats(common, *options); };
    });
}

}  // namespace fxtools
