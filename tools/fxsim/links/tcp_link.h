// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A TCP server: several hosts in turn or at once, each with its own session on the one PLC.

#pragma once

#include "tools/fxsim/links/link.h"

#include <QHostAddress>
#include <QSocketNotifier>
#include <QTcpServer>

namespace fxsim {

// A host that connected. Its bytes go through the bare descriptor: the buffers and signals of a
// socket object would cost as much as the PLC itself. Deletes itself when the host disconnects.
class TcpClient : public QObject
{
    Q_OBJECT

public:
    // Owns `descriptor`, a connected socket. `name` is that of the host in the trace.
    TcpClient(Simulator& simulator, const Clock& clock, int descriptor, const QByteArray& name,
              QObject* parent);
    ~TcpClient() override;

signals:
    void linkTaken(int forMs);

private:
    void readAvailable();
    int write(const QByteArray& bytes) const;

    int m_descriptor;
    QSocketNotifier m_notifier;
    HostConnection m_host;
};

// Hands out bare descriptors, without socket objects.
class TcpServer : public QTcpServer
{
    Q_OBJECT

signals:
    void accepted(int descriptor);

protected:
    void incomingConnection(qintptr descriptor) override
    {
        emit accepted(static_cast<int>(descriptor));
    }
};

class TcpLink : public Link
{
    Q_OBJECT

public:
    TcpLink(Simulator& simulator, const Clock& clock, const QHostAddress& address, quint16 port);

    void open() override;
    void close() override;
    QString name() const override;

private:
    void welcome(int descriptor);

    TcpServer m_server;
    QHostAddress m_address;
    quint16 m_port;  // 0 until the system has chosen one
};

}  // namespace fxsim
