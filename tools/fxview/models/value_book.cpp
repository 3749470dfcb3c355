// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/value_book.h"

#include <QCoreApplication>

#include <algorithm>

namespace fxview {

namespace {

constexpr qint64 historyBytesOfAll = 128 << 20;
constexpr int mostHistories = 10000;      // more tags than a PLC has registers have none
constexpr qint64 shortestStaleMs = 3000;  // a busy line keeps no period to the second
constexpr int periodsUntilStale = 3;
constexpr qint64 longestUnsaidMs = 10000;  // of tags that are read as fast as the line allows

QString told(const char* text)
{
    return QCoreApplication::translate("fxview::ValueBook", text);
}

// With zeros at the end, so that a value that changes keeps its width. It loses no digit.
QString padded(const QString& number, int decimals)
{
    const int point = number.indexOf('.');
    const int has = point < 0 ? 0 : number.size() - point - 1;
    if (has >= decimals || number.contains('e'))
        return number;
    return (point < 0 ? number + '.' : number) + QString(decimals - has, '0');
}

}  // namespace

ValueBook::ValueBook(const QVector<fxtools::Tag>& tags)
    : m_tags(tags), m_states(static_cast<size_t>(tags.size())),
      m_bucketsPerLevel(bucketsPerLevel(tags.size(), historyBytesOfAll))
{}

void ValueBook::take(const Reading& reading)
{
    TagState& state = m_states[static_cast<size_t>(reading.tag)];
    state.quality = reading.quality;
    state.reason = reading.reason;
    if (reading.quality == Quality::Good) {
        state.raw = reading.raw;
        state.value = reading.value;
        state.readMs = reading.timeMs;
    }
    remember(state, reading);
}

void ValueBook::remember(TagState& state, const Reading& reading)
{
    if (reading.quality != Quality::Good || !reading.value.isDouble()) {
        if (state.history)
            state.history->addGap();
        return;
    }
    if (!state.history && m_tags.size() <= mostHistories)
        state.history = std::make_unique<History>(m_bucketsPerLevel);
    if (state.history)
        state.history->add(reading.timeMs, reading.value.toDouble(), longestAgeMs(reading.tag));
}

qint64 ValueBook::longestAgeMs(int index) const
{
    const std::optional<int>& periodMs = m_tags[index].periodMs;
    return periodMs ? std::max(periodsUntilStale * qint64(*periodMs), shortestStaleMs)
                    : longestUnsaidMs;
}

// A reading from a time to come was there before the clock was set back: how old it is nobody
// knows.
Quality ValueBook::qualityAt(int index, qint64 nowMs) const
{
    const TagState& state = this->state(index);
    const qint64 longestMs = longestAgeMs(index);
    const bool isOld = nowMs - state.readMs > longestMs || state.readMs - nowMs > longestMs;
    return state.quality == Quality::Good && isOld ? Quality::Stale : state.quality;
}

QString ValueBook::reasonAt(int index, qint64 nowMs) const
{
    const TagState& state = this->state(index);
    if (!state.reason.isEmpty())
        return state.reason;
    if (state.readMs == 0)
        return told(QT_TRANSLATE_NOOP("fxview::ValueBook", "not read yet"));
    return qualityAt(index, nowMs) == Quality::Good
               ? QString()
               : told(QT_TRANSLATE_NOOP("fxview::ValueBook", "no newer reading"));
}

qint64 ValueBook::ageMs(int index, qint64 nowMs) const
{
    const qint64 readMs = state(index).readMs;
    return readMs == 0 ? -1 : std::max<qint64>(nowMs - readMs, 0);
}

bool ValueBook::hasValue(int index, qint64 nowMs) const
{
    return state(index).readMs != 0 && qualityAt(index, nowMs) != Quality::Bad;
}

QString ValueBook::alarm(int index, qint64 nowMs) const
{
    return hasValue(index, nowMs) ? m_tags[index].alarmOf(state(index).value) : QString();
}

qint64 ValueBook::historyBytes() const
{
    qint64 bytes = 0;
    for (const TagState& state : m_states)
        bytes += state.history ? state.history->bytes() : 0;
    return bytes;
}

bool isReadOnly(const fxtools::Tag& tag)
{
    return tag.isReadOnly() || !tag.asked.range.type.writable;
}

QString valueText(const fxtools::Tag& tag, const QJsonValue& value)
{
    if (value.isNull() || value.isUndefined())
        return QStringLiteral("–");
    if (tag.isOneBit() && value.isDouble())
        return value.toDouble() != 0 ? told(QT_TRANSLATE_NOOP("fxview::ValueBook", "on"))
                                     : told(QT_TRANSLATE_NOOP("fxview::ValueBook", "off"));
    const QString text = value.toVariant().toString();
    return value.isDouble() ? padded(text, tag.decimals()) : text;
}

QString valueWithUnit(const fxtools::Tag& tag, const QJsonValue& value)
{
    const QString text = valueText(tag, value);
    if (text.isEmpty())
        return QStringLiteral("\"\"");
    return tag.unit.isEmpty() || value.isNull() ? text : text + ' ' + tag.unit;
}

QString ageText(qint64 ageMs)
{
    constexpr qint64 second = 1000, minute = 60 * second, hour = 60 * minute, day = 24 * hour;
    if (ageMs < 0)
        return QStringLiteral("–");
    if (ageMs < 10 * second)
        return QString::number(static_cast<double>(ageMs) / second, 'f', 1) + " s";
    if (ageMs < 2 * minute)
        return QString::number(ageMs / second) + " s";
    if (ageMs < 2 * hour)
        return QString::number(ageMs / minute) + " min";
    return ageMs < 2 * day ? QString::number(ageMs / hour) + " h"
                           : QString::number(ageMs / day) + " d";
}

}  // namespace fxview
