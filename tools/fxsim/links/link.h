// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What all links share: a session for each host, a timer that sends its replies when they are due,
// and a link that can close and come back. The kinds of link are pty_link, tcp_link and
// serial_link.

#pragma once

#include "tools/fxsim/line/clock.h"
#include "tools/fxsim/line/session.h"

#include <QObject>
#include <QTimer>

#include <functional>

namespace fxsim {

// One host on a link: bytes come in by receive() and go out, when they are due, by a function.
class HostConnection : public QObject
{
    Q_OBJECT

public:
    // Returns how many of the bytes could not be sent.
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

    virtual void open() = 0;  // throws an Error
    virtual void close() = 0;
    virtual QString name() const = 0;  // as the line "ready on" prints it

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
    bool m_failureReported = false;
};

}  // namespace fxsim
