// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The links to hosts, and what they share: a session for each host, a timer that sends its replies
// when they are due, and a link that can close and come back.

#pragma once

#include "tools/fxsim/line/paced_line.h"
#include "tools/fxsim/line/session.h"

#include <QHostAddress>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

#include <sys/resource.h>

namespace fxsim {

// One host on a link: bytes come in by receive() and go out, when they are due, by a function.
class Link;
class HostConnection : public QObject
{
public:
    // Returns how many of the bytes could not be sent.
    using Write = std::function<int(const QByteArray& bytes)>;

    HostConnection(Link& link, const QByteArray& client, Write write);

    Session& session() { return m_session; }
    void receive(const QByteArray& bytes);

private:
    void sendDue();

    Link& m_link;
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

    Simulator& simulator() { return m_simulator; }
    const Clock& clock() const { return m_clock; }

signals:
    void message(const QString& text);

private:
    void reopen();

    Simulator& m_simulator;
    const Clock& m_clock;
    QTimer m_return;
    bool m_down = false;
    bool m_failureReported = false;
};

// A pseudo-terminal: the host opens its other end like a serial port. It is raw from the start, so
// a host that sets nothing reads the bytes as they were sent. A symbolic link at `linkPath`, unless
// that is empty, gives it a fixed name.
std::unique_ptr<Link> makePtyLink(Simulator& simulator, const Clock& clock,
                                  const QString& linkPath);

// A TCP server: several hosts in turn or at once, each with its own session on the one PLC.
std::unique_ptr<Link> makeTcpLink(Simulator& simulator, const Clock& clock,
                                  const QHostAddress& address, quint16 port);

// A real serial port with 7 data bits, even parity and 1 stop bit. The hardware paces the
// characters.
std::unique_ptr<Link> makeSerialLink(Simulator& simulator, const Clock& clock,
                                     const QString& device, int baud);

// Descriptors that no client gets, so that there is always one for a file and for telling the next
// client that there are too many: without any, a server is woken for ever by a client that it
// cannot accept.
inline bool isTooMany(int descriptor)
{
    constexpr rlim_t spare = 16;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<rlim_t>(descriptor) + spare >= limit.rlim_cur;
}

}  // namespace fxsim
