// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost monitor: every frame of a polling host and its answer, made visible, with times.

#include "host/commands/poll_result.h"
#include "host/interrupt.h"
#include "host/report/frame_text.h"

#include <cmath>

namespace fxhost {

namespace {

struct MonitorOptions
{
    std::vector<std::string> addresses;
    int cycles = 1;
};

double milliseconds(qint64 timeUs)
{
    return std::round(static_cast<double>(timeUs) / 10.0) / 100.0;  // two decimals
}

ExitCode runMonitor(const CommonOptions& common, const MonitorOptions& options)
{
    Connection connection(common);
    Records records(
        common.output,
        {{"ms"}, {"request"}, {"sent"}, {"received"}, {"verdict"}, {"answer"}, {"took"}},
        Records::Shown::AtOnce);
    std::optional<ReplyVerdict> firstProblem;
    bool anyGood = false;
    connection.loop().onExchange = [&](const Exchange& exchange) {
        records.add(
            {milliseconds(exchange.startedUs), requestText(connection.catalogue(), exchange.frame),
             visibleBytes(requestBytes(exchange.frame)),
             visibleBytes(exchange.reply + exchange.thrownAway), verdictText(exchange.verdict),
             answerText(exchange.answer), milliseconds(exchange.responseUs)});
        anyGood |= exchange.answer == DriverAnswer::Accepted;
        if (exchange.hasFailed() && !firstProblem)
            firstProblem = exchange.verdict;
    };
    const int blocks = connection.session().setPlan(connection.ranges(options.addresses));
    for (int cycle = 0; options.cycles == 0 || cycle < options.cycles; ++cycle) {
        const Round round = pollCycle(connection.loop(), blocks);
        if (interrupted() || (round.linkLost && !connection.reconnect()))
            return ExitCode::Interrupted;
    }
    if (!firstProblem)
        return ExitCode::Good;
    return anyGood ? ExitCode::SomeFailed : exitCodeOf(*firstProblem);
}

}  // namespace

void addMonitorCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("monitor", "Show every frame and its answer");
    const auto options = std::make_shared<MonitorOptions>();
    command->add_option("address", options->addresses, "Addresses to poll")->required();
    command->add_option("-c,--count", options->cycles, "Polling cycles; 0 until Ctrl-C")
        ->capture_default_str()
        ->check(CLI::NonNegativeNumber);
    command->callback([&action, &common, options] {
        action = [&common, options] { return runMonitor(common, *options); };
    });
}

}  // namespace fxhost
