// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/cycles.h"

namespace fxtools {

void addCountOption(CLI::App& command, int& cycles, bool mayBeEndless)
{
    const std::string endless = !mayBeEndless ? ""
                                : cycles == 0 ? " = until Ctrl-C"
                                              : "; 0 = until Ctrl-C";
    command
        .add_option("-n,--count", cycles,
                    "Number of cycles (default: " + std::to_string(cycles) + endless + ")")
        ->type_name("N")
        ->check(CLI::Range(mayBeEndless ? 0 : 1, mostCycles).description(""));
}

ExitCode pollCycles(Connection& connection, const QVector<RegisterRange>& ranges, int cycles,
                    const std::function<void(qint64 cycleUs)>& onCycle)
{
    ExchangeLoop& loop = connection.loop();
    connection.waitForLinkWithoutEnd();
    const int blocks = connection.session().setPlan(ranges);
    for (int cycle = 0; (cycles == 0 || cycle < cycles); ++cycle) {
        const qint64 startedUs = loop.elapsedUs();
        const RoundEnd end = pollCycle(loop, blocks).end;
        if (end == RoundEnd::Interrupted || end == RoundEnd::LinkLost)
            return exitCodeOf(verdictOf(end));
        if (end == RoundEnd::NeverAnswered && cycles != 0)
            break;
        if (end == RoundEnd::Done && onCycle)
            onCycle(loop.elapsedUs() - startedUs);
    }
    return exitCodeOf(loop.statistics());
}

}  // namespace fxtools
