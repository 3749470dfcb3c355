// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/periods.h"

namespace fxtools {

namespace {

constexpr qint64 longestPeriodMs = 86400000;

}  // namespace

void addPollOptions(CLI::App& command, PollOptions& options)
{
    addPlanningOptions(command, options.planning);
    command
        .add_option("-l,--interval", options.intervalMs,
                    "Time between cycles in ms, or 0.5s; 0 = no pause (default: 1000)")
        ->type_name("MS")
        ->transform(timeWithin({0, longestPeriodMs}));
}

Polling::Polling(Connection& connection, const ConnectionSettings& settings,
                 const PollOptions& options, const QVector<Tag>& asked)
    : m_loop(connection.loop()), m_intervalUs(qint64(1000) * options.intervalMs),
      m_poller(m_loop, connection.catalogue(), rangesOf(asked),
               plannerFor(m_loop, settings, options.planning))
{}

// Cycles begin on a grid of times, so that what they cost does not add up.
RoundEnd Polling::run(int cycles, const std::function<void()>& onCycle,
                      const std::function<void(qint64 timeMs)>& wait)
{
    const qint64 startedUs = m_loop.elapsedUs();
    for (int cycle = 1;; ++cycle) {
        const RoundEnd end = m_poller.poll();
        if (end == RoundEnd::Interrupted)
            return end;
        onCycle();
        if (end == RoundEnd::LinkLost)
            return end;
        if (cycle == cycles)
            return RoundEnd::Done;
        const qint64 elapsedUs = m_loop.elapsedUs() - startedUs;
        wait(m_intervalUs > 0 ? (m_intervalUs - elapsedUs % m_intervalUs) / 1000 : 0);
    }
}

}  // namespace fxtools
