// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/link/links.h"

#include "tools/link/ports.h"

#include <QFileInfo>
#include <QSerialPortInfo>

#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fxtools {

namespace {

constexpr int sendTimeoutMs = 2000;  // the longest frame takes 1.1 s at 9600 baud
constexpr int connectTimeoutMs = 5000;
constexpr size_t mostBytesAtOnce = 4096;  // several times the longest reply

// Something that can be opened, but has no line settings.
bool isOtherFile(const QString& path)
{
    const int file = ::open(path.toLocal8Bit().constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
    if (file < 0)
        return false;
    const bool isTerminal = isatty(file) == 1;
    ::close(file);
    return !isTerminal;
}

bool isPseudoTerminal(const QString& path)
{
    return QFileInfo(path).canonicalFilePath().startsWith("/dev/pts/");
}

// A path that exists is used as it is; otherwise Qt looks for the name in /dev.
QString portName(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() ? info.absoluteFilePath() : path;
}

// The ports of this machine, for the error about a missing one.
QString otherPorts()
{
    QStringList names;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        names += port.systemLocation();
    return "available ports: " +
           (names.isEmpty() ? "none; is the adapter plugged in?" : names.join(", "));
}

// A pseudo-terminal always carries eight bits without parity, and refuses a request that would
// change nothing else.
LineSettings unwired(LineSettings settings)
{
    settings.dataBits = QSerialPort::Data8;
    settings.parity = QSerialPort::NoParity;
    return settings;
}

}  // namespace

QString SerialLink::name() const
{
    return (m_settings.isPseudoTerminal ? "pty:" : "serial:") + m_settings.path;
}

void SerialLink::open()
{
    LineSettings settings = m_settings.line.value_or(LineSettings());
    if (isPseudoTerminal(m_settings.path))
        settings = unwired(settings);
    m_port.close();
    m_port.setPortName(portName(m_settings.path));
    m_port.setBaudRate(settings.baud);
    m_port.setDataBits(settings.dataBits);
    m_port.setParity(settings.parity);
    m_port.setStopBits(settings.stopBits);
    if (!m_port.open(QIODevice::ReadWrite))
        throw Failure(ExitCode::LinkNotOpened, "cannot open " + m_settings.path + ": " + reason());
    m_port.clear();
}

QString SerialLink::reason() const
{
    QString said = m_port.errorString();
    const QFileInfo device(portName(m_settings.path));
    if (isOtherFile(m_settings.path))
        return "not a serial port";
    if (m_port.error() == QSerialPort::DeviceNotFoundError && !m_settings.isPseudoTerminal)
        return said + "; " + otherPorts();
    if (device.exists() && !device.isWritable() &&
        device.permission(QFile::ReadGroup | QFile::WriteGroup))
        return QString("%1; join the group %2 with: sudo adduser \"$USER\" %2, then log out "
                       "and in again")
            .arg(said, device.group());
    const QString holder = device.exists() ? holderOf(m_settings.path) : QString();
    if (!holder.isEmpty())
        return QString("in use by %1; stop that first").arg(holder);
    return said;
}

bool SerialLink::isOpen() const
{
    // A port whose device went away stays open in name only.
    return m_port.isOpen() && m_port.error() != QSerialPort::ResourceError;
}

bool SerialLink::send(const QByteArray& bytes)
{
    const bool sent = isOpen() && writeAll(bytes);
    if (!sent)
        m_port.close();
    return sent;
}

QByteArray SerialLink::receive(int timeoutMs)
{
    if (!isOpen())
        return {};
    if (m_port.bytesAvailable() == 0)
        m_port.waitForReadyRead(timeoutMs);
    return m_port.readAll();
}

bool SerialLink::writeAll(const QByteArray& bytes)
{
    if (m_port.write(bytes) != bytes.size())
        return false;
    while (m_port.bytesToWrite() > 0) {
        if (!m_port.waitForBytesWritten(sendTimeoutMs))
            return false;
    }
    return true;
}

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
        else if (errno != EAGAIN || !waitFor(POLLOUT, sendTimeoutMs))
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
