// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/status/control_socket.h"

#include "tools/failure.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLocalSocket>

namespace fxgate {

namespace {

constexpr int longestRequest = 64;  // in bytes
constexpr int replyMs = 10000;      // a reload waits for workers

const QString socketOfService = QStringLiteral("/run/fxgate/control");

[[noreturn]] void fail(const QString& text)
{
    throw fxtools::Failure(fxtools::ExitCode::File, text);
}

}  // namespace

ControlSocket::ControlSocket(const QString& path, const Reply& reply) : m_reply(reply)
{
    QLocalSocket other;
    other.connectToServer(path);
    if (other.waitForConnected(1000))
        fail(path + ": another gateway listens here; give this one another --socket");
    QDir().mkpath(QFileInfo(path).path());
    QLocalServer::removeServer(path);  // what a gateway left that was killed
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&m_server, &QLocalServer::newConnection, &m_server, [this] {
        while (QLocalSocket* const client = m_server.nextPendingConnection())
            serve(client);
    });
    if (!m_server.listen(path))
        fail(path + ": " + m_server.errorString());
}

void ControlSocket::serve(QLocalSocket* client)
{
    QObject::connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
    QObject::connect(client, &QLocalSocket::readyRead, client, [this, client] {
        if (client->bytesAvailable() > longestRequest)
            return client->abort();
        if (!client->canReadLine())
            return;
        client->write(
            QJsonDocument(m_reply(client->readLine().trimmed())).toJson(QJsonDocument::Compact) +
            '\n');
        client->disconnectFromServer();
    });
}

QString usualSocket()
{
    const QString ofService = qEnvironmentVariable("RUNTIME_DIRECTORY");
    const QString ofUser = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!ofService.isEmpty())
        return ofService + "/control";
    return ofUser.isEmpty() ? socketOfService : ofUser + "/fxgate/control";
}

QStringList socketPlaces()
{
    return {usualSocket(), socketOfService};
}

QJsonObject ask(const QString& path, const QByteArray& request)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(replyMs))
        fail(socket.error() == QLocalSocket::SocketAccessError
                 ? path + ": only the gateway's user and root can connect"
                 : "no gateway answers at " + path + "; is it running, with this --socket?");
    socket.write(request + '\n');
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(replyMs))
            fail("the gateway at " + path + " did not reply");
    }
    return QJsonDocument::fromJson(socket.readLine()).object();
}

}  // namespace fxgate
