// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Polling cycle after cycle: everything at one interval, or values with periods of their own.

#pragma once

#include "tools/link/interrupt.h"
#include "tools/link/link_settings.h"
#include "tools/tags/periodic_poller.h"

#include <QMap>
#include <QPair>
#include <QSet>

namespace fxtools {

constexpr int usualIntervalMs = 1000;

// The speed of a line; the usual one where only the other end knows it.
int baudOf(const LinkSettings& link);

// What is wanted at each period, and what it is called.
struct WantedPeriods
{
    QVector<PeriodicRange> ranges;
    QMap<qint64, QStringList> names;  // by period, each once
    QSet<QPair<qint64, QString>> known;

    void add(const RegisterRange& registers, const QString& name, qint64 periodUs);
    QString namesOf(qint64 periodUs) const;  // "D0, D100:4, boiler.flow and 12 more"
};

// Values with different periods are read block by block when they are due; a cycle is then as long
// as the shortest period that the line can keep.
class Polling
{
public:
    // Gets a line when the line is too slow for the periods, and when it is so no more.
    using TellLoad = std::function<void(const QString& text)>;

    // All these registers in each cycle; they are wanted at one period.
    Polling(ExchangeLoop& loop, const RegisterCatalogue& catalogue, const WantedPeriods& wanted,
            const QVector<RegisterRange>& registers, const Planner& planner);

    // Each value at its own period.
    Polling(ExchangeLoop& loop, const RegisterCatalogue& catalogue, const WantedPeriods& wanted,
            int baud, std::optional<qint64> turnaroundUs, const TellLoad& tellLoad);
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
    std::optional<Poller> m_plain;
    std::optional<PeriodicPoller> m_periodic;
};

}  // namespace fxtools
