// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A connection by the MQTT library, in Qt's event loop. It is used once, so that the library sends
// nothing again by itself. Without encryption only as the settings allow; with it, certificate and
// host name are always checked.

#pragma once

#include "tools/fxgate/bus/connection.h"
#include "tools/fxgate/configuration.h"

#include <QSocketNotifier>
#include <QTimer>

#include <memory>

struct mosquitto;

namespace fxgate {

class BrokerConnection : public Connection
{
public:
    BrokerConnection(const BrokerSettings& settings, const QString& clientId, const Message& will);
    ~BrokerConnection() override;

    QString host() const override { return m_settings.host; }
    void open() override;
    int publish(const Message& message) override;
    int subscribe(const QString& topic) override;
    int barrier() override;
    void close(bool withWill) override;
    void end(const QString& reason) override;
    void runUntil(const std::function<bool()>& isDone, int timeoutMs) override;
    bool wasConnectSent() const override { return m_wasConnectSent; }

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
    bool m_wasConnectSent = false;
    bool m_hasEnded = false;
};

}  // namespace fxgate
