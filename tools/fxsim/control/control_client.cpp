// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See control_client.h.

#include "tools/fxsim/control/control_client.h"

#include "tools/fxsim/options.h"

#include <QFileInfo>
#include <QLocalSocket>

#include <iostream>

namespace fxsim {

namespace {

constexpr int answerMs = 5000;

int fail(ExitCode code, const QString& text)
{
    std::cerr << "fxsim: " << qPrintable(text) << std::endl;
    return code;
}

}  // namespace

int tell(const QString& controlPath, const QString& command)
{
    QLocalSocket socket;
    socket.connectToServer(QFileInfo(controlPath).absoluteFilePath());
    if (!socket.waitForConnected(answerMs)) {
        const bool mayNot = socket.error() == QLocalSocket::SocketAccessError;
        return fail(exitLink, QStringLiteral("control socket %1: %2")
                                  .arg(controlPath, mayNot ? "only its owner may connect to it"
                                                           : "no simulator listens there"));
    }
    socket.write(command.toUtf8() + '\n');
    while (socket.canReadLine() || socket.waitForReadyRead(answerMs)) {
        if (!socket.canReadLine())
            continue;
        const QByteArray line = socket.readLine();
        if (line == "ok\n")
            return exitGood;
        if (line.startsWith("error: "))
            return fail(exitUsage, QString::fromUtf8(line.mid(7)).trimmed());
        std::cout << line.constData();
    }
    return fail(exitLink, QStringLiteral("control socket %1: no answer").arg(controlPath));
}

}  // namespace fxsim
