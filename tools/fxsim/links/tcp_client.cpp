// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See tcp_client.h.

#include "tools/fxsim/links/tcp_client.h"

#include <algorithm>
#include <cerrno>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int readBytes = 4096;  // several times the longest frame

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

}  // namespace fxsim
