// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One connection to the broker, from its CONNECT to its end, in Qt's event loop. A new one is made
// for each attempt, so that the MQTT library sends nothing again by itself. Without encryption only
// as the settings allow; with it, certificate and host name are always checked.

#pragma once

#include "tools/fxgate/bus/message.h"
#include "tools/fxgate/configuration.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <functional>
#include <memory>

struct mosquitto;

namespace fxgate {

class BrokerConnection : public QObject
{
public:
    BrokerConnection(const BrokerSettings& settings, const QString& clientId, const Message& will);
    ~BrokerConnection() override;

    // Called from the event loop, onEnded once and last. The connection may not be deleted in them,
    // but deleteLater() will do.
    std::function<void()> onConnected;
    std::function<void(int subscription, bool isGranted)> onSubscribed;
    std::function<void(const Message&)> onMessage;
    std::function<void(int message, bool isTaken)> onAcknowledged;  // of QoS 1
    std::function<void(int barrier)> onBarrier;
    std::function<void(const QString& reason)> onEnded;

    void open();
    int publish(const Message& message);  // its number; -1: the connection is ending
    int subscribe(const QString& topic);
    int barrier();  // answered when the broker has read all that was sent before
    void close(bool withWill);
    void end(const QString& reason);

    // Goes on without the event loop until something is done or the connection has ended.
    void runUntil(const std::function<bool()>& isDone, int timeoutMs);

    bool wasConnectSent() const { return m_wasConnectSent; }  // as far as one can know

private:
    struct Callbacks;

    bool prepare();
    bool prepareEncryption();
    void connectToHost();
    void read();
    void write();
    void watchSocket();
    bool isGood(int result);
    bool isRefused();
    void stopWatching();

    BrokerSettings m_settings;
    mosquitto* m_client;
    std::unique_ptr<QSocketNotifier> m_readable, m_writable;
    QTimer m_everySecond;
    QString m_error;  // the first one that the MQTT library told
    bool m_isConnected = false;
    bool m_wasConnectSent = false;
    bool m_hasEnded = false;
};

}  // namespace fxgate
