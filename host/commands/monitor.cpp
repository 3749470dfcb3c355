// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost monitor: every frame of a polling host and its answer, made visible, with times.

#include "host/commands/address_options.h"
#include "host/commands/poll_result.h"
#include "host/interrupt.h"
#include "host/report/frame_text.h"

#include <cmath>

namespace fxhost {

namespace {

struct MonitorOptions
{
    AddressOptions addresses;
    int cycles = 1;
};

double milliseconds(qint64 timeUs)
{
    return std::round(static_cast<double>(timeUs) / 10.0) / 100.0;  // two decimals
}

ExitCode runMonitor(const CommonOptions& common, const MonitorOptions& options)
{
    Connection connection(common);
    connection.waitForLinkWithoutEnd();
    Records records(
        common.output,
        {{"ms"}, {"request"}, {"sent"}, {"received"}, {"verdict"}, {"answer"}, {"took"}},
        Records::Shown::AtOnce);
    connection.loop().onExchange = [&](const Exchange& exchange) {
        records.add(
            {milliseconds(exchange.startedUs), requestText(connection.catalogue(), exchange.frame),
             visibleBytes(requestBytes(exchange.frame)),
             visibleBytes(exchange.reply + exchange.thrownAway), verdictText(exchange.verdict),
             answerText(exchange.answer), milliseconds(exchange.responseUs)});
    };
    const int blocks =
        connection.session().setPlan(connection.ranges(addressesOf(options.addresses)));
    for (int cycle = 0; options.cycles == 0 || cycle < options.cycles; ++cycle) {
        const Round round = pollCycle(connection.loop(), blocks);
        if (interrupted())
            return ExitCode::Interrupted;
        if (round.linkLost)
            return ExitCode::LinkNotOpened;
    }
    return exitCodeOf(connection.loop().statistics());
}

}  // namespace

void addMonitorCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("monitor", "Show every frame and its answer");
    const auto options = std::make_shared<MonitorOptions>();
    addAddressOptions(*command, options->addresses);
    command
        ->add_option("-n,--count", options->cycles,
                     "Polling cycles; 1 unless given, 0 until Ctrl-C")
        ->type_name("N")
        ->check(CLI::Range(0, mostCycles).description(""));
    addExamples(*command, {"fxhost monitor D100:2 X0", "fxhost monitor D0:32 -n 3 --timestamps"});
    command->callback([&action, &common, options] {
        action = [&common, options] { return runMonitor(common, *options); };
    });
}

}  // namespace fxhost
