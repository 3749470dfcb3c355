// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See control_client.h.

#include "tools/fxsim/control/control_client.h"

#include "tools/fxsim/options.h"

#include "tools/fxsim/plc/error.h"

#include <QFileInfo>
#include <QLocalSocket>

#include <iostream>

namespace fxsim {

namespace {

constexpr int answerMs = 5000;

[[noreturn]] void refuse(const QString& path, const QString& why)
{
    throw Error(ExitCode::Link, QStringLiteral("control socket %1: %2").arg(path, why));
}

}  // namespace

void tell(const QString& controlPath, const QString& command)
{
    QLocalSocket socket;
    socket.connectToServer(QFileInfo(controlPath).absoluteFilePath());
    if (!socket.waitForConnected(answerMs))
        refuse(controlPath, socket.error() == QLocalSocket::SocketAccessError
                                ? QStringLiteral("no permission: only its owner may connect")
                                : QStringLiteral("no simulator is listening"));
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
    refuse(controlPath, QStringLiteral("no answer"));
}

}  // namespace fxsim
