// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A poller of registers with periods of their own, on a line that is measured while it is used.
// Before everything is read for the first time, one exchange shows how fast the line is. After a
// hundred exchanges it is measured again, by the whole time that these took: what the quiet before
// a frame and faults cost counts with them, but not the time in which nothing answered.

#pragma once

#include "tools/exchange/poller.h"
#include "tools/tags/schedule.h"

namespace fxtools {

class PeriodicPoller
{
public:
    // Called when a period begins to be late, also before the first cycle, and when all are kept
    // again, clearly.
    using TellLoad = std::function<void(const LineLoad& load)>;

    // Sends one request, unless the turnaround is given. The loop must outlive the poller.
    PeriodicPoller(ExchangeLoop& loop, const RegisterCatalogue& catalogue,
                   const QVector<PeriodicRange>& wanted, int baud,
                   std::optional<qint64> turnaroundUs, TellLoad tellLoad);
    PeriodicPoller(const PeriodicPoller&) = delete;
    PeriodicPoller& operator=(const PeriodicPoller&) = delete;

    RoundEnd poll();  // everything the first time, then one turn
    Poller& poller() { return m_poller; }
    const LineLoad& load() const { return m_schedule.load(); }
    qint64 nextUs() const { return m_schedule.nextUs(); }  // when its next turn is due

private:
    LineCost firstLine(const QVector<PeriodicRange>& wanted);
    void leaveOut(const QVector<RegisterRange>& unreadable);
    void measure();
    void tellLoad();

    ExchangeLoop& m_loop;
    int m_baud;
    std::optional<qint64> m_turnaroundUs;
    TellLoad m_tellLoad;
    Schedule m_schedule;
    Poller m_poller;
    bool m_isBegun = false;  // everything was read once
    qint64 m_polledUs = 0;
    LineUse m_measured;  // until the line was measured last
    int m_toldLate = 0;  // periods
};

}  // namespace fxtools
