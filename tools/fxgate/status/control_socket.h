// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How a running gateway is asked from outside: a local socket that only its user and root may use.
// A request is a word and a line end; the reply is a JSON object, after which the connection ends.

#pragma once

#include <QJsonObject>
#include <QLocalServer>

#include <functional>

namespace fxgate {

class ControlSocket
{
public:
    using Reply = std::function<QJsonObject(const QByteArray& request)>;

    // Throws Failure, also if another gateway answers there.
    ControlSocket(const QString& path, const Reply& reply);

private:
    void serve(QLocalSocket* client);

    QLocalServer m_server;
    Reply m_reply;
};

// Where a gateway listens, and where one is looked for, the first that is there.
QString usualSocket();
QStringList socketPlaces();

// Asks the gateway that listens there. Throws Failure.
QJsonObject ask(const QString& path, const QByteArray& request);

}  // namespace fxgate
