// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/links/link.h"
#include "tools/fxsim/plc/error.h"

#include <QFile>
#include <QSerialPort>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int unpluggedMs = 1000;  // before the first attempt to reopen the port
constexpr int watchMs = 200;

// A file that can be opened, but has no line settings.
bool isOtherFile(const QString& path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
    if (file < 0)
        return false;
    const bool isTerminal = isatty(file) == 1;
    ::close(file);
    return !isTerminal;
}

class SerialLink : public Link
{
public:
    SerialLink(Simulator& simulator, const Clock& clock, const QString& device, int baud);

    void open() override;
    void close() override;
    QString name() const override { return m_device; }

private:
    void lookForHangup();

    QString m_device;
    QSerialPort m_port;
    QTimer m_watch;
    std::unique_ptr<HostConnection> m_host;
};

SerialLink::SerialLink(Simulator& simulator, const Clock& clock, const QString& device, int baud)
    : Link(simulator, clock), m_device(device)
{
    m_port.setPortName(device);
    m_port.setBaudRate(baud);
    m_port.setDataBits(QSerialPort::Data7);
    m_port.setParity(QSerialPort::EvenParity);
    m_port.setStopBits(QSerialPort::OneStop);
    m_port.setFlowControl(QSerialPort::NoFlowControl);
    connect(&m_port, &QSerialPort::readyRead, this, [this] { m_host->receive(m_port.readAll()); });
    connect(&m_watch, &QTimer::timeout, this, &SerialLink::lookForHangup);
}

void SerialLink::open()
{
    if (!m_port.open(QIODevice::ReadWrite)) {
        const QString reason = isOtherFile(m_device) ? "not a serial port" : m_port.errorString();
        throw Error(ExitCode::Link, reason).at(m_device);
    }
    m_host = std::make_unique<HostConnection>(
        *this, m_device.toLocal8Bit(), [this](const QByteArray& bytes) {
            return bytes.size() - static_cast<int>(std::max<qint64>(0, m_port.write(bytes)));
        });
    m_host->session().setTiming({0, simulator().settings().timing.scanMs});
    m_watch.start(watchMs);
}

void SerialLink::close()
{
    m_watch.stop();
    m_port.close();
    m_host.reset();
}

// An unplugged adapter hangs up its port; reads then give nothing and no error.
void SerialLink::lookForHangup()
{
    pollfd port{m_port.handle(), 0, 0};
    if (::poll(&port, 1, 0) > 0)
        drop(unpluggedMs);
}

}  // namespace

std::unique_ptr<Link> makeSerialLink(Simulator& simulator, const Clock& clock,
                                     const QString& device, int baud)
{
    return std::make_unique<SerialLink>(simulator, clock, device, baud);
}

}  // namespace fxsim
