// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See tcp_link.h.

#include "tools/fxsim/links/tcp_link.h"

#include "tools/fxsim/links/tcp_client.h"
#include "tools/fxsim/plc/error.h"

#include <QtEndian>

#include <netinet/in.h>
#include <sys/socket.h>

namespace fxsim {

namespace {

QString addressText(const QHostAddress& address, quint16 port)
{
    const bool v6 = address.protocol() == QAbstractSocket::IPv6Protocol;
    return QStringLiteral("tcp:%1:%2")
        .arg(v6 ? '[' + address.toString() + ']' : address.toString())
        .arg(port);
}

QString peerText(int descriptor)
{
    sockaddr_storage peer{};
    socklen_t size = sizeof peer;
    ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size);
    // The port is at the same place in the addresses of both families.
    const quint16 port = reinterpret_cast<const sockaddr_in&>(peer).sin_port;
    return addressText(QHostAddress(reinterpret_cast<const sockaddr*>(&peer)),
                       qFromBigEndian(port));
}

}  // namespace

TcpLink::TcpLink(Simulator& simulator, const Clock& clock, const QHostAddress& address,
                 quint16 port)
    : Link(simulator, clock), m_address(address), m_port(port)
{
    connect(&m_server, &TcpServer::accepted, this, &TcpLink::welcome);
}

void TcpLink::open()
{
    if (!m_server.listen(m_address, m_port)) {
        const QString reason = m_server.serverError() == QAbstractSocket::SocketAccessError
                                   ? QStringLiteral("no permission; use a port from 1024 up")
                                   : m_server.errorString();
        throw Error(ExitCode::Link, reason).at(addressText(m_address, m_port));
    }
    m_port = m_server.serverPort();
}

void TcpLink::close()
{
    m_server.close();
    qDeleteAll(findChildren<TcpClient*>(QString(), Qt::FindDirectChildrenOnly));
}

QString TcpLink::name() const
{
    return addressText(m_address, m_port);
}

void TcpLink::welcome(int descriptor)
{
    auto* client =
        new TcpClient(simulator(), clock(), descriptor, peerText(descriptor).toLatin1(), this);
    connect(client, &TcpClient::linkTaken, this, &Link::drop, Qt::QueuedConnection);
}

}  // namespace fxsim
