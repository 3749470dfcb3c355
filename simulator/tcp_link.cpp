// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See tcp_link.h. A client's socket owns its connection to the PLC and goes when the client does.

#include "simulator/tcp_link.h"

#include <QTcpSocket>

namespace fxsim {

namespace {

constexpr qint64 mostUnsentBytes = 1 << 20;

QString addressText(const QHostAddress& address, quint16 port)
{
    const bool v6 = address.protocol() == QAbstractSocket::IPv6Protocol;
    return QStringLiteral("tcp:%1:%2")
        .arg(v6 ? '[' + address.toString() + ']' : address.toString())
        .arg(port);
}

// What a client has not taken waits in the socket, within reason.
int write(QTcpSocket& socket, const QByteArray& bytes)
{
    if (socket.bytesToWrite() > mostUnsentBytes)
        return bytes.size();
    const qint64 taken = socket.write(bytes);
    socket.flush();  // at once, without another turn of the event loop
    return bytes.size() - int(std::max<qint64>(0, taken));
}

}  // namespace

TcpLink::TcpLink(Simulator& simulator, const Clock& clock, const QHostAddress& address,
                 quint16 port)
    : Link(simulator, clock), m_address(address), m_port(port)
{
    connect(&m_server, &QTcpServer::newConnection, this, &TcpLink::welcome);
}

QString TcpLink::open()
{
    if (!m_server.listen(m_address, m_port))
        return QStringLiteral("%1: %2").arg(addressText(m_address, m_port), m_server.errorString());
    m_port = m_server.serverPort();
    return QString();
}

void TcpLink::close()
{
    m_server.close();
    for (QTcpSocket* socket : m_server.findChildren<QTcpSocket*>())
        socket->abort();
}

QString TcpLink::name() const
{
    return addressText(m_address, m_port);
}

void TcpLink::welcome()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        auto* host = new HostConnection(
            simulator(), clock(), addressText(socket->peerAddress(), socket->peerPort()).toLatin1(),
            [socket](const QByteArray& bytes) { return write(*socket, bytes); });
        host->setParent(socket);
        connect(host, &HostConnection::linkTaken, this, &Link::drop, Qt::QueuedConnection);
        connect(socket, &QTcpSocket::readyRead, host,
                [host, socket] { host->receive(socket->readAll()); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

}  // namespace fxsim
