// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost stats: polls for a while and reports on the link: exchanges, reasons for rejection, and a
// histogram of response times with the time-out that follows from them.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/poll_result.h"
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
    connection.waitForLinkWithoutEnd();
    ExchangeLoop& loop = connection.loop();
    const int blocks =
        connection.session().setPlan(rangesOf(options.addresses, connection.catalogue()));
    Histogram cycleTimes;
    auto end = RoundEnd::Done;
    for (int cycle = 0; cycle < options.cycles && end == RoundEnd::Done; ++cycle) {
        const qint64 startedUs = loop.elapsedUs();
        end = pollCycle(loop, blocks).end;
        if (end == RoundEnd::Done)
            cycleTimes.add(loop.elapsedUs() - startedUs);
    }
    show({loop.statistics(), cycleTimes, loop.elapsedUs(), loop.timeout()}, common.output.mode);
    const bool isStopped = end == RoundEnd::Interrupted || end == RoundEnd::LinkLost;
    return isStopped ? exitCodeOf(verdictOf(end)) : exitCodeOf(loop.statistics());
}

}  // namespace

void addStatsCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("stats", "Measure a link: errors, response times, cycle times");
    const auto options = std::make_shared<StatsOptions>();
    addAddressOptions(*command, options->addresses);
    command->add_option("-n,--count", options->cycles, "Number of cycles (default: 100)")
        ->type_name("N")
        ->check(CLI::Range(1, mostCycles).description(""));
    addExamples(*command,
                {"fxhost stats D0:64 -n 20 -b 115200", "fxhost stats D0:64 X0:16 --json"});
    command->callback([&action, &common, options] {
        action = [&common, options] { return runStats(common, *options); };
    });
}

}  // namespace fxtools
