// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The gateway on a real broker: what others on the bus see of it, also when the broker dies and
// comes back.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tests/tools/fxgate/bus/test_broker.h"
#include "tools/fxgate/bus/bus_client.h"
#include "tools/fxgate/bus/plain_form.h"
#include "tools/fxgate/bus/sparkplug_form.h"

#include <gtest/gtest.h>

using namespace fxgate;
using namespace gate_tests;

namespace {

const QString history = "/history";

int numberIn(const Message& message)
{
    const QByteArray& text = message.payload;
    return text.mid(text.indexOf("\"v\":") + 4).split('}')[0].split(',')[0].toInt();
}

// The numbers of messages in order, with "r" where they are marked as perhaps repeated.
std::string numbers(const Messages& messages)
{
    QStringList texts;
    for (const Message& message : messages)
        texts.append(QString::number(numberIn(message)) +
                     (message.payload.contains("\"repeat\":true") ? "r" : ""));
    return texts.join(' ').toStdString();
}

std::string numbersFrom(int first, int last, const char* mark = "")
{
    QStringList texts;
    for (int number = first; number <= last; ++number)
        texts.append(QString::number(number) + mark);
    return texts.join(' ').toStdString();
}

class BusTest : public testing::Test
{
protected:
    Folder m_folder;
    Plant m_plant = {{"press1", pressView()}};
    PlainForm m_plain = PlainForm("fx", "cabinet1", m_plant);
    SparkplugForm m_sparkplug = SparkplugForm({"plant", "cabinet1", {}}, m_plant);
    std::unique_ptr<Store> m_store;
    std::unique_ptr<BusClient> m_bus;
    QVector<WriteRequest> m_writes;
    QStringList m_lines;
    Ticker m_ticker{[this] {
        if (m_bus)
            m_bus->tick();
    }};

    void start(Form& form, const BrokerSettings& settings)
    {
        StoreSettings store;
        store.file = m_folder.path("store.db");
        m_bus.reset();
        m_store.reset();
        m_store = std::make_unique<Store>(store);
        m_bus = std::make_unique<BusClient>(form, *m_store, settings, m_plant, realEnvironment());
        m_bus->onWrite = [this](const WriteRequest& request) { m_writes.append(request); };
        m_bus->onState = [this](const QString& line) { m_lines.append(line); };
        m_bus->start();
    }

    void startAndConnect(Form& form, const BrokerSettings& settings)
    {
        start(form, settings);
        ASSERT_TRUE(waitUntil([this] { return isConnected(); })) << allLines();
    }

    bool isConnected() const { return m_bus->status().isConnected; }
    std::string allLines() const { return m_lines.join('\n').toStdString(); }

    bool waitForLine(const QString& part)
    {
        return waitUntil([&] { return m_lines.filter(part).size() > 0; });
    }

    void publish(int first, int last)
    {
        for (int number = first; number <= last; ++number)
            m_bus->publish({change("count", number, noon + number)});
    }
};

TEST_F(BusTest, ValuesArriveWithMqtt5AndWithMqtt311)
{
    for (const bool isVersion5 : {true, false}) {
        Broker broker;
        OtherClient other(broker, "fx/#");
        BrokerSettings settings = broker.settings();
        settings.isVersion5 = isVersion5;
        startAndConnect(m_plain, settings);
        publish(1, 3);
        ASSERT_TRUE(waitUntil([&] { return other.with("press1/count").size() == 4; }));
        EXPECT_EQ(numbers(other.with("press1/count")), "-2 1 2 3");
        EXPECT_EQ(other.received()[0].topic, "fx/cabinet1/state");
        m_bus->stop();
        ASSERT_TRUE(waitUntil([&] { return other.with("cabinet1/state").size() == 2; }));
        EXPECT_TRUE(other.with("cabinet1/state")[1].payload.contains("offline"));
        EXPECT_EQ(m_store->rows("plain"), 0);
    }
}

TEST_F(BusTest, DeathOfTheProgramIsTold)
{
    Broker broker;
    OtherClient other(broker, "fx/cabinet1/state");
    startAndConnect(m_plain, broker.settings());
    m_bus.reset();  // without a disconnect, as after kill -9
    ASSERT_TRUE(waitUntil([&] { return other.received().size() == 2; }));
    EXPECT_TRUE(other.received()[1].payload.contains("offline"));
}

TEST_F(BusTest, StoredArrivesOnceInOrderAfterTheBrokerDied)
{
    Broker broker;
    auto before = std::make_unique<OtherClient>(broker, "fx/#");
    startAndConnect(m_plain, broker.settings());
    publish(1, 5);
    ASSERT_TRUE(waitUntil([&] { return before->with("press1/count").size() == 6; }));
    ASSERT_TRUE(waitUntil([this] { return m_bus->status().unconfirmed == 0; }));
    broker.kill();
    ASSERT_TRUE(waitUntil([this] { return !isConnected(); }));
    publish(6, 1205);
    before.reset();
    broker.start();
    OtherClient after(broker, "fx/#");
    ASSERT_TRUE(waitUntil([this] { return isConnected(); })) << allLines();
    publish(1206, 1210);
    ASSERT_TRUE(waitUntil([&] { return after.with(history).size() == 1200; }));
    EXPECT_EQ(numbers(after.with(history)), numbersFrom(6, 1205));
    // Values of now are not held up by it.
    EXPECT_EQ(numbers(after.with("press1/count").mid(0, 6)), "-2 " + numbersFrom(1206, 1210));
    ASSERT_TRUE(waitUntil([this] { return m_bus->status().waiting == 0; }));
}

// What was written to the socket of a broker that no longer reads is lost, though nobody is told.
TEST_F(BusTest, WhatADyingBrokerDidNotReadIsSentAgain)
{
    for (Form* form : {static_cast<Form*>(&m_plain), static_cast<Form*>(&m_sparkplug)}) {
        Broker broker;
        startAndConnect(*form, broker.settings());
        publish(1, 5);
        ASSERT_TRUE(waitUntil([this] { return m_bus->status().unconfirmed == 0; }));
        broker.pause();
        publish(6, 605);
        broker.kill();
        ASSERT_TRUE(waitUntil([this] { return !isConnected(); }));
        broker.start();
        if (form == &m_plain) {
            OtherClient other(broker, "fx/#");
            ASSERT_TRUE(waitUntil([&] { return other.with(history).size() == 600; }));
            EXPECT_EQ(numbers(other.with(history)), numbersFrom(6, 605, "r"));
            continue;
        }
        OtherClient other(broker, "spBv1.0/#");
        QVector<int> found;
        ASSERT_TRUE(waitUntil([&] {
            found.clear();
            for (const Message& message : other.with("DDATA")) {
                const SparkplugPayload payload = *decoded(message.payload);
                for (const Metric& metric : payload.metrics) {
                    EXPECT_TRUE(metric.isHistorical);
                    found.append(metric.value.toInt());
                }
            }
            return found.size() >= 600;
        }));
        ASSERT_EQ(found.size(), 600);
        for (int place = 0; place < 600; ++place)
            EXPECT_EQ(found[place], place + 6);
    }
}

TEST_F(BusTest, StoredOutlivesTheProgram)
{
    Broker broker;
    broker.kill();
    start(m_plain, broker.settings());
    publish(1, 20);
    m_bus->stop();
    broker.start();
    OtherClient other(broker, "fx/#");
    startAndConnect(m_plain, broker.settings());
    ASSERT_TRUE(waitUntil([&] { return other.with(history).size() == 20; }));
    EXPECT_EQ(numbers(other.with(history)), numbersFrom(1, 20));
}

TEST_F(BusTest, SparkplugIsBornAndDies)
{
    Broker broker;
    OtherClient other(broker, "spBv1.0/#");
    startAndConnect(m_sparkplug, broker.settings());
    publish(1, 1);
    m_plant["press1"].isUp = false;
    m_bus->linkChanged("press1");
    publish(2, 2);  // kept until the device is born again
    m_plant["press1"].isUp = true;
    m_bus->linkChanged("press1");
    ASSERT_TRUE(waitUntil([&] { return other.with("DDATA").size() == 2; }));
    m_bus->stop();
    ASSERT_TRUE(waitUntil([&] { return other.with("NDEATH").size() == 2; }));
    QStringList types;
    for (const Message& message : other.received())
        types.append(message.topic.section('/', 2, 2));
    EXPECT_EQ(types.join(' '), "NBIRTH DBIRTH DDATA DDEATH DBIRTH DDATA NDEATH NDEATH");
    EXPECT_TRUE(decoded(other.with("DDATA")[1].payload)->metrics[0].isHistorical);
    EXPECT_EQ(other.with("NDEATH")[0].payload, other.with("NDEATH")[1].payload);
}

TEST_F(BusTest, SparkplugDeathOfTheProgramIsTheWill)
{
    Broker broker;
    OtherClient other(broker, "spBv1.0/#");
    startAndConnect(m_sparkplug, broker.settings());
    m_bus.reset();
    ASSERT_TRUE(waitUntil([&] { return other.with("NDEATH").size() == 1; }));
    EXPECT_EQ(other.with("NDEATH")[0].payload.toHex(), "120b0a05626453657120045800");
}

TEST_F(BusTest, RebirthAndWritesComeFromTheBus)
{
    Broker broker;
    OtherClient other(broker, "spBv1.0/plant/NBIRTH/#");
    startAndConnect(m_sparkplug, broker.settings());
    Metric rebirth;
    rebirth.name = "Node Control/Rebirth";
    rebirth.datatype = Datatype::Boolean;
    rebirth.value = true;
    other.publish({"spBv1.0/plant/NCMD/cabinet1", encoded({noon, {}, {rebirth}})});
    ASSERT_TRUE(waitUntil([&] { return other.received().size() == 2; }));
    Metric count;
    count.name = "count";
    count.datatype = Datatype::Int64;
    count.value = 5;
    other.publish({"spBv1.0/plant/DCMD/cabinet1/press1", encoded({noon, {}, {count}})});
    ASSERT_TRUE(waitUntil([&] { return other.received().size() == 2 && m_writes.size() == 1; }));
    EXPECT_EQ(m_writes[0].tag, "count");
}

TEST_F(BusTest, WriteIsAnsweredToItsSender)
{
    Broker broker;
    OtherClient other(broker, "replies/#");
    startAndConnect(m_plain, broker.settings());
    Message write = {"fx/cabinet1/press1/count/set", R"({"v":5,"id":"a"})"};
    write.responseTopic = "replies/me";
    write.correlation = "c1";
    write.user = "anna";
    other.publish(write);
    ASSERT_TRUE(waitUntil([&] { return other.received().isEmpty() && m_writes.size() == 1; }));
    EXPECT_EQ(m_writes[0].who, "anna");
    EXPECT_EQ(m_writes[0].value, 5);
    EXPECT_FALSE(m_writes[0].isRetained);
    m_bus->answer(m_writes[0], {WriteResult::Outcome::Done, 4, 5, {}, noon});
    ASSERT_TRUE(waitUntil([&] { return other.received().size() == 1; }));
    EXPECT_EQ(other.received()[0].topic, "replies/me");
    EXPECT_EQ(other.received()[0].correlation, "c1");
    EXPECT_TRUE(other.received()[0].payload.contains(R"("outcome":"done")"));
}

TEST_F(BusTest, RetainedWriteIsKnownAsOne)
{
    Broker broker;
    OtherClient other(broker, "nothing");
    other.publish({"fx/cabinet1/press1/count/set", "5", 0, true});
    other.received();
    startAndConnect(m_plain, broker.settings());
    ASSERT_TRUE(waitUntil([this] { return m_writes.size() == 1; }));
    EXPECT_TRUE(m_writes[0].isRetained);
}

TEST_F(BusTest, RetainedValuesOfAFormerRunAreReplaced)
{
    Broker broker;
    startAndConnect(m_plain, broker.settings());
    m_bus->stop();
    m_plant["press1"].tags.removeFirst();
    m_plant["press1"].samples.remove("pump");
    m_plant["press1"].samples["count"].quality = Quality::Stale;
    PlainForm later("fx", "cabinet1", m_plant);
    startAndConnect(later, broker.settings());
    m_bus->stop();
    OtherClient other(broker, "fx/#");
    ASSERT_TRUE(waitUntil([&] { return other.with("press1/batch").size() == 1; }));
    EXPECT_EQ(other.with("press1/flow").size(), 0);
    EXPECT_TRUE(other.with("press1/count")[0].payload.contains("stale"));
}

TEST_F(BusTest, SlowBrokerGetsAllThatWasSentBeforeTheEnd)
{
    Broker broker;
    OtherClient other(broker, "fx/cabinet1/press1/state");
    startAndConnect(m_plain, broker.settings());
    ASSERT_TRUE(waitUntil([&] { return other.received().size() == 1; }));
    broker.pause();
    for (int change = 0; change < 50; ++change)
        m_bus->linkChanged("press1");
    broker.goOnSoon();
    m_bus->stop();
    ASSERT_TRUE(waitUntil([&] { return other.received().size() == 51; }));
}

TEST_F(BusTest, BrokerThatStopsReadingIsLeft)
{
    Broker broker;
    startAndConnect(m_plain, broker.settings());
    broker.pause();
    publish(1, 3);
    ASSERT_TRUE(waitForLine("the broker does not answer"));
    EXPECT_EQ(m_bus->status().waiting, 3);
    broker.kill();
}

TEST_F(BusTest, LineOfEachChangeIsSaidOnce)
{
    Broker broker;
    broker.kill();
    start(m_plain, broker.settings());
    ASSERT_TRUE(waitUntil([this] { return m_bus->status().attempts == 2; }));
    EXPECT_EQ(allLines(), "plain: not connected to 127.0.0.1: Connection refused");
    broker.start();
    ASSERT_TRUE(waitForLine("plain: connected to 127.0.0.1")) << allLines();
    EXPECT_EQ(m_lines.size(), 2);
}

}  // namespace
