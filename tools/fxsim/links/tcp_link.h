// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A TCP server: several hosts in turn or at once, each with its own session on the one PLC.

#pragma once

#include "tools/fxsim/links/link.h"

#include <QHostAddress>
#include <QTcpServer>

namespace fxsim {

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
