// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A TCP connection to a serial server, or to a simulator that listens.

#pragma once

#include "host/device_link.h"

#include <QTcpSocket>

namespace fxhost {

class TcpLink : public DeviceLink
{
public:
    TcpLink(const QString& host, quint16 port);

    QString name() const override;
    void open() override;
    bool isOpen() const override;

protected:
    QIODevice& device() override { return m_socket; }

private:
    QString m_host;
    quint16 m_port;
    QTcpSocket m_socket;
};

}  // namespace fxhost
