// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The bus client step by step, on a connection that answers when the test says so.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tools/fxgate/bus/bus_client.h"
#include "tools/fxgate/bus/sparkplug_form.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace fxgate;
using namespace gate_tests;

namespace {

class ScriptedConnection : public Connection
{
public:
    QString host() const override { return "broker"; }
    void open() override {}
    int publish(const Message& message) override
    {
        calls.append(message.topic.section('/', 2, 2));
        return ++numbers;
    }
    int subscribe(const QString& topic) override
    {
        calls.append("subscribe " + topic.section('/', 1, 1));
        return ++numbers;
    }
    int barrier() override
    {
        calls.append("barrier");
        return ++numbers;
    }
    void close(bool withWill) override { calls.append(withWill ? "close with will" : "close"); }
    void end(const QString& reason) override { calls.append(reason); }
    void runUntil(const std::function<bool()>& /*isDone*/, int /*timeoutMs*/) override {}
    bool wasConnectSent() const override { return true; }

    QStringList calls;
    int numbers = 0;
};

class ScriptedBusTest : public testing::Test
{
protected:
    ScriptedBusTest()
    {
        m_environment.now = [this] { return m_now; };
        m_environment.chance = [] { return 0.0; };
        m_environment.makeConnection = [this](const BrokerSettings&, const QString&,
                                              const Message&) {
            auto connection = std::make_unique<ScriptedConnection>();
            m_connection = connection.get();
            return connection;
        };
        m_bus =
            std::make_unique<BusClient>(m_form, m_store, BrokerSettings(), m_plant, m_environment);
        m_bus->onState = [this](const QString& line) { m_lines += line; };
        m_bus->start();
        connect();
    }

    void connect()
    {
        m_connection->onConnected();
        for (const int subscription : {1, 2, 3})
            m_connection->onSubscribed(subscription, true);
        hostIs("true");
    }

    void linkIs(bool isUp)
    {
        m_plant["press1"].isUp = isUp;
        m_bus->linkChanged("press1");
    }

    // What the client does of itself.
    std::string nextSecond()
    {
        calls();
        m_now.steadyMs += 1000;
        m_bus->tick();
        return calls();
    }

    void hostIs(const QByteArray& online)
    {
        m_connection->onMessage(
            {"spBv1.0/STATE/scada", "{\"online\":" + online + ",\"timestamp\":5}", 1, true});
    }

    std::string calls()
    {
        const QStringList last = m_connection->calls;
        m_connection->calls.clear();
        return last.join(", ").toStdString();
    }

    QTemporaryDir m_folder;
    Moment m_now{noon, 5000};
    Plant m_plant = {{"press1", pressView()}};
    SparkplugForm m_form = SparkplugForm({"plant", "cabinet1", "scada"}, m_plant);
    Store m_store = Store(settings());
    Environment m_environment = realEnvironment();
    ScriptedConnection* m_connection = nullptr;
    std::unique_ptr<BusClient> m_bus;
    QStringList m_lines;

private:
    StoreSettings settings() const
    {
        StoreSettings settings;
        settings.file = m_folder.filePath("store.db");
        return settings;
    }
};

TEST_F(ScriptedBusTest, ClosesNotBeforeAllIsAnswered)
{
    EXPECT_EQ(calls(),
              "subscribe plant, subscribe plant, subscribe STATE, NBIRTH, DBIRTH");  // numbers 1-5
    m_bus->publish({change("count", 7, noon)});
    EXPECT_EQ(calls(), "DDATA");  // 6
    hostIs("false");
    EXPECT_EQ(calls(), "NDEATH, barrier");  // 7, 8
    m_connection->onAcknowledged(7, true);
    m_bus->publish({change("count", 8, noon)});  // is kept
    EXPECT_EQ(calls(), "");
    m_connection->onBarrier(8);
    EXPECT_EQ(calls(), "close with will");
    m_connection->onEnded("as wanted");
    EXPECT_EQ(m_bus->status().waiting, 1);
}

TEST_F(ScriptedBusTest, GivesUpWhenNothingIsAnswered)
{
    calls();
    hostIs("false");
    EXPECT_EQ(calls(), "NDEATH, barrier");
    for (int second = 0; second < 10; ++second) {
        m_now.steadyMs += 1000;
        m_bus->tick();
    }
    EXPECT_EQ(calls(), "");
    m_now.steadyMs += 1000;
    m_bus->tick();
    EXPECT_EQ(calls(), "the broker does not answer");
}

TEST_F(ScriptedBusTest, SubscribesAnewInTheNextConnection)
{
    const std::string first = calls();
    m_connection->onEnded("reset");
    m_now.steadyMs += 1000;
    m_bus->tick();
    connect();
    EXPECT_EQ(calls(), first);
}

TEST_F(ScriptedBusTest, KeepsWhatWasNotConfirmedWhenTheConnectionEnded)
{
    m_bus->publish({change("count", 7, noon)});
    EXPECT_EQ(m_bus->status().unconfirmed, 1);
    m_connection->onEnded("reset");
    EXPECT_EQ(m_bus->status().unconfirmed, 0);
    EXPECT_EQ(m_bus->status().waiting, 1);
}

TEST_F(ScriptedBusTest, StoredWaitsUntilItsLinkIsAnnounced)
{
    linkIs(false);
    m_bus->publish({change("count", 7, noon)});
    EXPECT_EQ(nextSecond(), "");
    EXPECT_EQ(m_bus->status().waiting, 1);
    EXPECT_EQ(m_bus->status().dropped, 0);
    linkIs(true);
    EXPECT_EQ(nextSecond(), "DDATA, barrier");
}

TEST_F(ScriptedBusTest, DropsOnceWhatIsNotServedAnyMore)
{
    linkIs(false);
    m_bus->publish({change("flow", 7, noon)});
    nextSecond();
    m_plant["press1"].tags.removeFirst();
    linkIs(true);
    EXPECT_EQ(nextSecond(), "NDATA");  // how many were dropped
    EXPECT_EQ(nextSecond(), "");
    EXPECT_EQ(m_bus->status().dropped, 1);
    EXPECT_EQ(m_bus->status().waiting, 0);
}

TEST_F(ScriptedBusTest, LeavesABrokerThatConfirmsNothing)
{
    calls();
    m_bus->publish(QVector<Change>(20000, change("count", 7, noon)));
    EXPECT_EQ(calls(), "DDATA, barrier");
    m_bus->publish({change("count", 8, noon)});
    EXPECT_EQ(calls(), "DDATA, the broker is too slow");
}

TEST_F(ScriptedBusTest, CountsWhatCannotBeStoredWhenItStops)
{
    StoreSettings nowhere;
    nowhere.file = m_folder.filePath("nowhere/store.db");
    Store store(nowhere);
    SparkplugForm form({"plant", "cabinet2", {}}, m_plant);
    BusClient bus(form, store, BrokerSettings(), m_plant, m_environment);
    bus.onState = m_bus->onState;
    bus.start();
    bus.publish({change("count", 7, noon), change("count", 8, noon)});
    EXPECT_EQ(bus.status().waiting, 2);
    bus.stop();
    EXPECT_EQ(bus.status().waiting, 0);
    EXPECT_EQ(bus.status().dropped, 2);
    EXPECT_TRUE(m_lines.last().startsWith("sparkplug: 2 changes could not be stored, and are lost"))
        << m_lines.last().toStdString();
}

}  // namespace
