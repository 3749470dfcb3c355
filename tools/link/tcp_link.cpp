// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/link/tcp_link.h"

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>

namespace fxtools {

namespace {

constexpr int connectTimeoutMs = 5000;
constexpr int tcpSendTimeoutMs = 2000;    // for a peer that does not read
constexpr size_t mostBytesAtOnce = 4096;  // several times the longest reply

}  // namespace

QString TcpLink::name() const
{
    return QString("tcp:%1:%2").arg(m_settings.host).arg(m_settings.port);
}

void TcpLink::open()
{
    m_socket.abort();
    m_socket.connectToHost(m_settings.host, m_settings.port);
    if (!m_socket.waitForConnected(connectTimeoutMs)) {
        throw Failure(ExitCode::LinkNotOpened, QString("cannot connect to %1 port %2: %3")
                                                   .arg(m_settings.host)
                                                   .arg(m_settings.port)
                                                   .arg(m_socket.errorString()));
    }
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
}

bool TcpLink::isOpen() const
{
    return m_socket.state() == QAbstractSocket::ConnectedState;
}

bool TcpLink::send(const QByteArray& bytes)
{
    int sent = 0;
    while (isOpen() && sent < bytes.size()) {
        const ssize_t taken = ::send(descriptor(), bytes.constData() + sent,
                                     static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (taken > 0)
            sent += static_cast<int>(taken);
        else if (errno != EAGAIN || !waitFor(POLLOUT, tcpSendTimeoutMs))
            m_socket.abort();
    }
    return isOpen();
}

// The socket never blocks, so that looking without waiting costs one call.
QByteArray TcpLink::receive(int timeoutMs)
{
    if (!isOpen() || (timeoutMs > 0 && !waitFor(POLLIN, timeoutMs)))
        return {};
    char bytes[mostBytesAtOnce];
    const ssize_t byteCount = ::recv(descriptor(), bytes, sizeof bytes, 0);
    if (byteCount == 0 || (byteCount < 0 && errno != EAGAIN))
        m_socket.abort();  // the peer hung up
    return byteCount > 0 ? QByteArray(bytes, static_cast<int>(byteCount)) : QByteArray();
}

bool TcpLink::waitFor(short event, int timeoutMs) const
{
    pollfd waited = {descriptor(), event, 0};
    int ready = ::poll(&waited, 1, timeoutMs);
    while (ready < 0 && errno == EINTR)  // signals are handled elsewhere
        ready = ::poll(&waited, 1, timeoutMs);
    return ready > 0;
}

}  // namespace fxtools
