// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/shortest_plan.h"

#include "tools/exchange/blocks.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace fxtools {

namespace {

// Sorted, without those that lie in another: each begins and ends behind the one before.
QVector<Span> outermost(QVector<Span> values)
{
    std::sort(values.begin(), values.end(), [](const Span& one, const Span& other) {
        return std::tie(one.first, other.last) < std::tie(other.first, one.last);
    });
    QVector<Span> kept;
    kept.reserve(values.size());
    for (const Span& value : qAsConst(values)) {
        if (kept.isEmpty() || value.last > kept.last().last)
            kept.append(value);
    }
    return kept;
}

// The best cover of the first values, up to one of them.
struct Cover
{
    Cost cost = 0;
    int blocks = 0;
    int lastBegins = 0;  // the value with which its last block begins

    bool isBetterThan(const Cover& other) const
    {
        return std::tie(cost, blocks) < std::tie(other.cost, other.blocks);
    }
};

// The last block begins with one of the values from `end` - 1 down to what a frame allows; what
// comes before it is covered best already.
Cover bestCover(const QVector<Span>& values, const QVector<Cover>& covers, int end,
                const BlockCost& cost)
{
    Cover best;
    for (int begin = end - 1; begin >= 0; --begin) {
        const int width = Span{values[begin].first, values[end - 1].last}.width();
        if (width > cost.mostNumbers)
            break;
        const Cover& before = covers[begin];
        const Cover cover = {before.cost + cost.fixed + cost.perNumber * width, before.blocks + 1,
                             begin};
        if (best.blocks == 0 || cover.isBetterThan(best))
            best = cover;
    }
    return best;
}

int registersPerNumber(const RegisterType& type)
{
    return type.isBit() ? bitsPerByte : 1;
}

int mostNumbers(const RegisterType& type, int wordsPerFrame)
{
    const int most = type.mostInFrame(wordsPerFrame) / registersPerNumber(type);
    return std::min(most, mostBytesInBlock / type.valueBytes());
}

// The values of a range; one that no frame holds falls into its numbers.
void addValues(const RegisterRange& range, int mostNumbers, QVector<Span>& values)
{
    const int size = registersPerNumber(range.type);
    for (int index = 0; index < range.count; index += range.together) {
        const int last = std::min(index + range.together, range.count) - 1;
        const Span value = {(range.first + index) / size, (range.first + last) / size};
        if (value.width() <= mostNumbers) {
            values.append(value);
            continue;
        }
        for (int number = value.first; number <= value.last; ++number)
            values.append({number, number});
    }
}

// For registers of one type and station.
QVector<PlannedBlock> planOfGroup(const QVector<RegisterRange>& due, int wordsPerFrame,
                                  const LineCost& line)
{
    const RegisterType& type = due.first().type;
    const int most = mostNumbers(type, wordsPerFrame);
    QVector<Span> values;
    for (const RegisterRange& range : due)
        addValues(range, most, values);
    const Cost perNumber = exchangeCost(line, type.valueBytes()) - exchangeCost(line, 0);
    QVector<PlannedBlock> blocks;
    for (const Span& span : shortestCover(values, {exchangeCost(line, 0), perNumber, most})) {
        const int size = registersPerNumber(type);
        const RegisterRange block = {type, due.first().station, size * span.first,
                                     size * span.width()};
        blocks.append({block, dueWithin(due, block)});
    }
    return blocks;
}

}  // namespace

QVector<Span> shortestCover(QVector<Span> values, const BlockCost& cost)
{
    values = outermost(std::move(values));
    QVector<Cover> covers = {Cover()};
    covers.reserve(values.size() + 1);
    for (int end = 1; end <= values.size(); ++end)
        covers.append(bestCover(values, covers, end, cost));
    QVector<Span> blocks(covers.last().blocks);
    int end = values.size();
    for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
        const int begin = covers[end].lastBegins;
        *block = {values[begin].first, values[end - 1].last};
        end = begin;
    }
    return blocks;
}

int mostInBlock(const RegisterType& type, int wordsPerFrame)
{
    return mostNumbers(type, wordsPerFrame) * registersPerNumber(type);
}

int PlannedBlock::bytes() const
{
    return registers.count / registersPerNumber(registers.type) * registers.type.valueBytes();
}

QVector<PlannedBlock> shortestPlan(const QVector<RegisterRange>& due, int wordsPerFrame,
                                   const LineCost& line)
{
    QVector<QVector<RegisterRange>> groups;
    for (const RegisterRange& range : due) {
        const auto group = std::find_if(groups.begin(), groups.end(), [&range](const auto& other) {
            return other.first().type.name == range.type.name &&
                   other.first().station == range.station;
        });
        if (group != groups.end())
            group->append(range);
        else
            groups.append({range});
    }
    QVector<PlannedBlock> plan;
    for (const QVector<RegisterRange>& group : groups)
        plan += planOfGroup(group, wordsPerFrame, line);
    return plan;
}

QVector<RegisterRange> dueWithin(const QVector<RegisterRange>& due, const RegisterRange& block)
{
    QVector<RegisterRange> within;
    for (const RegisterRange& range : due) {
        if (!overlap(range, block))
            continue;
        const int from = std::max(block.first, range.first);
        const int end = std::min(block.first + block.count, range.first + range.count);
        within.append(range.part(from - range.first, end - from));
    }
    return within;
}

Cost costOf(const QVector<PlannedBlock>& plan, const LineCost& line)
{
    return std::accumulate(plan.begin(), plan.end(), Cost(0),
                           [&line](Cost sum, const PlannedBlock& block) {
                               return sum + exchangeCost(line, block.bytes());
                           });
}

Planner shortestPlanner(ExchangeLoop& loop, int baud, std::optional<qint64> turnaroundUs)
{
    return [&loop, baud, turnaroundUs](const QVector<RegisterRange>& due) {
        const LineCost line = measuredLine(acceptedUse(loop.statistics()), baud, turnaroundUs);
        Blocks blocks;
        for (const PlannedBlock& block :
             shortestPlan(due, loop.session().settings().wordsPerFrame, line))
            blocks.append(block.due);
        return blocks;
    };
}

}  // namespace fxtools
