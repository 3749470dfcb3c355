// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/links/tcp_link.h"

#include "tools/fxsim/plc/error.h"

#include <QtEndian>

#include <algorithm>
#include <cerrno>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int readBytes = 4096;  // several times the longest frame

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

TcpClient::TcpClient(Simulator& simulator, const Clock& clock, int descriptor,
                     const QByteArray& name, QObject* parent)
    : QObject(parent), m_descriptor(descriptor), m_notifier(descriptor, QSocketNotifier::Read),
      m_host(simulator, clock, name, [this](const QByteArray& bytes) { return write(bytes); })
{
    const int atOnce = 1;
    ::setsockopt(m_descriptor, IPPROTO_TCP, TCP_NODELAY, &atOnce, sizeof atOnce);
    connect(&m_host, &HostConnection::linkTaken, this, &TcpClient::linkTaken);
    connect(&m_notifier, &QSocketNotifier::activated, this, &TcpClient::readAvailable);
}

TcpClient::~TcpClient()
{
    m_notifier.setEnabled(false);
    ::close(m_descriptor);
}

void TcpClient::readAvailable()
{
    char buffer[readBytes];
    const ssize_t got = ::recv(m_descriptor, buffer, sizeof buffer, MSG_DONTWAIT);
    if (got > 0) {
        m_host.receive(QByteArray(buffer, static_cast<int>(got)));
    } else if (got == 0 || (errno != EAGAIN && errno != EINTR)) {
        m_notifier.setEnabled(false);
        deleteLater();
    }
}

// A host that reads nothing loses what the system has no room for, as on a serial line.
int TcpClient::write(const QByteArray& bytes) const
{
    const ssize_t sent = ::send(m_descriptor, bytes.constData(), static_cast<size_t>(bytes.size()),
                                MSG_DONTWAIT | MSG_NOSIGNAL);
    return bytes.size() - static_cast<int>(std::max<ssize_t>(0, sent));
}

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
