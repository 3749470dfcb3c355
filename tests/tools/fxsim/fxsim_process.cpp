// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/fxsim/fxsim_process.h"

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <sys/types.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int deviceNameBytes = 128;

int millisecondsLeft(const QElapsedTimer& timer)
{
    return qMax(0, deadlineMs - static_cast<int>(timer.elapsed()));
}

}  // namespace

FxsimProcess::FxsimProcess(const QStringList& arguments, Rights rights, int descriptors)
{
    QStringList command{FXSIM_FILE};
    if (rights == Rights::OrdinaryUser && ::geteuid() == 0)
        command = QStringList{"setpriv", "--bounding-set=-dac_override,-dac_read_search,"
                                         "-net_bind_service"} +
                  command;
    if (descriptors > 0)
        command = QStringList{"prlimit", QString("--nofile=%1").arg(descriptors)} + command;
    command += arguments;
    m_process.start(command.takeFirst(), command);
    m_process.waitForStarted(deadlineMs);
}

FxsimProcess::~FxsimProcess()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(deadlineMs))
        m_process.kill();
}

QByteArray FxsimProcess::readLine()
{
    QElapsedTimer timer;
    timer.start();
    while (!m_process.canReadLine() && m_process.waitForReadyRead(millisecondsLeft(timer))) {
    }
    return m_process.readLine();
}

QString FxsimProcess::waitLine(const QString& start)
{
    while (true) {
        const QString line = QString::fromUtf8(readLine());
        if (line.isEmpty())
            return QString();
        if (line.startsWith(start))
            return line.mid(start.size()).trimmed();
    }
}

QByteArray FxsimProcess::command(const QByteArray& line)
{
    m_process.write(line + '\n');
    QByteArray answer;
    while (true) {
        const QByteArray next = readLine();
        answer += next;
        if (next.isEmpty() || next == "ok\n" || next.startsWith("error: "))
            return answer;
    }
}

int FxsimProcess::waitEnd()
{
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(deadlineMs))
        return -1;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

int FxsimProcess::signal(int number)
{
    ::kill(static_cast<pid_t>(m_process.processId()), number);
    return waitEnd();
}

FailedStart runToEnd(const QStringList& arguments, Rights rights)
{
    FxsimProcess process(arguments, rights);
    FailedStart result;
    result.exitCode = process.waitEnd();
    result.errors = process.errors();
    result.output = process.restOfOutput();
    return result;
}

QByteArray failureOf(const QStringList& arguments, Rights rights)
{
    const FailedStart start = runToEnd(arguments, rights);
    return QByteArray::number(start.exitCode) + ' ' + start.errors + start.output;
}

PtyEnd::PtyEnd(const QString& path)
    : m_descriptor(::open(path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC))
{}

PtyEnd::PtyEnd() : m_descriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    ::grantpt(m_descriptor);
    ::unlockpt(m_descriptor);
}

PtyEnd::~PtyEnd()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

QString PtyEnd::otherEnd() const
{
    char device[deviceNameBytes] = "";
    ::ptsname_r(m_descriptor, device, sizeof device);
    return QString::fromLocal8Bit(device);
}

bool PtyEnd::setSevenEvenOne()
{
    termios settings{};
    tcgetattr(m_descriptor, &settings);
    cfmakeraw(&settings);
    settings.c_cflag = (settings.c_cflag & ~static_cast<tcflag_t>(CSIZE)) | CS7 | PARENB;
    cfsetspeed(&settings, B9600);
    return tcsetattr(m_descriptor, TCSANOW, &settings) == 0;
}

void PtyEnd::send(const QByteArray& bytes)
{
    if (::write(m_descriptor, bytes.constData(), static_cast<size_t>(bytes.size())) != bytes.size())
        qWarning("the terminal did not take %d bytes", bytes.size());
}

QByteArray PtyEnd::take(int byteCount)
{
    QElapsedTimer timer;
    timer.start();
    QByteArray taken;
    pollfd waiting{m_descriptor, POLLIN, 0};
    while (taken.size() < byteCount && ::poll(&waiting, 1, millisecondsLeft(timer)) == 1) {
        char byte = 0;
        if (::read(m_descriptor, &byte, 1) != 1)
            break;
        taken.append(byte);
    }
    return taken;
}

bool PtyEnd::waitGone()
{
    pollfd waiting{m_descriptor, 0, 0};  // hang-ups are always told
    return ::poll(&waiting, 1, deadlineMs) == 1 && (waiting.revents & POLLHUP) != 0;
}

TcpEnd::TcpEnd(const QString& name)
{
    const int colon = name.lastIndexOf(':');
    m_socket.connectToHost(name.mid(4, colon - 4),
                           static_cast<quint16>(name.mid(colon + 1).toInt()));
    m_socket.waitForConnected(deadlineMs);
}

void TcpEnd::send(const QByteArray& bytes)
{
    m_socket.write(bytes);
    m_socket.waitForBytesWritten(deadlineMs);
}

QByteArray TcpEnd::take(int byteCount)
{
    QElapsedTimer timer;
    timer.start();
    while (m_socket.bytesAvailable() < byteCount &&
           m_socket.waitForReadyRead(millisecondsLeft(timer))) {
    }
    return m_socket.read(byteCount);
}

bool TcpEnd::waitGone()
{
    return m_socket.state() == QAbstractSocket::UnconnectedState ||
           m_socket.waitForDisconnected(deadlineMs);
}
