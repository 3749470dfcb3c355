// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/links/link.h"
#include "tools/fxsim/plc/error.h"

#include <QSocketNotifier>
#include <QTcpServer>
#include <QtEndian>

#include <algorithm>
#include <cerrno>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int receivedBytes = 4096;  // several times the longest frame

QString addressText(const QHostAddress& address, quint16 port)
{
    const bool v6 = address.protocol() == QAbstractSocket::IPv6Protocol;
    return QString("tcp:%1:%2")
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

// A host that connected. Its bytes go through the bare descriptor: the buffers and signals of a
// socket object would cost as much as the PLC itself. Deletes itself when the host disconnects.
class TcpClient : public QObject
{
public:
    // Owns `descriptor`, a connected socket.
    TcpClient(Link& link, int descriptor, QObject* parent);
    ~TcpClient() override;

private:
    void readAvailable();
    int write(const QByteArray& bytes) const;

    int m_descriptor;
    QSocketNotifier m_notifier;
    HostConnection m_host;
};

TcpClient::TcpClient(Link& link, int descriptor, QObject* parent)
    : QObject(parent), m_descriptor(descriptor), m_notifier(descriptor, QSocketNotifier::Read),
      m_host(link, peerText(descriptor).toLatin1(),
             [this](const QByteArray& bytes) { return write(bytes); })
{
    const int atOnce = 1;
    ::setsockopt(m_descriptor, IPPROTO_TCP, TCP_NODELAY, &atOnce, sizeof atOnce);
    connect(&m_notifier, &QSocketNotifier::activated, this, &TcpClient::readAvailable);
}

TcpClient::~TcpClient()
{
    m_notifier.setEnabled(false);
    ::close(m_descriptor);
}

void TcpClient::readAvailable()
{
    char buffer[receivedBytes];
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

// Hands out bare descriptors, without socket objects.
class TcpServer : public QTcpServer
{
public:
    explicit TcpServer(Link& link) : m_link(link) {}

    void hangUp()
    {
        close();
        m_clients = std::make_unique<QObject>();
    }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        const int socket = static_cast<int>(descriptor);
        if (!isTooMany(socket))
            new TcpClient(m_link, socket, m_clients.get());
        else
            refuse(socket);
    }

private:
    void refuse(int socket)
    {
        ::close(socket);
        if (!m_saidTooMany)
            emit m_link.message("too many connections: new ones are closed at once "
                                "(ulimit -n)");
        m_saidTooMany = true;
    }

    Link& m_link;
    bool m_saidTooMany = false;
    std::unique_ptr<QObject> m_clients = std::make_unique<QObject>();  // parent of all of them
};

QString reasonOf(const QTcpServer& failed)
{
    switch (failed.serverError()) {
    case QAbstractSocket::SocketAccessError:
        return "no permission; use a port from 1024 up";
    case QAbstractSocket::AddressInUseError:
        return "in use by another program; choose another port, or 0 for any free one";
    default:
        return failed.errorString();
    }
}

class TcpLink : public Link
{
public:
    TcpLink(Simulator& simulator, const Clock& clock, const QHostAddress& address, quint16 port)
        : Link(simulator, clock), m_address(address), m_port(port)
    {}

    void open() override;
    void close() override { m_server.hangUp(); }
    QString name() const override { return addressText(m_address, m_port); }

private:
    TcpServer m_server{*this};
    QHostAddress m_address;
    quint16 m_port;  // 0 until the system has chosen one
};

void TcpLink::open()
{
    if (!m_server.listen(m_address, m_port)) {
        throw Error(ExitCode::Link, reasonOf(m_server)).at(addressText(m_address, m_port));
    }
    m_port = m_server.serverPort();
}

}  // namespace

std::unique_ptr<Link> makeTcpLink(Simulator& simulator, const Clock& clock,
                                  const QHostAddress& address, quint16 port)
{
    return std::make_unique<TcpLink>(simulator, clock, address, port);
}

}  // namespace fxsim
