// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A broker and the network before it, on simulated time. Packets of a connection arrive in order;
// when the broker is killed or a connection reset, those that are under way are lost, wherever they
// are. A silent network delivers late what it was given, or never. One client has one connection:
// its next CONNECT ends the one before.

#pragma once

#include "timeline.h"
#include "tools/fxgate/bus/connection.h"
#include "tools/fxgate/environment.h"

#include <QMap>
#include <QSet>

#include <deque>
#include <memory>

namespace chaos {

class SimulatedConnection;

class SimulatedBroker
{
public:
    SimulatedBroker(Timeline& timeline, Random& random);

    // What somebody who listens to everything gets. A session is one connection of a client; of its
    // will it is 0.
    std::function<void(const fxgate::Message& message, int session)> onMessage;

    std::unique_ptr<fxgate::Connection> connectTo(const fxgate::BrokerSettings& settings,
                                                  const QString& clientId,
                                                  const fxgate::Message& will);
    void publish(const fxgate::Message& message);  // somebody else does

    void kill(bool keepsRetained);
    void start() { m_isRunning = true; }
    void pause(bool isPaused);
    void resetConnections();
    void silence(qint64 timeMs) { m_silentUntilMs = m_timeline.steadyMs() + timeMs; }
    void refuseSubscriptions(bool isSo) { m_refuses = isSo; }

    bool isRunning() const { return m_isRunning; }
    bool isReachable() const
    {
        return m_isRunning && !m_isPaused && !m_refuses && m_timeline.steadyMs() >= m_silentUntilMs;
    }
    const QMap<QString, fxgate::Message>& retained() const { return m_retained; }
    int liveSession(const QString& clientId) const;  // 0: none

private:
    friend class SimulatedConnection;

    struct Packet
    {
        enum class Kind
        {
            Connect,
            Publish,
            Subscribe,
            Barrier,
            Disconnect,
        };
        Kind kind;
        int number;
        fxgate::Message message;
        bool withWill;
    };

    struct Session
    {
        int number = 0;
        bool isVersion5 = true;
        QString clientId;
        fxgate::Message will;
        QStringList topics;
        SimulatedConnection* client = nullptr;  // until it is gone
        bool isConnected = false;               // as the broker sees it
        qint64 lastUpMs = 0, lastDownMs = 0;    // when the last packet arrives
        std::deque<Packet> unread;              // while the broker stands still
    };
    using SessionPointer = std::shared_ptr<Session>;

    qint64 delayMs(qint64& lastMs);
    void send(const SessionPointer& session, const Packet& packet);
    void arrived(const SessionPointer& session, const Packet& packet);
    void read(const SessionPointer& session, const Packet& packet);
    void reply(const SessionPointer& session,
               const std::function<void(SimulatedConnection&)>& tell);
    void take(const fxgate::Message& message, int session);
    void close(const SessionPointer& session, bool withWill);
    void clientGone(const SessionPointer& session);
    void reset(const SessionPointer& session);

    Timeline& m_timeline;
    Random& m_random;
    bool m_isRunning = true, m_isPaused = false, m_refuses = false;
    qint64 m_silentUntilMs = 0;
    int m_lastSession = 0;
    std::vector<SessionPointer> m_sessions;
    QMap<QString, fxgate::Message> m_retained;
};

class SimulatedConnection : public fxgate::Connection
{
public:
    SimulatedConnection(SimulatedBroker& broker, const SimulatedBroker::SessionPointer& session)
        : m_broker(broker), m_session(session)
    {}
    ~SimulatedConnection() override;

    QString host() const override { return QStringLiteral("broker"); }
    void open() override;
    int publish(const fxgate::Message& message) override;
    int subscribe(const QString& topic) override;
    int barrier() override;
    void close(bool withWill) override;
    void end(const QString& reason) override;
    void runUntil(const std::function<bool()>& isDone, int timeoutMs) override;
    bool wasConnectSent() const override { return m_wasConnectSent; }

    bool hasEnded() const { return m_hasEnded; }
    void setConnectSent() { m_wasConnectSent = true; }

private:
    void keepAlive();

    SimulatedBroker& m_broker;
    SimulatedBroker::SessionPointer m_session;
    int m_numbers = 0;
    bool m_hasEnded = false, m_wasConnectSent = false;
};

}  // namespace chaos
