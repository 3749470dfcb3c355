// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One form of the plant's values on its way to the broker: connects, connects again after growing
// pauses, sends, and stores what cannot be sent. Lives in Qt's event loop.

#pragma once

#include "tools/fxgate/bus/bus.h"
#include "tools/fxgate/bus/form.h"
#include "tools/fxgate/environment.h"
#include "tools/fxgate/growing_pause.h"
#include "tools/fxgate/store/outbox.h"

namespace fxgate {

class BusClient : public QObject
{
public:
    // The form, the store and the plant must outlive it.
    BusClient(Form& form, Store& store, const BrokerSettings& broker, const Plant& plant,
              const Environment& environment);

    std::function<void(const WriteRequest&)> onWrite;
    std::function<void(const QString& line)> onState;  // a line for the log

    void start();
    void tick();  // several times a second
    void stop();  // takes at most six seconds; what was not confirmed is stored

    void publish(const QVector<Change>& changes);
    void linkChanged(const QString& link);
    void answer(const WriteRequest& request, const WriteResult& result);

    BusStatus status() const;

private:
    void connectToBroker();
    void connected();
    void subscribe();
    void subscribed(int subscription, bool isGranted);
    void ended(const QString& reason);
    void received(const Message& message);
    void announce(const Messages& messages);
    void send(const Messages& messages);
    void leave();
    void closeWhenAnswered();
    void everySecond();
    void sendBarrier();
    void drain();
    void watchConnection();
    void watchStore();
    void rememberForm();
    void say(const QString& line);
    qint64 nowMs() const { return m_environment.now().utcMs; }
    qint64 steadyMs() const { return m_environment.now().steadyMs; }

    Form& m_form;
    Store& m_store;
    BrokerSettings m_broker;
    const Plant& m_plant;
    Environment m_environment;
    Outbox m_outbox;
    std::unique_ptr<Connection> m_connection;
    QMap<int, QString> m_pending;   // subscriptions that are not granted yet
    QSet<QString> m_subscriptions;  // of this connection
    bool m_isUp = false;
    bool m_isMemoryDue = false;  // the form's, to be stored
    bool m_isLeaving = false;    // when all is answered
    bool m_isRunning = false;
    GrowingPause m_pause;
    qint64 m_second = 0;     // of the last tick; all of these are steady
    qint64 m_connectMs = 0;  // when it is due
    qint64 m_attemptMs = 0, m_upMs = 0;
    std::optional<qint64> m_droppedSaidMs;
    BusStatus m_status;
    QString m_said;  // last
    QString m_storeProblem, m_movedTo;
    qint64 m_droppedTold = 0;
};

}  // namespace fxgate
