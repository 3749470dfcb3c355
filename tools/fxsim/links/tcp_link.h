// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A TCP server: several hosts in turn or together, each with a session of its own on the one PLC.

#pragma once

#include "tools/fxsim/links/link.h"

#include <QHostAddress>
#include <QTcpServer>

namespace fxsim {

// Hands out the connections as they are, without socket objects around them.
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

    QString open() override;
    void close() override;
    QString name() const override;

private:
    void welcome(int descriptor);

    TcpServer m_server;
    QHostAddress m_address;
    quint16 m_port;  // 0 until the system chose one
};

}  // namespace fxsim
