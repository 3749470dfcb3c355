// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/serving/served_tags.h"

#include "tools/exchange/blocks.h"
#include "tools/fxhost/views/json_text.h"
#include "tools/tags/shortest_plan.h"

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr qint64 never = -1;

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

ServedTags::ServedTags(const QVector<Tag>& tags, int wordsPerFrame, const Moment& start)
    : m_startUs(start.us)
{
    for (const Tag& tag : tags) {
        const RegisterRange& range = tag.asked.range;
        const bool isInParts = range.together > mostInBlock(range.type, wordsPerFrame);
        m_tags.append({tag, isInParts, qint64(1000) * tag.periodMs.value_or(0),
                       QVector<quint32>(range.count, 0),
                       QVector<qint64>(isInParts ? range.count : 1, never)});
    }
}

qint64 ServedTags::Served::oldestUs() const
{
    return *std::min_element(readUs.begin(), readUs.end());
}

void ServedTags::Served::take(const QVector<quint32>& values)
{
    if (values == registers)
        return;
    registers = values;
    isValid = !tag.isNumber() || isNumber(servedValue(tag, registers));
}

const Tag* ServedTags::find(const QString& name) const
{
    const auto found = std::find_if(m_tags.begin(), m_tags.end(), [&name](const Served& served) {
        return served.tag.name == name;
    });
    return found == m_tags.end() ? nullptr : &found->tag;
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

void ServedTags::noteRead(const RegisterRange& block, const ValuesOf& valuesOf, const Moment& now)
{
    for (Served& served : m_tags) {
        const RegisterRange& range = served.tag.asked.range;
        if (!overlap(range, block) || (!served.isInParts && !isInside(range, block)))
            continue;
        served.isTouched = false;
        served.readUtc = now.utc;
        if (!served.isInParts) {
            served.take(valuesOf(range));
            served.readUs[0] = now.us;
            continue;
        }
        const int from = std::max(block.first - range.first, 0);
        const int to = std::min(block.first + block.count - range.first, range.count);
        const QVector<quint32> part = valuesOf(range.part(from, to - from));
        std::copy(part.begin(), part.end(), served.registers.begin() + from);
        std::fill(served.readUs.begin() + from, served.readUs.begin() + to, now.us);
    }
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

ServedTags::State ServedTags::stateOf(const Served& served, const Moment& now) const
{
    const qint64 readUs = served.oldestUs();
    if (served.problemUs >= 0 && served.problemUs >= readUs)
        return {Quality::Bad, served.problem, {}};
    if (readUs < 0 && now.us - m_startUs <= leastAgeUs)
        return {};
    if (readUs < 0)
        return {Quality::Stale, QStringLiteral("not read yet"), {}};
    if (now.us - readUs > std::max(leastAgeUs, periodsUntilStale * served.periodUs))
        return {Quality::Stale, QStringLiteral("not read for 3 periods"), {}};
    if (!served.isValid)
        return {Quality::Bad, QStringLiteral("its registers do not hold a number"), {}};
    return {Quality::Good, {}, served.registers};
}

// All of a line that is good was read at one time, which is that of the line.
QByteArray ServedTags::nextEvent(const Moment& now)
{
    QVector<JsonMember> good;
    QVector<JsonMember> stale;
    QVector<JsonMember> bad;
    std::optional<qint64> utc;
    int bytes = 0;
    for (Served& served : m_tags) {
        const State state = stateOf(served, now);
        if (state == served.told || bytes >= mostBytesInEvent)
            continue;
        const bool isGood = state.quality == Quality::Good;
        if (isGood && utc && *utc != served.readUtc)
            continue;  // in the next line
        if (isGood)
            utc = served.readUtc;
        const QByteArray value =
            jsonText(isGood ? servedValue(served.tag, served.registers) : QJsonValue(state.reason));
        (isGood                            ? good
         : state.quality == Quality::Stale ? stale
                                           : bad)
            .append({served.tag.name, value});
        bytes += served.tag.name.size() + value.size();
        served.told = state;
    }
    if (good.isEmpty() && stale.isEmpty() && bad.isEmpty())
        return {};
    QVector<JsonMember> members = {{QStringLiteral("event"), jsonText(QStringLiteral("values"))},
                                   {QStringLiteral("time"), jsonText(utc.value_or(now.utc))}};
    const auto add = [&members](const char* name, const QVector<JsonMember>& values) {
        if (!values.isEmpty())
            members.append({QLatin1String(name), jsonObject(values)});
    };
    add("good", good);
    add("stale", stale);
    add("bad", bad);
    return jsonObject(members);
}

}  // namespace fxtools
