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
#include "tools/tags/periodic_poller.h"

namespace fxtools {

constexpr int usualIntervalMs = 1000;

struct PollOptions
{
    PlanningOptions planning;
    std::vector<std::string> periods;  // "D0:10=100"
    std::optional<int> intervalMs;     // nothing: the usual one, and for tags 0
    bool areAlwaysPeriods = false;     // also where all have the same
};

void addPeriodOption(CLI::App& command, PollOptions& options);

// --plan, --turnaround, --period and --interval
void addPollOptions(CLI::App& command, PollOptions& options);

// What is wanted at each period, and what it is called.
struct WantedPeriods
{
    QVector<PeriodicRange> ranges;
    QMap<qint64, QStringList> names;  // by period

    void add(const RegisterRange& registers, const QString& name, qint64 periodUs);
    QString namesOf(qint64 periodUs) const;  // "D0, D100:4, boiler.flow and 12 more"
};

// Polls cycle after cycle. Values with different periods are read block by block when they are due;
// a cycle is then as long as the shortest period that the line can keep.
class Polling
{
public:
    using TellLoad = std::function<void(const QString& text)>;

    // Throws Failure if a period is given for what was not asked for. `tellLoad` gets a line when
    // the line is too slow for the periods, and when it is so no more.
    Polling(Connection& connection, const ConnectionSettings& settings, const PollOptions& options,
            const QVector<Tag>& asked, const TellLoad& tellLoad = complain);
    Polling(const Polling&) = delete;
    Polling& operator=(const Polling&) = delete;

    bool isPeriodic() const { return m_periodic.has_value(); }
    const LineLoad& load() const { return m_periodic->load(); }  // where there are periods
    QString loadText() const;
    QStringList late() const;  // what the line is too slow for
    const WantedPeriods& wanted() const { return m_wanted; }
    Poller& poller() { return m_periodic ? m_periodic->poller() : *m_plain; }

    // Makes a cycle at each full interval, or as soon as the one before has ended. Calls `onCycle`
    // after each, also if the link was lost for good, which ends it as an interrupt does. `wait`
    // waits for the next one.
    RoundEnd run(
        int cycles, const std::function<void()>& onCycle,
        const std::function<void(qint64 timeMs)>& wait = [](qint64 timeMs) {
            sleepUnlessInterrupted(timeMs);
        });

private:
    qint64 cycleUs() const;

    ExchangeLoop& m_loop;
    WantedPeriods m_wanted;
    qint64 m_intervalUs = 0;
    std::optional<Poller> m_plain;
    std::optional<PeriodicPoller> m_periodic;
};

}  // namespace fxtools
