// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/periodic_poller.h"

#include <algorithm>

namespace fxtools {

namespace {

constexpr int exchangesUntilMeasured = 100;
constexpr double clearlyKept = 0.95;  // of the line

QVector<RegisterRange> registersOf(const QVector<PeriodicRange>& wanted)
{
    QVector<RegisterRange> registers;
    for (const PeriodicRange& range : wanted)
        registers.append(range.registers);
    return registers;
}

}  // namespace

PeriodicPoller::PeriodicPoller(ExchangeLoop& loop, const RegisterCatalogue& catalogue,
                               const QVector<PeriodicRange>& wanted, int baud,
                               std::optional<qint64> turnaroundUs, TellLoad tellLoad)
    : m_loop(loop), m_baud(baud), m_turnaroundUs(turnaroundUs), m_tellLoad(std::move(tellLoad)),
      m_schedule(wanted, loop.session().settings().wordsPerFrame, firstLine(wanted)),
      m_poller(loop, catalogue, registersOf(wanted), shortestPlanner(loop, baud, turnaroundUs),
               {[this] { return m_schedule.next(m_loop.elapsedUs()); },
                [this](const QVector<RegisterRange>& unreadable) { leaveOut(unreadable); }})
{
    m_measured = acceptedUse(loop.statistics());
    m_measured.tookUs = 0;
    this->tellLoad();
}

LineCost PeriodicPoller::firstLine(const QVector<PeriodicRange>& wanted)
{
    if (!m_turnaroundUs && !m_loop.statistics().plcHasAnswered() && !wanted.isEmpty()) {
        m_loop.session().setPlan({wanted.first().registers.part(0, 1)});
        pollCycle(m_loop, 1);
    }
    return measuredLine(acceptedUse(m_loop.statistics()), m_baud, m_turnaroundUs);
}

RoundEnd PeriodicPoller::poll()
{
    const qint64 startedUs = m_loop.elapsedUs();
    const bool wasBegun = m_isBegun;
    const qint64 linksLost = m_loop.statistics().linksLost;
    const RoundEnd end = m_poller.poll();
    if (end == RoundEnd::Done && m_loop.statistics().linksLost == linksLost)
        m_polledUs += m_loop.elapsedUs() - startedUs;
    const qint64 exchanges = m_loop.statistics().total().accepted - m_measured.exchanges;
    if (wasBegun ? exchanges >= exchangesUntilMeasured : m_isBegun)
        measure();
    return end;
}

void PeriodicPoller::leaveOut(const QVector<RegisterRange>& unreadable)
{
    m_schedule.setUnreadable(unreadable);
    if (!m_isBegun)
        m_schedule.begin(m_loop.elapsedUs());
    m_isBegun = true;
}

void PeriodicPoller::measure()
{
    LineUse use = acceptedUse(m_loop.statistics());
    use.tookUs = m_polledUs;
    const LineUse recent = {use.exchanges - m_measured.exchanges,
                            use.characters - m_measured.characters, use.tookUs - m_measured.tookUs};
    m_measured = use;
    m_schedule.setLine(measuredLine(recent, m_baud, m_turnaroundUs));
    tellLoad();
}

void PeriodicPoller::tellLoad()
{
    const QVector<PeriodLoad>& periods = load().periods;
    const auto late = std::count_if(periods.begin(), periods.end(),
                                    [](const PeriodLoad& period) { return period.isLate(); });
    const bool areKeptAgain = m_toldLate > 0 && load().used < clearlyKept;
    if (late <= m_toldLate && !areKeptAgain)
        return;
    m_toldLate = static_cast<int>(late);
    m_tellLoad(load());
}

}  // namespace fxtools
