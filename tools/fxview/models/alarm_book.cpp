// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/alarm_book.h"

#include <QCoreApplication>

#include <algorithm>

namespace fxview {

QString whatText(AlarmEvent::What what)
{
    switch (what) {
    case AlarmEvent::What::Raised:
        return QCoreApplication::translate("fxview::AlarmBook", "raised");
    case AlarmEvent::What::Cleared:
        return QCoreApplication::translate("fxview::AlarmBook", "cleared");
    case AlarmEvent::What::Acknowledged:
        break;
    }
    return QCoreApplication::translate("fxview::AlarmBook", "acknowledged");
}

QString kindText(const QString& alarmKind)
{
    return alarmKind == QLatin1String("low")
               ? QCoreApplication::translate("fxview::AlarmBook", "too low")
               : QCoreApplication::translate("fxview::AlarmBook", "too high");
}

std::vector<Alarm>::iterator AlarmBook::find(int tag, const QString& kind)
{
    return std::find_if(m_open.begin(), m_open.end(),
                        [&](const Alarm& alarm) { return alarm.tag == tag && alarm.kind == kind; });
}

void AlarmBook::take(const Reading& reading)
{
    if (reading.quality != Quality::Good)
        return;
    const QString kind = m_tags[reading.tag].alarmOf(reading.value);
    const QString before = m_kinds[reading.tag];
    if (kind == before)
        return;
    m_kinds[reading.tag] = kind;
    if (!before.isEmpty())
        clear(reading, before);
    if (!kind.isEmpty())
        raise(reading, kind);
}

void AlarmBook::raise(const Reading& reading, const QString& kind)
{
    Alarm alarm{reading.tag, kind, reading.value, 1, reading.timeMs, {}, {}};
    const auto open = find(reading.tag, kind);
    if (open != m_open.end()) {
        alarm.times = open->times + 1;
        m_open.erase(open);
    }
    m_open.push_back(alarm);
    note({AlarmEvent::What::Raised, reading.timeMs, reading.tag, kind, reading.value});
}

void AlarmBook::clear(const Reading& reading, const QString& kind)
{
    find(reading.tag, kind)->clearedMs = reading.timeMs;
    note({AlarmEvent::What::Cleared, reading.timeMs, reading.tag, kind, reading.value});
    closeEnded();
}

void AlarmBook::acknowledge(int tag, const QString& kind, qint64 nowMs)
{
    const auto open = find(tag, kind);
    if (open == m_open.end() || open->acknowledgedMs)
        return;
    open->acknowledgedMs = nowMs;
    note({AlarmEvent::What::Acknowledged, nowMs, tag, kind, {}});
    closeEnded();
}

void AlarmBook::acknowledgeAll(qint64 nowMs)
{
    const std::vector<Alarm> open = m_open;
    for (const Alarm& alarm : open)
        acknowledge(alarm.tag, alarm.kind, nowMs);
}

void AlarmBook::closeEnded()
{
    m_open.erase(
        std::remove_if(m_open.begin(), m_open.end(),
                       [](const Alarm& alarm) { return alarm.clearedMs && alarm.acknowledgedMs; }),
        m_open.end());
}

void AlarmBook::note(const AlarmEvent& event)
{
    ++m_changes;
    m_events.push_back(event);
    if (m_events.size() > mostEvents)
        m_events.pop_front();
    if (onEvent)
        onEvent(event);
}

int AlarmBook::unacknowledged() const
{
    return static_cast<int>(std::count_if(
        m_open.begin(), m_open.end(), [](const Alarm& alarm) { return !alarm.acknowledgedMs; }));
}

bool AlarmBook::isAlerting() const
{
    return std::any_of(m_open.begin(), m_open.end(), [](const Alarm& alarm) {
        return alarm.isActive() && !alarm.acknowledgedMs;
    });
}

}  // namespace fxview
