// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Reads everything that is due once a cycle. The driver's own plan is one merge of all of it. A
// planner says which registers are read together instead: each of its blocks is merged alone, when
// its turn comes, so that the driver marks it as monitored and reads nothing else.

#pragma once

#include "tools/exchange/polling.h"

namespace fxtools {

using Blocks = QVector<QVector<RegisterRange>>;  // what is due in each
using Planner = std::function<Blocks(const QVector<RegisterRange>& due)>;

class PlanCycle
{
public:
    // Without a planner it is the driver that plans.
    explicit PlanCycle(ExchangeLoop& loop, Planner planner = {});

    void plan(const QVector<RegisterRange>& due);
    int blocks() const;

    // Reads each block once, and calls `onMerge` with the exchanges of each merge before the next
    // one is read. After a cycle that ended early, it goes on with the block that was in flight. A
    // planner is asked again now and then: it learns how fast the line is.
    Round poll(const std::function<void(const Round&)>& onMerge = {});

private:
    void start(const Blocks& blocks);
    void next();

    ExchangeLoop& m_loop;
    Planner m_planner;
    QVector<RegisterRange> m_due;
    Blocks m_merges;  // polled in turn
    int m_current = 0;
    int m_blocksOfMerge = 0;
    int m_cycle = 0;
    bool m_isBegun = false;  // a cycle has ended early
};

}  // namespace fxtools
