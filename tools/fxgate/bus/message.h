// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One MQTT message, sent or received.

#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace fxgate {

struct Message
{
    QString topic;
    QByteArray payload;
    int qos = 0;
    bool isRetained = false;

    // MQTT 5 only.
    QString responseTopic = {};
    QByteArray correlation = {};
    QString user = {};  // the user property "user" of a received message
};

using Messages = QVector<Message>;

}  // namespace fxgate
