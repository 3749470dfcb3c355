// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "simulated_broker.h"

#include <algorithm>

namespace chaos {

using fxgate::Message;

namespace {

constexpr qint64 keepAliveMs = 10000;  // and as long again for its answer

// Of a filter that ends with "#", or has "+" levels.
bool matches(const QString& filter, const QString& topic)
{
    const QStringList wanted = filter.split('/'), levels = topic.split('/');
    for (int level = 0; level < wanted.size(); ++level) {
        if (wanted[level] == "#")
            return true;
        if (level >= levels.size() || (wanted[level] != "+" && wanted[level] != levels[level]))
            return false;
    }
    return wanted.size() == levels.size();
}

}  // namespace

SimulatedBroker::SimulatedBroker(Timeline& timeline, Random& random)
    : m_timeline(timeline), m_random(random)
{}

std::unique_ptr<fxgate::Connection>
SimulatedBroker::connectTo(const fxgate::BrokerSettings& settings, const QString& clientId,
                           const Message& will)
{
    auto session = std::make_shared<Session>();
    session->number = ++m_lastSession;
    session->isVersion5 = settings.isVersion5;
    session->clientId = clientId;
    session->will = will;
    auto connection = std::make_unique<SimulatedConnection>(*this, session);
    session->client = connection.get();
    m_sessions.push_back(session);
    return connection;
}

int SimulatedBroker::liveSession(const QString& clientId) const
{
    for (const SessionPointer& session : m_sessions)
        if (session->clientId == clientId && session->isConnected && session->client != nullptr &&
            !session->client->hasEnded())
            return session->number;
    return 0;
}

// Nothing overtakes what was sent before on the same way.
qint64 SimulatedBroker::delayMs(qint64& lastMs)
{
    const qint64 now = m_timeline.steadyMs();
    const int most = chance(m_random, 0.02) ? 800 : 20;
    lastMs = std::max({lastMs, now + 1 + below(m_random, most), m_silentUntilMs});
    return lastMs - now;
}

void SimulatedBroker::send(const SessionPointer& session, const Packet& packet)
{
    m_timeline.after(delayMs(session->lastUpMs), session.get(),
                     [this, session, packet] { arrived(session, packet); });
}

void SimulatedBroker::arrived(const SessionPointer& session, const Packet& packet)
{
    if (!m_isRunning)
        return;
    if (m_isPaused)
        session->unread.push_back(packet);
    else
        read(session, packet);
}

void SimulatedBroker::read(const SessionPointer& session, const Packet& packet)
{
    if (packet.kind != Packet::Kind::Connect && !session->isConnected)
        return;
    const int number = packet.number;
    switch (packet.kind) {
    case Packet::Kind::Connect:
        for (const SessionPointer& other : std::vector<SessionPointer>(m_sessions))
            if (other != session && other->clientId == session->clientId)
                close(other, other->isConnected);
        session->isConnected = true;
        reply(session, [](SimulatedConnection& client) { client.onConnected(); });
        break;
    case Packet::Kind::Publish:
        take(packet.message, session->number);
        if (packet.message.qos > 0)
            reply(session,
                  [number](SimulatedConnection& client) { client.onAcknowledged(number, true); });
        break;
    case Packet::Kind::Subscribe: {
        const bool isGranted = !m_refuses;
        reply(session, [number, isGranted](SimulatedConnection& client) {
            client.onSubscribed(number, isGranted);
        });
        session->topics.append(packet.message.topic);
        for (const Message& kept : qAsConst(m_retained))
            if (matches(packet.message.topic, kept.topic))
                reply(session, [kept](SimulatedConnection& client) { client.onMessage(kept); });
        break;
    }
    case Packet::Kind::Barrier:
        reply(session, [number](SimulatedConnection& client) { client.onBarrier(number); });
        break;
    case Packet::Kind::Disconnect:
        close(session, packet.withWill);
        break;
    }
}

void SimulatedBroker::reply(const SessionPointer& session,
                            const std::function<void(SimulatedConnection&)>& tell)
{
    m_timeline.after(delayMs(session->lastDownMs), session.get(), [session, tell] {
        if (session->client != nullptr && !session->client->hasEnded()) {
            session->client->setConnectSent();
            tell(*session->client);
        }
    });
}

void SimulatedBroker::take(const Message& message, int session)
{
    if (message.isRetained && message.payload.isEmpty())
        m_retained.remove(message.topic);
    else if (message.isRetained)
        m_retained[message.topic] = message;
    onMessage(message, session);
    Message copy = message;
    copy.isRetained = false;
    for (const SessionPointer& other : m_sessions)
        if (other->isConnected &&
            std::any_of(other->topics.begin(), other->topics.end(),
                        [&](const QString& filter) { return matches(filter, message.topic); }))
            reply(other, [copy](SimulatedConnection& client) { client.onMessage(copy); });
}

void SimulatedBroker::publish(const Message& message)
{
    if (m_isRunning)
        take(message, -1);
}

// The broker ends a session; its client hears of it.
void SimulatedBroker::close(const SessionPointer& session, bool withWill)
{
    reply(session, [](SimulatedConnection& client) { client.end("closed by the broker"); });
    session->isConnected = false;
    m_sessions.erase(std::remove(m_sessions.begin(), m_sessions.end(), session), m_sessions.end());
    if (withWill)
        take(session->will, 0);
}

// What the client has sent may still arrive, or the connection is reset where it is.
void SimulatedBroker::clientGone(const SessionPointer& session)
{
    session->client = nullptr;
    const auto lost = [this, session] {
        m_timeline.forget(session.get());
        session->unread.clear();
        if (m_isRunning && session->isConnected)
            close(session, true);
        m_sessions.erase(std::remove(m_sessions.begin(), m_sessions.end(), session),
                         m_sessions.end());
    };
    const qint64 restMs = delayMs(session->lastUpMs);
    m_timeline.after(chance(m_random, 0.5) ? restMs : below(m_random, int(restMs)), session.get(),
                     lost);
}

void SimulatedBroker::reset(const SessionPointer& session)
{
    m_timeline.forget(session.get());
    session->isConnected = false;
    session->unread.clear();
    reply(session, [](SimulatedConnection& client) { client.end("connection reset"); });
}

void SimulatedBroker::kill(bool keepsRetained)
{
    for (const SessionPointer& session : m_sessions)
        reset(session);
    m_sessions.clear();
    m_isRunning = m_isPaused = false;
    if (!keepsRetained)
        m_retained.clear();
}

void SimulatedBroker::resetConnections()
{
    const std::vector<SessionPointer> sessions = m_sessions;
    m_sessions.clear();
    for (const SessionPointer& session : sessions) {
        const bool hadWill = session->isConnected;
        reset(session);
        if (hadWill && m_isRunning)
            take(session->will, 0);
    }
}

void SimulatedBroker::pause(bool isPaused)
{
    m_isPaused = isPaused;
    for (const SessionPointer& session : std::vector<SessionPointer>(m_sessions)) {
        while (!isPaused && !session->unread.empty()) {
            const Packet packet = session->unread.front();
            session->unread.pop_front();
            read(session, packet);
        }
    }
}

SimulatedConnection::~SimulatedConnection()
{
    m_broker.m_timeline.forget(this);
    m_broker.clientGone(m_session);
}

void SimulatedConnection::open()
{
    m_broker.m_timeline.after(1, this, [this] {
        if (m_hasEnded)
            return;
        if (!m_broker.m_isRunning)
            return end("connection refused");
        m_broker.send(m_session, {SimulatedBroker::Packet::Kind::Connect, 0, {}, false});
        keepAlive();
    });
}

// Nobody answers for two of its times: the connection is given up.
void SimulatedConnection::keepAlive()
{
    m_broker.m_timeline.after(2 * keepAliveMs, this, [this] {
        const qint64 now = m_broker.m_timeline.steadyMs();
        if (m_broker.m_silentUntilMs > now || m_broker.m_isPaused)
            end("the broker is silent");
        else
            keepAlive();
    });
}

int SimulatedConnection::publish(const Message& message)
{
    if (m_hasEnded)
        return -1;
    m_broker.send(m_session, {SimulatedBroker::Packet::Kind::Publish, ++m_numbers, message, false});
    return m_numbers;
}

int SimulatedConnection::subscribe(const QString& topic)
{
    m_broker.send(m_session,
                  {SimulatedBroker::Packet::Kind::Subscribe, ++m_numbers, {topic, {}}, false});
    return m_numbers;
}

int SimulatedConnection::barrier()
{
    m_broker.send(m_session, {SimulatedBroker::Packet::Kind::Barrier, ++m_numbers, {}, false});
    return m_numbers;
}

void SimulatedConnection::close(bool withWill)
{
    if (!m_hasEnded)
        m_broker.send(
            m_session,
            {SimulatedBroker::Packet::Kind::Disconnect, 0, {}, withWill && m_session->isVersion5});
}

void SimulatedConnection::end(const QString& reason)
{
    if (m_hasEnded)
        return;
    m_hasEnded = true;
    m_broker.m_timeline.after(0, this, [this, reason] { onEnded(reason); });
}

void SimulatedConnection::runUntil(const std::function<bool()>& isDone, int timeoutMs)
{
    Timeline& timeline = m_broker.m_timeline;
    timeline.runUntil(timeline.steadyMs() + timeoutMs, m_session.get(),
                      [&] { return m_hasEnded || isDone(); });
}

}  // namespace chaos
