// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See tcp_link.h.

#include "host/tcp_link.h"

namespace fxhost {

namespace {

constexpr int connectTimeoutMs = 5000;

}  // namespace

TcpLink::TcpLink(const QString& host, quint16 port) : m_host(host), m_port(port) {}

QString TcpLink::name() const
{
    return QStringLiteral("tcp:%1:%2").arg(m_host).arg(m_port);
}

void TcpLink::open()
{
    m_socket.abort();
    m_socket.connectToHost(m_host, m_port);
    if (!m_socket.waitForConnected(connectTimeoutMs)) {
        throw LinkError("cannot connect to " + m_host.toStdString() + " port " +
                        std::to_string(m_port) + ": " + m_socket.errorString().toStdString());
    }
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
}

bool TcpLink::isOpen() const
{
    return m_socket.state() == QAbstractSocket::ConnectedState;
}

}  // namespace fxhost
