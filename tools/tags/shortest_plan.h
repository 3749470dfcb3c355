// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The plan that costs the least time on the line: the registers that are due, covered by blocks of
// at most one frame. A block may read over a gap where that is cheaper than another exchange, and
// only there. docs/polling.md says why no plan is shorter.

#pragma once

#include "tools/exchange/plan_cycle.h"
#include "tools/tags/cost_model.h"

namespace fxtools {

constexpr int mostBytesInBlock = 64;

// Neighbours, by their numbers: words, counters, or bytes of bits.
struct Span
{
    int first;
    int last;

    int width() const { return last - first + 1; }
};

struct BlockCost
{
    Cost fixed;      // of each block
    Cost perNumber;  // of each number in it, wanted or not
    int mostNumbers;
};

// The cheapest cover of `values`, each of them whole in one block; of equally cheap ones that with
// the fewest blocks. Values may share numbers; each is at most `mostNumbers` wide.
QVector<Span> shortestCover(QVector<Span> values, const BlockCost& cost);

// A block, and what is due in it.
struct PlannedBlock
{
    RegisterRange registers;
    QVector<RegisterRange> due;

    int bytes() const;
    int characters() const { return exchangeCharacters(bytes()); }
};

// In registers.
int mostInBlock(const RegisterType& type, int wordsPerFrame);

// What a frame holds: `wordsPerFrame` words, eight times as many bits, half as many counters, and
// never more than 64 bytes.
QVector<PlannedBlock> shortestPlan(const QVector<RegisterRange>& due, int wordsPerFrame,
                                   const LineCost& line);

// The parts of what is due that lie in a block.
QVector<RegisterRange> dueWithin(const QVector<RegisterRange>& due, const RegisterRange& block);

Cost costOf(const QVector<PlannedBlock>& plan, const LineCost& line);

// The shortest plan for a loop's line as it is known by then: with the turnaround that is given, or
// that the exchanges so far have shown. The loop must outlive it.
Planner shortestPlanner(ExchangeLoop& loop, int baud, std::optional<qint64> turnaroundUs);

}  // namespace fxtools
