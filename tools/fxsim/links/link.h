// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A way from hosts to the simulated PLC, and what all ways share: a session for each host, a timer
// that lets its replies out when they are due, and a link that can be taken away and comes back.
// The ways themselves are in pty_link, tcp_link and serial_link.

#pragma once

#include "tools/fxsim/line/clock.h"
#include "tools/fxsim/line/session.h"

#include <QObject>
#include <QTimer>

#include <functional>

namespace fxsim {

// One host on a link: bytes in by receive(), bytes out by the function it was given, at their time.
class HostConnection : public QObject
{
    Q_OBJECT

public:
    // `write` answers how many bytes it could not pass on.
    using Write = std::function<int(const QByteArray& bytes)>;

    HostConnection(Simulator& simulator, const Clock& clock, const QByteArray& client, Write write);

    Session& session() { return m_session; }
    void receive(const QByteArray& bytes);

signals:
    void linkTaken(int forMs);

private:
    void sendDue();

    Simulator& m_simulator;
    const Clock& m_clock;
    Session m_session;
    Write m_write;
    QTimer m_timer;
};

class Link : public QObject
{
    Q_OBJECT

public:
    Link(Simulator& simulator, const Clock& clock);

    virtual QString open() = 0;  // what went wrong, or nothing
    virtual void close() = 0;
    virtual QString name() const = 0;  // as in the line that says ready

    void drop(int forMs);

signals:
    void message(const QString& text);

protected:
    Simulator& simulator() { return m_simulator; }
    const Clock& clock() const { return m_clock; }

private:
    void reopen();

    Simulator& m_simulator;
    const Clock& m_clock;
    QTimer m_return;
    bool m_down = false;
    bool m_failureTold = false;
};

}  // namespace fxsim
