// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/bus/bus_client.h"

namespace fxgate {

namespace {

constexpr int connectTimeoutMs = 10000;  // until all subscriptions are granted
constexpr int longestPauseMs = 30000;
constexpr int mostInBatch = 500;        // changes, before a barrier
constexpr int mostUnconfirmed = 20000;  // changes; MQTT numbers 65535 messages
constexpr qint64 barrierTimeoutMs = 10000;
constexpr int betweenLinesMs = 60000;  // that tell of dropped changes
constexpr int lastAnswersMs = 5000;    // to wait for, when stopping
constexpr int disconnectMs = 1000;

}  // namespace

BusClient::BusClient(Form& form, Store& store, const BrokerSettings& broker, const Plant& plant,
                     const Environment& environment)
    : m_form(form), m_store(store), m_broker(broker), m_plant(plant), m_environment(environment),
      m_outbox(store, form.name()), m_pause(longestPauseMs)
{
    m_form.recall(m_store.note(m_form.name()));
}

void BusClient::start()
{
    m_isRunning = true;
    connectToBroker();
}

void BusClient::tick()
{
    if (!m_isRunning)
        return;
    if (m_connection == nullptr && steadyMs() >= m_connectMs)
        connectToBroker();
    const qint64 second = steadyMs() / 1000;
    if (second != m_second)
        everySecond();
    m_second = second;
}

// One line a change: the same is not said twice.
void BusClient::say(const QString& line)
{
    if (line != m_said)
        onState(m_form.name() + ": " + line);
    m_said = line;
}

void BusClient::rememberForm()
{
    m_isMemoryDue = !m_store.inOneCommit([&] { m_store.setNote(m_form.name(), m_form.memory()); });
}

void BusClient::connectToBroker()
{
    const Message will = m_form.will(nowMs());
    rememberForm();  // before the broker has the will: its number is not given again
    m_connection = m_environment.makeConnection(m_broker, m_form.clientId(), will);
    m_connection->onConnected = [this] { connected(); };
    m_connection->onSubscribed = [this](int number, bool isGranted) {
        subscribed(number, isGranted);
    };
    m_connection->onMessage = [this](const Message& message) { received(message); };
    m_connection->onBarrier = [this](int barrier) {
        m_outbox.barrierAnswered(barrier);
        closeWhenAnswered();
    };
    m_connection->onAcknowledged = [this](int message, bool isTaken) {
        if (!isTaken)
            say(QStringLiteral("the broker refuses messages: check its access control list"));
        m_outbox.acknowledged(message);
        closeWhenAnswered();
    };
    m_connection->onEnded = [this](const QString& reason) { ended(reason); };
    m_attemptMs = steadyMs();
    ++m_status.attempts;
    m_connection->open();
}

void BusClient::connected()
{
    m_subscriptions.clear();
    m_pending.clear();
    subscribe();
}

// What a command may come to must be subscribed before it is announced.
void BusClient::subscribe()
{
    for (const QString& topic : m_form.subscriptions()) {
        if (m_subscriptions.contains(topic))
            continue;
        m_subscriptions.insert(topic);
        m_pending.insert(m_connection->subscribe(topic), topic);
    }
}

void BusClient::subscribed(int subscription, bool isGranted)
{
    const QString topic = m_pending.take(subscription);
    if (!isGranted) {
        m_connection->end("the broker refused the subscription to " + topic);
        return;
    }
    if (m_isUp || !m_pending.isEmpty())
        return;
    m_isUp = true;
    m_upMs = steadyMs();
    m_status.sinceMs = nowMs();
    say("connected to " + m_broker.host);
    announce(m_form.connected(nowMs()));
}

// Messages after which more may be sent than before.
void BusClient::announce(const Messages& messages)
{
    if (messages.isEmpty())
        return;
    subscribe();
    send(messages);
    m_outbox.rewind();
    m_isMemoryDue = true;
}

void BusClient::send(const Messages& messages)
{
    for (const Message& message : messages) {
        const int number = m_connection->publish(message);
        if (number < 0) {
            m_connection->end(QStringLiteral("the broker accepts no more messages"));
            return;
        }
        ++m_status.sent;
        if (message.qos > 0)
            m_outbox.sent(number);
    }
}

void BusClient::ended(const QString& reason)
{
    if (!m_connection->wasConnectSent())
        m_form.notConnected();
    m_connection.release()->deleteLater();
    m_outbox.connectionEnded();
    m_form.disconnected();
    const qint64 workedMs = m_isUp ? steadyMs() - m_upMs : 0;
    m_isUp = m_isLeaving = false;
    m_status.sinceMs = nowMs();
    m_status.lastError = reason;
    say("not connected to " + m_broker.host + ": " + reason);
    m_connectMs = steadyMs() + m_pause.next(workedMs, m_environment.chance());
}

void BusClient::received(const Message& message)
{
    ++m_status.received;
    const Received received = m_form.received(message, nowMs());
    announce(received.messages);
    for (const WriteRequest& request : received.writes)
        onWrite(request);
    if (received.mustLeave && m_isUp)
        leave();
}

// As stop() does, but the event loop waits for the answers.
void BusClient::leave()
{
    send(m_form.leaving(nowMs()));
    sendBarrier();
    m_isUp = false;
    m_isLeaving = true;
    m_attemptMs = steadyMs();
}

void BusClient::closeWhenAnswered()
{
    if (!m_isLeaving || !m_outbox.isAllConfirmed())
        return;
    m_isLeaving = false;
    m_connection->close(m_form.wantsWillAfterLeaving());
}

void BusClient::publish(const QVector<Change>& changes)
{
    QVector<Change> now;
    for (const Change& change : changes) {
        const Form::Sending sending = m_form.sending(change.link, change.tag);
        if (m_isUp && sending == Form::Sending::Now)
            now.append(change);
        else if (sending != Form::Sending::Never)
            m_outbox.keep(change);
    }
    if (now.isEmpty())
        return;
    m_outbox.sent(now);
    send(m_form.values(now, nowMs()));
    if (m_outbox.batchSize() >= mostInBatch)
        sendBarrier();
    if (m_outbox.unconfirmed() > mostUnconfirmed)
        m_connection->end(QStringLiteral("the broker is too slow"));
}

void BusClient::linkChanged(const QString& link)
{
    if (m_isUp)
        announce(m_form.linkChanged(link, nowMs()));
}

void BusClient::answer(const WriteRequest& request, const WriteResult& result)
{
    if (m_isUp)
        send(m_form.reply(request, result));
}

void BusClient::everySecond()
{
    if (m_isUp)
        announce(m_form.everySecond(nowMs()));
    drain();
    if (m_isMemoryDue)
        rememberForm();
    watchStore();
    if (m_connection != nullptr)
        watchConnection();
}

void BusClient::watchConnection()
{
    if (m_isUp && m_outbox.batchSize() > 0)
        sendBarrier();
    else if (m_isUp && m_outbox.isAllConfirmed() && m_form.confirmed())
        m_isMemoryDue = true;
    const qint64 now = steadyMs();
    if (m_isUp ? m_outbox.oldestBarrierMs(now) < now - barrierTimeoutMs
               : m_attemptMs < now - connectTimeoutMs)
        m_connection->end(QStringLiteral("the broker does not answer"));
}

void BusClient::sendBarrier()
{
    m_outbox.barrierSent(m_connection->barrier(), steadyMs());
}

void BusClient::drain()
{
    const int most = m_store.settings().rowsPerSecond;
    const bool isFull = m_outbox.rowsUnderWay() > 2 * most;
    QStringList waiting;  // links
    for (auto link = m_plant.begin(); link != m_plant.end(); ++link)
        if (!m_form.isAnnounced(link.key()))
            waiting.append(link.key());
    const QVector<StoredChange> taken =
        m_outbox.work(nowMs(), m_isUp && !isFull ? most : 0, waiting);
    QVector<StoredChange> wanted;
    QVector<qint64> unwanted;
    for (const StoredChange& stored : taken) {
        if (m_form.sending(stored.change.link, stored.change.tag) == Form::Sending::Now)
            wanted.append(stored);
        else
            unwanted.append(stored.row);
    }
    m_outbox.drop(unwanted);
    m_outbox.sent(wanted);
    if (!wanted.isEmpty())
        send(m_form.history(wanted, nowMs()));
}

void BusClient::watchStore()
{
    if (m_store.problem() != m_storeProblem)
        say(m_store.problem().isEmpty() ? QStringLiteral("the store can be used again")
                                        : m_store.problem());
    m_storeProblem = m_store.problem();
    if (m_store.movedTo() != m_movedTo)
        say("the store was damaged: it was moved to " + m_store.movedTo() +
            ", and a new one was created");
    m_movedTo = m_store.movedTo();
    const qint64 dropped = m_outbox.dropped();
    if (dropped == m_droppedTold)
        return;
    const Messages messages = m_form.dropped(dropped, nowMs());
    if (m_isUp)
        send(messages);
    m_droppedTold = dropped;
    if (!m_droppedSaidMs || steadyMs() - *m_droppedSaidMs > betweenLinesMs) {
        say(QStringLiteral("%1 stored changes were dropped").arg(dropped));
        m_droppedSaidMs = steadyMs();
    }
}

// Not before all is answered: a connection that is closed with answers unread is reset, and a
// broker does not read on from one that is.
void BusClient::stop()
{
    m_isRunning = false;
    if (m_isUp) {
        send(m_form.leaving(nowMs()));
        sendBarrier();
        m_connection->runUntil([this] { return m_outbox.isAllConfirmed(); }, lastAnswersMs);
        m_connection->close(m_form.wantsWillAfterLeaving());
        m_connection->runUntil([] { return false; }, disconnectMs);
    }
    m_isUp = false;
    if (m_connection != nullptr && !m_connection->wasConnectSent())
        m_form.notConnected();
    m_connection.reset();
    m_form.disconnected();
    m_outbox.connectionEnded();
    m_outbox.work(nowMs(), 0, {});
    rememberForm();
    if (const qint64 lost = m_outbox.dropKept())
        say(QStringLiteral("%1 changes could not be stored, and are lost: %2")
                .arg(lost)
                .arg(m_store.problem()));
}

BusStatus BusClient::status() const
{
    BusStatus status = m_status;
    status.isConnected = m_isUp;
    status.unconfirmed = m_outbox.unconfirmed();
    status.waiting = m_outbox.waiting();
    status.dropped = m_outbox.dropped();
    status.storeProblem = m_storeProblem;
    return status;
}

}  // namespace fxgate
