// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/service/served_tags.h"

#include "tools/exchange/blocks.h"

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

bool isNumber(const QJsonValue& value)
{
    return value.isDouble() && std::isfinite(value.toDouble());
}

}  // namespace

QJsonValue servedValue(const Tag& tag, const QVector<quint32>& registers)
{
    const QJsonValue value = tag.valueOf(tag.rawOf(registers));
    return tag.isOneBit() ? QJsonValue(value.toInt() != 0) : value;
}

ServedTags::ServedTags(const QVector<Tag>& tags, const Moment& start) : m_startUs(start.us)
{
    for (const Tag& tag : tags)
        m_tags.append({tag, qint64(1000) * tag.periodMs.value_or(0),
                       QVector<quint32>(tag.asked.range.count, 0)});
}

void ServedTags::Served::take(const QVector<quint32>& values)
{
    if (values == registers)
        return;
    registers = values;
    isValid = !tag.isNumber() || isNumber(servedValue(tag, registers));
}

int ServedTags::find(const QString& name) const
{
    for (int index = 0; index < m_tags.size(); ++index) {
        if (tag(index).name == name)
            return index;
    }
    return -1;
}

void ServedTags::setPeriods(const LineLoad& load)
{
    for (Served& served : m_tags) {
        const qint64 wantedUs = qint64(1000) * served.tag.periodMs.value_or(0);
        for (const PeriodLoad& period : load.periods) {
            if (period.wantedUs == wantedUs)
                served.periodUs = std::max(wantedUs, period.expectedUs);
        }
    }
}

QVector<int> ServedTags::noteRead(const RegisterRange& block, const ValuesOf& valuesOf,
                                  const Moment& now)
{
    QVector<int> whole;
    for (int index = 0; index < m_tags.size(); ++index) {
        Served& served = m_tags[index];
        const RegisterRange& range = served.tag.asked.range;
        if (!isInside(range, block))
            continue;
        served.isTouched = false;
        served.readUtc = now.utc;
        served.readUs = now.us;
        served.take(valuesOf(range));
        whole.append(index);
    }
    return whole;
}

void ServedTags::noteFailure(const RegisterRange& block)
{
    for (Served& served : m_tags)
        served.isTouched |= overlap(served.tag.asked.range, block);
}

void ServedTags::noteProblems(const ProblemOf& problemOf, const Moment& now)
{
    for (Served& served : m_tags) {
        if (!served.isTouched)
            continue;
        const RegisterRange& range = served.tag.asked.range;
        std::optional<ReplyVerdict> problem;
        for (int index = 0; index < range.count && !problem; ++index)
            problem = problemOf(range, index);
        if (problem) {
            served.problem = verdictText(*problem);
            served.problemUs = now.us;
        }
        served.isTouched = false;
    }
}

void ServedTags::noteDown(const QString& reason, const Moment& now)
{
    for (Served& served : m_tags) {
        served.problem = reason;
        served.problemUs = now.us;
        served.isTouched = false;
    }
}

void ServedTags::tellAgain()
{
    for (Served& served : m_tags)
        served.told = {};
}

TagState ServedTags::stateOf(int index, const Moment& now) const
{
    const Served& served = m_tags[index];
    const qint64 readUs = served.readUs;
    if (served.problemUs >= 0 && served.problemUs >= readUs)
        return {Quality::Bad, served.problem, {}, served.readUtc};
    if (readUs < 0 && now.us - m_startUs <= leastAgeUs)
        return {};
    if (readUs < 0)
        return {Quality::Stale, QStringLiteral("not read yet"), {}, served.readUtc};
    if (now.us - readUs > std::max(leastAgeUs, periodsUntilStale * served.periodUs))
        return {Quality::Stale, QStringLiteral("not read for 3 periods"), {}, served.readUtc};
    if (!served.isValid)
        return {
            Quality::Bad, QStringLiteral("its registers do not hold a number"), {}, served.readUtc};
    return {Quality::Good, {}, served.registers, served.readUtc};
}

QVector<ServedTags::Change> ServedTags::changes(const Moment& now) const
{
    QVector<Change> changes;
    for (int index = 0; index < m_tags.size(); ++index) {
        const TagState state = stateOf(index, now);
        if (!state.isSame(m_tags[index].told))
            changes.append({index, state});
    }
    return changes;
}

}  // namespace fxtools
