// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/schedule.h"

#include "tools/exchange/blocks.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace fxtools {

namespace {

qint64 microseconds(Cost cost, const LineCost& line)
{
    return cost / line.baud;
}

bool comesBefore(const RegisterRange& one, const RegisterRange& other)
{
    return std::tie(one.type.name, one.station, one.first, one.together) <
           std::tie(other.type.name, other.station, other.first, other.together);
}

bool isSameKind(const RegisterRange& one, const RegisterRange& other)
{
    return one.type.name == other.type.name && one.station == other.station;
}

// From the first register of one to the last of the other.
RegisterRange fromTo(const RegisterRange& one, const RegisterRange& other)
{
    const int end = std::max(one.first + one.count, other.first + other.count);
    return one.part(0, end - one.first);
}

bool continues(const RegisterRange& range, const RegisterRange& next)
{
    return isSameKind(next, range) && next.first == range.first + range.count &&
           next.together == range.together;
}

}  // namespace

Schedule::Schedule(const QVector<PeriodicRange>& wanted, int wordsPerFrame, const LineCost& line)
    : m_wordsPerFrame(wordsPerFrame)
{
    for (const PeriodicRange& range : wanted)
        addValues(range);
    std::sort(m_values.begin(), m_values.end(), [](const Value& one, const Value& other) {
        if (comesBefore(one.registers, other.registers))
            return true;
        return !comesBefore(other.registers, one.registers) &&
               isShorter(one.wantedUs, other.wantedUs);
    });
    const auto end =
        std::unique(m_values.begin(), m_values.end(), [](const Value& one, const Value& other) {
            return !comesBefore(one.registers, other.registers);
        });
    m_values.erase(end, m_values.end());
    setLine(line);
}

void Schedule::begin(qint64 readUs)
{
    for (Value& value : m_values) {
        value.dueUs = readUs + value.expectedUs;
        value.wantedAgainUs = readUs + value.wantedUs;
    }
}

void Schedule::addValues(const PeriodicRange& wanted)
{
    const RegisterRange& range = wanted.registers;
    const bool fits = range.together <= mostInBlock(range.type, m_wordsPerFrame);
    for (RegisterRange part : range.cut(fits ? range.together : 1)) {
        part.together = part.count;
        m_values.append({part, wanted.periodUs});
    }
}

// A value that cannot be read as a whole leaves those that are parts of it.
void Schedule::setUnreadable(const QVector<RegisterRange>& unreadable)
{
    m_unreadable = unreadable;
    for (Value& value : m_values) {
        value.isReadable = std::none_of(
            unreadable.begin(), unreadable.end(), [&value](const RegisterRange& range) {
                return range.together > 1 ? isInside(range, value.registers)
                                          : overlap(range, value.registers);
            });
    }
    setLine(m_line);
}

void Schedule::setLine(const LineCost& line)
{
    m_line = line;
    QVector<PeriodLoad> wanted;
    for (const Value& value : qAsConst(m_values)) {
        const qint64 periodUs = value.wantedUs;
        const bool isKnown =
            std::any_of(wanted.begin(), wanted.end(),
                        [periodUs](const PeriodLoad& one) { return one.wantedUs == periodUs; });
        if (isKnown || !value.isReadable)
            continue;
        const QVector<RegisterRange> registers =
            rangesOf([periodUs](const Value& one) { return one.wantedUs == periodUs; });
        const Cost cost = costOf(planOf(registers), line);
        wanted.append({periodUs, static_cast<double>(microseconds(cost, line)), registers});
    }
    m_load = loadOf(wanted);
    for (Value& value : m_values) {
        for (const PeriodLoad& period : qAsConst(m_load.periods)) {
            if (period.wantedUs == value.wantedUs)
                value.expectedUs = period.expectedUs;
        }
    }
}

// Neighbours together.
QVector<RegisterRange> Schedule::rangesOf(const IsChosen& isChosen) const
{
    QVector<RegisterRange> ranges;
    for (const Value& value : m_values) {
        if (!value.isReadable || !isChosen(value))
            continue;
        if (!ranges.isEmpty() && continues(ranges.last(), value.registers))
            ranges.last().count += value.registers.count;
        else
            ranges.append(value.registers);
    }
    return ranges;
}

// The shortest plan for sorted ranges, parted where a block over two of them would touch unreadable
// registers. These may be a value of which a part alone can be read.
QVector<PlannedBlock> Schedule::planOf(const QVector<RegisterRange>& due) const
{
    QVector<PlannedBlock> plan;
    QVector<RegisterRange> unparted;
    for (const RegisterRange& range : due) {
        const bool isParted =
            !unparted.isEmpty() && isSameKind(unparted.last(), range) &&
            std::any_of(m_unreadable.begin(), m_unreadable.end(),
                        [joint = fromTo(unparted.last(), range)](const RegisterRange& unreadable) {
                            return overlap(unreadable, joint);
                        });
        if (isParted) {
            plan += shortestPlan(unparted, m_wordsPerFrame, m_line);
            unparted.clear();
        }
        unparted.append(range);
    }
    return plan + shortestPlan(unparted, m_wordsPerFrame, m_line);
}

qint64 Schedule::nextUs() const
{
    qint64 nextUs = std::numeric_limits<qint64>::max();
    for (const Value& value : m_values) {
        if (value.isReadable)
            nextUs = std::min(nextUs, value.nextUs());
    }
    return nextUs;
}

QVector<RegisterRange> Schedule::next(qint64 nowUs)
{
    if (nextUs() > nowUs)
        return {};
    const auto rank = [nowUs](const Value& value) {
        return std::make_tuple(!value.isReadable, value.nextUs() > nowUs, value.dueUs > nowUs,
                               value.dueUs + value.expectedUs, value.expectedUs);
    };
    const auto first = std::min_element(
        m_values.begin(), m_values.end(),
        [rank](const Value& one, const Value& other) { return rank(one) < rank(other); });
    const bool isDue = first->dueUs <= nowUs;
    RegisterRange block = first->registers;
    for (const PlannedBlock& planned : planOf(rangesOf([isDue, nowUs](const Value& value) {
             return (isDue ? value.dueUs : value.nextUs()) <= nowUs;
         }))) {
        if (isInside(first->registers, planned.registers))
            block = planned.registers;
    }
    const IsChosen isRead = [&block](const Value& value) {
        return isInside(value.registers, block);
    };
    const QVector<RegisterRange> read = rangesOf(isRead);
    const qint64 mayLagUs = microseconds(exchangeCost(m_line, mostBytesInBlock), m_line);
    for (Value& value : m_values) {
        if (isRead(value))
            value.noteRead(nowUs, mayLagUs);
    }
    return read;
}

// A period lasts from due to due, not from reading to reading: what was late does not add up. But
// what lags behind by more than an exchange, after a pause of the line, is not made up for.
void Schedule::Value::noteRead(qint64 nowUs, qint64 mayLagUs)
{
    wantedAgainUs = nowUs + wantedUs;
    dueUs = dueUs > nowUs ? nowUs + expectedUs : std::max(dueUs + expectedUs, nowUs - mayLagUs);
}

}  // namespace fxtools
