// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/service/polling_cycles.h"

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr int mostNames = 3;

// "line load 134 %: D0:10 every 140 ms instead of 100 ms"
QString textOfLoad(const LineLoad& load, const WantedPeriods& wanted)
{
    QStringList late;
    for (const PeriodLoad& period : load.periods) {
        if (period.isLate()) {
            late += QStringLiteral("%1 every %2 ms instead of %3 ms")
                        .arg(wanted.namesOf(period.wantedUs))
                        .arg(period.expectedUs / 1000)
                        .arg(period.wantedUs / 1000);
        }
    }
    return QStringLiteral("line load %1 %: ").arg(std::lround(100 * load.used)) +
           (late.isEmpty() ? QStringLiteral("all periods are kept")
                           : late.join(QStringLiteral("; ")));
}

}  // namespace

int baudOf(const LinkSettings& link)
{
    const auto* const serial = std::get_if<SerialSettings>(&link);
    const auto* const simulated = std::get_if<SimulatedSettings>(&link);
    const int baud = serial && serial->line ? serial->line->baud
                     : simulated            ? simulated->baud.value_or(0)
                                            : 0;
    return baud > 0 ? baud : LineCost().baud;
}

void WantedPeriods::add(const RegisterRange& registers, const QString& name, qint64 periodUs)
{
    ranges.append({registers, periodUs});
    const QPair<qint64, QString> named(periodUs, name);
    if (known.contains(named))
        return;
    known.insert(named);
    names[periodUs].append(name);
}

QString WantedPeriods::namesOf(qint64 periodUs) const
{
    const QStringList all = names.value(periodUs);
    const QString some = all.mid(0, mostNames).join(QStringLiteral(", "));
    const int more = all.size() - mostNames;
    return more > 0 ? some + QStringLiteral(" and %1 more").arg(more) : some;
}

Polling::Polling(ExchangeLoop& loop, const RegisterCatalogue& catalogue,
                 const WantedPeriods& wanted, const QVector<RegisterRange>& registers,
                 const Planner& planner)
    : m_loop(loop), m_wanted(wanted)
{
    m_plain.emplace(m_loop, catalogue, registers, planner);
}

Polling::Polling(ExchangeLoop& loop, const RegisterCatalogue& catalogue,
                 const WantedPeriods& wanted, int baud, std::optional<qint64> turnaroundUs,
                 const TellLoad& tellLoad)
    : m_loop(loop), m_wanted(wanted)
{
    m_periodic.emplace(
        m_loop, catalogue, wanted.ranges, baud, turnaroundUs,
        [this, tellLoad](const LineLoad& load) { tellLoad(textOfLoad(load, m_wanted)); });
}

QString Polling::loadText() const
{
    return textOfLoad(load(), m_wanted);
}

QStringList Polling::late() const
{
    QStringList names;
    for (const PeriodLoad& period : load().periods) {
        if (period.isLate())
            names += m_wanted.names.value(period.wantedUs);
    }
    return names;
}

qint64 Polling::cycleUs() const
{
    if (!m_periodic)
        return m_wanted.names.firstKey();
    const QVector<PeriodLoad>& periods = m_periodic->load().periods;
    const auto shortest = std::min_element(periods.begin(), periods.end(),
                                           [](const PeriodLoad& one, const PeriodLoad& other) {
                                               return one.expectedUs < other.expectedUs;
                                           });
    return shortest == periods.end() ? qint64(1000) * usualIntervalMs : shortest->expectedUs;
}

// Cycles begin on a grid of times, so that what they cost does not add up.
RoundEnd Polling::run(int cycles, const std::function<void()>& onCycle,
                      const std::function<void(qint64 timeMs)>& wait)
{
    const qint64 startedUs = m_loop.elapsedUs();
    qint64 cycleEndUs = startedUs;
    for (int cycle = 1;;) {
        const RoundEnd end = m_periodic ? m_periodic->poll() : m_plain->poll();
        if (end == RoundEnd::Interrupted)
            return end;
        qint64 nowUs = m_loop.elapsedUs();
        if (!m_periodic || end != RoundEnd::Done || nowUs >= cycleEndUs) {
            onCycle();
            if (end == RoundEnd::LinkLost)
                return end;
            if (cycle++ == cycles)
                return RoundEnd::Done;
            nowUs = m_loop.elapsedUs();
            const qint64 lengthUs = cycleUs();
            cycleEndUs = nowUs + (lengthUs > 0 ? lengthUs - (nowUs - startedUs) % lengthUs : 0);
        }
        const qint64 nextUs = m_periodic ? std::min(m_periodic->nextUs(), cycleEndUs) : cycleEndUs;
        wait(std::max<qint64>(nextUs - nowUs + 999, 0) / 1000);
        if (m_loop.isInterrupted())  // also where nothing is due for long
            return RoundEnd::Interrupted;
    }
}

}  // namespace fxtools
