// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/links/link.h"
#include "tools/fxsim/plc/error.h"

#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/inotify.h>
#include <termios.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int terminalBytes = 4096;  // what a terminal holds at most
constexpr int deviceNameBytes = 128;

// Of the system call that just failed.
Error systemError(const QString& what)
{
    return Error(ExitCode::Link, QString::fromLocal8Bit(std::strerror(errno))).at(what);
}

void closeDescriptor(int& descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

// A speed that no host sets. The C library calls it an invalid argument when a host sets 7E1, which
// a pseudo-terminal cannot have, and nothing else changes: so the speed always does.
constexpr speed_t oddSpeed = B134;

bool makeRaw(int terminal)
{
    termios settings{};
    if (tcgetattr(terminal, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    cfsetspeed(&settings, oddSpeed);
    return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

void makeSpeedOdd(int terminal)
{
    termios settings{};
    if (tcgetattr(terminal, &settings) != 0 || cfgetospeed(&settings) == oddSpeed)
        return;
    cfsetspeed(&settings, oddSpeed);
    tcsetattr(terminal, TCSANOW, &settings);
}

// The simulator of a terminal holds this lock until it ends, however it ends. It is none of those
// that hosts take on a port (flock).
struct flock wholeFile()
{
    struct flock lock
    {};
    lock.l_type = F_WRLCK;
    return lock;
}

bool isServed(const QString& device)
{
    const int file =
        ::open(QFile::encodeName(device).constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return errno != ENOENT && errno != EIO;  // somebody else's
    struct flock lock = wholeFile();
    const bool isLocked = fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    ::close(file);
    return isLocked;
}

// What a symbolic link says, whether or not it exists; empty for any other file.
QString targetOf(const QString& path)
{
    const QFileInfo info(path);
    return info.isSymLink() ? info.symLinkTarget() : QString();
}

class PtyLink : public Link
{
public:
    PtyLink(Simulator& simulator, const Clock& clock, const QString& linkPath)
        : Link(simulator, clock), m_linkPath(linkPath)
    {}
    ~PtyLink() override { PtyLink::close(); }

    void open() override;
    void close() override;
    QString name() const override;

private:
    void openTerminal();
    void makeLink() const;
    void removeLink();
    void watchHosts();
    void readAvailable();
    int write(const QByteArray& bytes);

    QString m_linkPath;
    QString m_device;
    int m_master = -1;
    int m_slave = -1;   // kept open: else the master hangs up whenever a host closes its end
    int m_visits = -1;  // tells when a host opened or closed its end
    std::unique_ptr<QSocketNotifier> m_visitsNotifier;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::unique_ptr<HostConnection> m_host;
};

void PtyLink::open()
{
    try {
        openTerminal();
        if (!m_linkPath.isEmpty())
            makeLink();
    } catch (const Error&) {
        close();
        throw;
    }
    m_host = std::make_unique<HostConnection>(
        *this, m_device.toLocal8Bit(), [this](const QByteArray& bytes) { return write(bytes); });
    m_notifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &PtyLink::readAvailable);
    watchHosts();
}

void PtyLink::close()
{
    m_notifier.reset();
    m_visitsNotifier.reset();
    closeDescriptor(m_visits);
    m_host.reset();
    removeLink();
    m_device.clear();
    closeDescriptor(m_slave);
    closeDescriptor(m_master);
}

QString PtyLink::name() const
{
    return m_linkPath.isEmpty() ? m_device : QString("%1 (linked as %2)").arg(m_device, m_linkPath);
}

void PtyLink::openTerminal()
{
    char device[deviceNameBytes];
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0 ||
        ptsname_r(m_master, device, sizeof device) != 0)
        throw systemError("cannot open a pseudo-terminal");
    m_device = QString::fromLocal8Bit(device);
    m_slave = ::open(device, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_slave < 0 || !makeRaw(m_slave))
        throw systemError(m_device);
    struct flock lock = wholeFile();
    fcntl(m_slave, F_OFD_SETLK, &lock);
}

// Replaces a link to a terminal that an earlier run left behind; any other file stays.
void PtyLink::makeLink() const
{
    const QString old = targetOf(m_linkPath);
    if (old.startsWith("/dev/pts/")) {
        if (old != m_device && isServed(old))  // the same: the system gave us its number again
            throw Error(ExitCode::Link, "in use by another fxsim; end it, or choose "
                                        "another path")
                .at(m_linkPath);
        QFile::remove(m_linkPath);
    }
    if (::symlink(QFile::encodeName(m_device).constData(),
                  QFile::encodeName(m_linkPath).constData()) != 0)
        throw systemError(QString("cannot create the symbolic link %1").arg(m_linkPath));
}

void PtyLink::removeLink()
{
    if (!m_device.isEmpty() && !m_linkPath.isEmpty() && targetOf(m_linkPath) == m_device)
        QFile::remove(m_linkPath);
}

// The next host comes, or one went without a byte: whoever came before has set the speed.
void PtyLink::watchHosts()
{
    m_visits = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_visits < 0 || inotify_add_watch(m_visits, QFile::encodeName(m_device).constData(),
                                          IN_OPEN | IN_CLOSE) < 0)
        return;  // as good as it was
    m_visitsNotifier = std::make_unique<QSocketNotifier>(m_visits, QSocketNotifier::Read);
    connect(m_visitsNotifier.get(), &QSocketNotifier::activated, this, [this] {
        char events[terminalBytes];
        while (::read(m_visits, events, sizeof events) > 0) {
        }
        makeSpeedOdd(m_slave);
    });
}

void PtyLink::readAvailable()
{
    makeSpeedOdd(m_slave);
    char buffer[terminalBytes];
    const ssize_t got = ::read(m_master, buffer, sizeof buffer);
    if (got > 0)
        m_host->receive(QByteArray(buffer, static_cast<int>(got)));
}

int PtyLink::write(const QByteArray& bytes)
{
    const ssize_t written = ::write(m_master, bytes.constData(), static_cast<size_t>(bytes.size()));
    return bytes.size() - static_cast<int>(std::max<ssize_t>(0, written));
}

}  // namespace

std::unique_ptr<Link> makePtyLink(Simulator& simulator, const Clock& clock, const QString& linkPath)
{
    return std::make_unique<PtyLink>(simulator, clock, linkPath);
}

}  // namespace fxsim
