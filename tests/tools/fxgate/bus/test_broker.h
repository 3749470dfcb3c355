// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A real broker on loopback that ends with the test, and somebody else on its bus.

#pragma once

#include "tests/tools/fxgate/gate_support.h"
#include "tests/tools/support/child_process.h"
#include "tools/fxgate/bus/message.h"
#include "tools/fxgate/configuration.h"

#include <memory>

struct mosquitto;

namespace gate_tests {

class Broker
{
public:
    // More lines of its configuration: of the only listener, or of all.
    explicit Broker(const QByteArray& lines = "allow_anonymous true\n");
    ~Broker() { kill(); }
    Broker(const Broker&) = delete;
    Broker& operator=(const Broker&) = delete;

    void start();     // on the same port each time; returns when it takes connections
    void pause();     // it reads nothing any more
    void goOnSoon();  // while the caller waits for it
    void kill();      // as a loss of power does

    int port() const { return m_port; }
    fxgate::BrokerSettings settings() const;

private:
    Folder m_folder;
    QByteArray m_lines;
    int m_port = 0;
    std::unique_ptr<ChildProcess> m_process;
};

// Another client, which does not need the event loop: while its methods run, the gateway stands
// still.
class OtherClient
{
public:
    OtherClient(const Broker& broker, const QString& topics);
    ~OtherClient();
    OtherClient(const OtherClient&) = delete;
    OtherClient& operator=(const OtherClient&) = delete;

    void publish(const fxgate::Message& message);
    const fxgate::Messages& received();  // all so far

    // The messages whose topic contains this.
    fxgate::Messages with(const QString& part);

private:
    void runUntil(const bool& isSo);

    mosquitto* m_client;
    bool m_isConnected = false, m_isSubscribed = false;
    fxgate::Messages m_received;
};

}  // namespace gate_tests
