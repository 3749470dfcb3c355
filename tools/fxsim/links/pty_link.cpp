// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See pty_link.h.

#include "tools/fxsim/links/pty_link.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int readBytes = 4096;  // what a terminal holds at most
constexpr int deviceNameBytes = 128;

QString systemError(const QString& what)
{
    return QStringLiteral("%1: %2").arg(what, QString::fromLocal8Bit(std::strerror(errno)));
}

void closeDescriptor(int& descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

bool makeRaw(int terminal)
{
    termios settings{};
    if (tcgetattr(terminal, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

// readlink() as it stands in the link, whether or not its target exists.
QString targetOf(const QString& path)
{
    const QFileInfo info(path);
    return info.isSymLink() ? info.symLinkTarget() : QString();
}

}  // namespace

PtyLink::PtyLink(Simulator& simulator, const Clock& clock, const QString& linkPath)
    : Link(simulator, clock), m_linkPath(linkPath)
{}

PtyLink::~PtyLink()
{
    PtyLink::close();
}

QString PtyLink::open()
{
    QString error = openTerminal();
    if (error.isEmpty() && !m_linkPath.isEmpty())
        error = makeLink();
    if (!error.isEmpty()) {
        close();
        return error;
    }
    m_host =
        std::make_unique<HostConnection>(simulator(), clock(), m_device.toLocal8Bit(),
                                         [this](const QByteArray& bytes) { return write(bytes); });
    connect(m_host.get(), &HostConnection::linkTaken, this, &Link::drop, Qt::QueuedConnection);
    m_notifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &PtyLink::readAvailable);
    return QString();
}

void PtyLink::close()
{
    m_notifier.reset();
    m_host.reset();
    removeLink();
    m_device.clear();
    closeDescriptor(m_slave);
    closeDescriptor(m_master);
}

QString PtyLink::name() const
{
    return m_linkPath.isEmpty() ? m_device
                                : QStringLiteral("%1 (linked as %2)").arg(m_device, m_linkPath);
}

QString PtyLink::openTerminal()
{
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0)
        return systemError(QStringLiteral("no pseudo-terminal"));
    char device[deviceNameBytes];
    if (ptsname_r(m_master, device, sizeof device) != 0)
        return systemError(QStringLiteral("no name of the pseudo-terminal"));
    m_device = QString::fromLocal8Bit(device);
    m_slave = ::open(device, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_slave < 0 || !makeRaw(m_slave))
        return systemError(m_device);
    return QString();
}

// A link that an earlier run left behind is replaced; anything else at that path is somebody's and
// stays.
QString PtyLink::makeLink()
{
    const QFileInfo existing(m_linkPath);
    if (existing.isSymLink() && targetOf(m_linkPath).startsWith(QLatin1String("/dev/pts/")))
        QFile::remove(m_linkPath);
    if (::symlink(QFile::encodeName(m_device).constData(),
                  QFile::encodeName(m_linkPath).constData()) != 0)
        return systemError(QStringLiteral("cannot make the link %1").arg(m_linkPath));
    return QString();
}

void PtyLink::removeLink()
{
    if (!m_device.isEmpty() && !m_linkPath.isEmpty() && targetOf(m_linkPath) == m_device)
        QFile::remove(m_linkPath);
}

void PtyLink::readAvailable()
{
    char buffer[readBytes];
    const ssize_t got = ::read(m_master, buffer, sizeof buffer);
    if (got > 0)
        m_host->receive(QByteArray(buffer, static_cast<int>(got)));
}

int PtyLink::write(const QByteArray& bytes)
{
    const ssize_t written = ::write(m_master, bytes.constData(), static_cast<size_t>(bytes.size()));
    return bytes.size() - static_cast<int>(std::max<ssize_t>(0, written));
}

}  // namespace fxsim
