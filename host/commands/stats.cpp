// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost stats: polls for a while and tells what the line is like: exchanges, causes of rejection,
// response times as a histogram beside the time-out that they led to.

#include "host/commands/poll_result.h"
#include "host/interrupt.h"
#include "host/report/statistics_report.h"

namespace fxhost {

namespace {

struct StatsOptions
{
    std::vector<std::string> addresses;
    int cycles = 100;
};

ExitCode runStats(const CommonOptions& common, const StatsOptions& options)
{
    Connection connection(common);
    const int blocks = connection.session().setPlan(connection.ranges(options.addresses));
    Histogram cycleTimes;
    for (int cycle = 0; cycle < options.cycles && !interrupted(); ++cycle) {
        const qint64 startedUs = connection.loop().elapsedUs();
        if (pollCycle(connection.loop(), blocks).linkLost && !connection.reconnect())
            break;
        cycleTimes.add(connection.loop().elapsedUs() - startedUs);
    }
    const LineReport report = {connection.loop().statistics(), cycleTimes,
                               connection.loop().elapsedUs(),
                               connection.loop().timeout().milliseconds()};
    const QStringList lines =
        common.output.mode == OutputMode::Json ? lineReportJson(report) : lineReportLines(report);
    for (const QString& line : lines)
        Console().line(line);
    if (interrupted())
        return ExitCode::Interrupted;
    const KindCounts total = report.statistics.total();
    if (total.failed == 0)
        return ExitCode::Good;
    return total.accepted > 0 ? ExitCode::SomeFailed : ExitCode::Silence;
}

}  // namespace

void addStatsCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("stats", "Measure the line while polling");
    const auto options = std::make_shared<StatsOptions>();
    command->add_option("address", options->addresses, "Addresses to poll")->required();
    command->add_option("-c,--count", options->cycles, "Polling cycles")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    command->callback([&action, &common, options] {
        action = [&common, options] { return runStats(common, *options); };
    });
}

}  // namespace fxhost
