// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How often each value is read: as --period says, else as its tag says, else every --interval.
// Where none of them is given, it is a second for addresses, and for tags as fast as the line
// allows.

#pragma once

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/link/interrupt.h"

namespace fxtools {

constexpr int usualIntervalMs = 1000;

struct PollOptions
{
    PlanningOptions planning;
    int intervalMs = usualIntervalMs;
};

// --plan, --turnaround and --interval
void addPollOptions(CLI::App& command, PollOptions& options);

class Polling
{
public:
    Polling(Connection& connection, const ConnectionSettings& settings, const PollOptions& options,
            const QVector<Tag>& asked);

    Poller& poller() { return m_poller; }

    // Makes a cycle at each full interval, or as soon as the one before has ended. Calls `onCycle`
    // after each, also if the link was lost for good, which ends it as an interrupt does. `wait`
    // waits for the next one.
    RoundEnd run(
        int cycles, const std::function<void()>& onCycle,
        const std::function<void(qint64 timeMs)>& wait = [](qint64 timeMs) {
            sleepUnlessInterrupted(timeMs);
        });

private:
    ExchangeLoop& m_loop;
    qint64 m_intervalUs;
    Poller m_poller;
};

}  // namespace fxtools
