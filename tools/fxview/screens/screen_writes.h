// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the elements of a screen write. Whoever presses a momentary button owes its release: it is
// sent when the button is let go, whatever the reason, and again until the PLC is known to have it.
// While the link is down nothing new is written, and what is pressed counts as let go.

#pragma once

#include "tools/fxview/plc/plc_source.h"

#include <QHash>
#include <QMap>

namespace fxview {

class ScreenWrites : public QObject
{
    Q_OBJECT

public:
    explicit ScreenWrites(PlcSource& source);
    ~ScreenWrites() override;  // lets everything go

    bool mayWrite() const { return m_isLinkUp && !m_isEnding; }
    bool isWaiting(int tag) const { return m_waiting.values().contains(tag); }  // for a result

    // Ignored unless mayWrite(), and while the result of the last one is awaited.
    void write(int tag, const QString& text);

    void press(int tag);
    void release(int tag);
    void releaseAll();
    void end();  // from now on only releases

    bool isReleased() const { return m_pressed.isEmpty(); }  // all, and known to be
    QVector<int> overdue() const;  // let go, but the PLC has not confirmed it as it should

    void setLinkUp(bool isUp);
    void take(const WriteResult& result);
    void showMoment(qint64 nowMs);

signals:
    void changed();  // what may be written, what is awaited, what is released
    void told(const WriteResult& result);
    void stillOn(int tag);  // released, but on again each time: it is sent no more

private:
    struct Press
    {
        bool isHeld = true;
        int releaseId = 0;  // awaited; 0: held, or to be sent
        bool isOverdue = false;
        int failures = 0;  // in a row, of acknowledged releases
        qint64 letGoMs = 0;
        qint64 sentMs = 0;
    };

    int expect(int tag);  // the id of a write of this tag
    void sendRelease(int tag, Press& press);
    void noteRelease(const WriteResult& result);

    PlcSource& m_source;
    bool m_isLinkUp = false;
    bool m_isEnding = false;
    int m_lastId = 0;
    qint64 m_nowMs = 0;
    QHash<int, int> m_waiting;   // the tag of each write
    QMap<int, Press> m_pressed;  // by tag, until the release is confirmed
};

}  // namespace fxview
