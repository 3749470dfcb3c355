// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/plan_cycle.h"

namespace fxtools {

namespace {

constexpr int cyclesUntilPlannedAgain = 50;

}  // namespace

PlanCycle::PlanCycle(ExchangeLoop& loop, Planner planner)
    : m_loop(loop), m_planner(std::move(planner))
{}

void PlanCycle::plan(const QVector<RegisterRange>& due)
{
    m_due = due;
    if (!m_planner)
        m_loop.session().fitFrames(due);
    start(m_planner ? m_planner(due) : Blocks{due});
}

void PlanCycle::start(const Blocks& blocks)
{
    m_merges = blocks;
    m_current = 0;
    m_isBegun = false;
    m_blocksOfMerge = m_loop.session().setPlan(m_merges.value(0));
}

int PlanCycle::blocks() const
{
    return m_merges.size() > 1 ? m_merges.size() : m_blocksOfMerge;
}

Round PlanCycle::poll(const std::function<void(const Round&)>& onMerge)
{
    const bool isPlannedAgain = m_cycle == 1 || m_cycle % cyclesUntilPlannedAgain == 0;
    if (m_planner && m_cycle > 0 && isPlannedAgain && !m_isBegun)
        start(m_planner(m_due));
    ++m_cycle;
    Round cycle;
    for (int merge = 0; merge < m_merges.size(); ++merge) {
        const Round round = pollCycle(m_loop, m_blocksOfMerge);
        if (onMerge)
            onMerge(round);
        cycle.ended += round.ended;
        cycle.inFlight = round.inFlight;
        cycle.end = round.end;
        m_isBegun = round.end != RoundEnd::Done;
        if (m_isBegun)
            return cycle;
        next();
    }
    return cycle;
}

void PlanCycle::next()
{
    if (m_merges.size() < 2)
        return;
    m_current = (m_current + 1) % m_merges.size();
    m_blocksOfMerge = m_loop.session().setPlan(m_merges[m_current]);
}

}  // namespace fxtools
