// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/control/control_channels.h"

#include "tools/fxsim/links/link.h"
#include "tools/fxsim/plc/error.h"

#include <QFileInfo>
#include <QLocalSocket>

#include <cerrno>
#include <iostream>

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int commandBytes = 4096;
constexpr int answerMs = 5000;
constexpr int backgroundMs = 200;  // no signal tells when a terminal is ours again
constexpr int longestSocketPath = static_cast<int>(sizeof(sockaddr_un::sun_path)) - 1;
constexpr int longestLine = 65536;  // more without a line end is no command

void print(const QByteArray& text)
{
    std::cout << text.constData() << std::flush;
}

bool isSocket(const QString& path)
{
    struct stat status
    {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISSOCK(status.st_mode);
}

// Refused, so nobody listens; at a socket that may not be asked somebody else may.
bool isLeftBehind(const QString& path)
{
    constexpr int connectMs = 500;
    QLocalSocket probe;
    probe.connectToServer(path);
    return !probe.waitForConnected(connectMs) &&
           probe.error() == QLocalSocket::ConnectionRefusedError;
}

[[noreturn]] void refusePath(const QString& path, const QString& why)
{
    throw Error(ExitCode::Link, QString("control socket %1: %2").arg(path, why));
}

// The server calls all of these a name error.
void checkPath(const QString& path)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.absolutePath());
    if (isSocket(path))
        refusePath(path, "in use by another program; end it, or choose another path");
    if (file.exists())
        refusePath(path, "the file already exists");
    if (!folder.isDir())
        refusePath(path, QString("the folder %1 does not exist").arg(folder.filePath()));
    if (!folder.isWritable())
        refusePath(path, QString("no permission to write in %1").arg(folder.filePath()));
    if (QFile::encodeName(path).size() > longestSocketPath)
        refusePath(path, QString("the path is longer than %1 bytes").arg(longestSocketPath));
}

}  // namespace

InputControl::InputControl(Control& control, int inputDescriptor)
    : m_control(control), m_notifier(inputDescriptor, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &InputControl::readAvailable);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, [this] { m_notifier.setEnabled(true); });
}

void InputControl::readAvailable()
{
    char buffer[commandBytes];
    const ssize_t got = ::read(static_cast<int>(m_notifier.socket()), buffer, sizeof buffer);
    if (got <= 0) {
        m_notifier.setEnabled(false);
        if (got < 0 && errno == EIO)
            m_retry.start(backgroundMs);  // the terminal is another's to read, for now
        return;
    }
    m_partLine.append(buffer, static_cast<int>(got));
    int end = 0;
    while ((end = m_partLine.indexOf('\n')) >= 0) {
        print(m_control.run(QString::fromUtf8(m_partLine.left(end))));
        m_partLine.remove(0, end + 1);
    }
    if (m_partLine.size() > longestLine)
        m_partLine.clear();
}

SocketControl::SocketControl(Control& control) : m_control(control)
{
    connect(&m_server, &QLocalServer::newConnection, this, &SocketControl::welcome);
}

// A socket that an earlier run left behind is replaced; one that somebody listens on stays, and so
// does any other file (the server would rename its socket over it).
void SocketControl::listen(const QString& path)
{
    const QString fullPath = QFileInfo(path).absoluteFilePath();  // a bare name means one in /tmp
    if (isSocket(fullPath) && isLeftBehind(fullPath))
        QLocalServer::removeServer(fullPath);
    checkPath(fullPath);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server.listen(fullPath))
        refusePath(fullPath, m_server.errorString());
}

void SocketControl::welcome()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        if (isTooMany(static_cast<int>(socket->socketDescriptor()))) {
            delete socket;
            continue;
        }
        socket->setReadBufferSize(longestLine);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            while (socket->canReadLine())
                socket->write(m_control.run(QString::fromUtf8(socket->readLine())));
            if (socket->bytesAvailable() >= longestLine)
                socket->abort();
            socket->flush();
        });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void tell(const QString& controlPath, const QString& command)
{
    QLocalSocket socket;
    socket.connectToServer(QFileInfo(controlPath).absoluteFilePath());
    if (!socket.waitForConnected(answerMs))
        refusePath(controlPath, socket.error() == QLocalSocket::SocketAccessError
                                    ? "no permission: only its owner may connect"
                                    : "no simulator is listening");
    const QByteArray errorMark = "error: ";
    socket.write(command.toUtf8() + '\n');
    while (socket.canReadLine() || socket.waitForReadyRead(answerMs)) {
        if (!socket.canReadLine())
            continue;
        const QByteArray line = socket.readLine();
        if (line == "ok\n")
            return;
        if (line.startsWith(errorMark))
            throw Error(ExitCode::Usage, QString::fromUtf8(line.mid(errorMark.size())).trimmed());
        std::cout << line.constData();
    }
    refusePath(controlPath, "no answer");
}

}  // namespace fxsim
