// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Alarms of tags beyond their limits: raised and cleared by readings, acknowledged by people. An
// alarm stays open until it is both cleared and acknowledged; one that is raised again while it is
// open is the same, counted once more, so that there are two at most for each tag. It is fed with
// every reading, whatever the window does. Bad readings neither raise nor clear.

#pragma once

#include "tools/fxview/plc/plc_source.h"

#include <deque>
#include <functional>
#include <vector>

namespace fxview {

struct Alarm
{
    int tag = 0;
    QString kind;      // "low" or "high"
    QJsonValue value;  // that raised it last
    int times = 1;     // that it was raised
    qint64 raisedMs = 0;
    std::optional<qint64> clearedMs, acknowledgedMs;

    bool isActive() const { return !clearedMs; }
};

struct AlarmEvent
{
    enum class What
    {
        Raised,
        Cleared,
        Acknowledged,
    };

    What what;
    qint64 timeMs;
    int tag;
    QString kind;
    QJsonValue value;  // then; null if acknowledged
};

class AlarmBook
{
public:
    static constexpr size_t mostEvents = 1000;  // that are remembered here

    std::function<void(const AlarmEvent&)> onEvent;

    explicit AlarmBook(const QVector<fxtools::Tag>& tags) : m_tags(tags), m_kinds(tags.size()) {}

    void take(const Reading& reading);
    void acknowledge(int tag, const QString& kind, qint64 nowMs);
    void acknowledgeAll(qint64 nowMs);

    const std::vector<Alarm>& open() const { return m_open; }          // the newest last
    const std::deque<AlarmEvent>& events() const { return m_events; }  // the same
    const fxtools::Tag& tag(int index) const { return m_tags[index]; }
    int changes() const { return m_changes; }  // counts up

    int unacknowledged() const;  // open ones
    bool isAlerting() const;     // one is active and not acknowledged

private:
    std::vector<Alarm>::iterator find(int tag, const QString& kind);
    void raise(const Reading& reading, const QString& kind);
    void clear(const Reading& reading, const QString& kind);
    void note(const AlarmEvent& event);
    void closeEnded();

    QVector<fxtools::Tag> m_tags;
    QVector<QString> m_kinds;  // of each tag, at its newest good reading
    std::vector<Alarm> m_open;
    std::deque<AlarmEvent> m_events;
    int m_changes = 0;
};

QString whatText(AlarmEvent::What what);     // "raised"
QString kindText(const QString& alarmKind);  // "too low"

}  // namespace fxview
