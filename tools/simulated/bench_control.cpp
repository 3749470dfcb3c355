// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/simulated/bench_control.h"

#include "tools/link/link.h"

#include <QFileInfo>

namespace fxtools {

namespace {

constexpr int controlTimeoutMs = 5000;

}  // namespace

SocketBenchControl::SocketBenchControl(const QString& path)
{
    m_socket.connectToServer(QFileInfo(path).absoluteFilePath());
    if (!m_socket.waitForConnected(controlTimeoutMs)) {
        throw Failure(ExitCode::LinkNotOpened, "cannot connect to the simulator's control socket " +
                                                   path + ": " + m_socket.errorString());
    }
}

// The simulator replies with lines; the last one is "ok" or starts with "error: ".
void SocketBenchControl::run(const QString& command)
{
    m_socket.write(command.toUtf8() + '\n');
    m_socket.flush();
    while (m_socket.canReadLine() || m_socket.waitForReadyRead(controlTimeoutMs)) {
        if (!m_socket.canReadLine())
            continue;
        const QByteArray line = m_socket.readLine().trimmed();
        if (line == "ok")
            return;
        if (line.startsWith("error: "))
            throw Failure(ExitCode::LinkNotOpened, "the simulator refused '" + command +
                                                       "': " + QString::fromUtf8(line.mid(7)));
    }
    throw Failure(ExitCode::LinkNotOpened, "the simulator did not answer '" + command + "'");
}

}  // namespace fxtools
