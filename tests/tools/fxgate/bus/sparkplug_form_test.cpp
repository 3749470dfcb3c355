// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The life of a Sparkplug B edge node and its devices. docs/sparkplug.md says which test stands for
// which rule of the standard.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tools/fxgate/bus/sparkplug_form.h"

#include <gtest/gtest.h>

using namespace fxgate;
using namespace gate_tests;

namespace {

constexpr qint64 now = noon + 5000;

SparkplugPayload payloadOf(const Message& message)
{
    return decoded(message.payload).value_or(SparkplugPayload());
}

// The metric of a name or of an alias; an empty one if there is none.
Metric metricIn(const Message& message, const QString& name, quint64 alias = 0)
{
    for (const Metric& metric : payloadOf(message).metrics)
        if (alias == 0 ? metric.name == name : metric.alias == alias)
            return metric;
    return {};
}

std::string topics(const Messages& messages)
{
    QStringList lines;
    for (const Message& message : messages)
        lines.append(message.topic.section('/', 2, 2) + ' ' + message.topic.section('/', 4));
    return lines.join('\n').toStdString();
}

QByteArray command(const QString& name, Datatype datatype, const QJsonValue& value)
{
    Metric metric;
    metric.name = name;
    metric.datatype = datatype;
    metric.value = value;
    return encoded({now, {}, {metric}});
}

class SparkplugNode : public testing::Test
{
protected:
    Plant m_plant = {{"press1", pressView()}};
    SparkplugForm m_form = SparkplugForm({"plant", "cabinet1", {}}, m_plant);

    // Connects and returns the births.
    Messages births(qint64 nowMs = now)
    {
        m_form.will(nowMs);
        return m_form.connected(nowMs);
    }

    Messages linkIs(bool isUp)
    {
        m_plant["press1"].isUp = isUp;
        return m_form.linkChanged("press1", now);
    }

    Received nodeCommand(const QByteArray& payload, bool isRetained = false)
    {
        return m_form.received({"spBv1.0/plant/NCMD/cabinet1", payload, 0, isRetained}, now);
    }

    QVector<WriteRequest> deviceCommand(const QByteArray& payload, const QString& device = "press1")
    {
        return m_form.received({"spBv1.0/plant/DCMD/cabinet1/" + device, payload}, now).writes;
    }
};

class SparkplugBirth : public SparkplugNode
{};
class SparkplugData : public SparkplugNode
{};
class SparkplugCommand : public SparkplugNode
{};
class SparkplugDeath : public SparkplugNode
{};

// The will, and the death that it is.

TEST_F(SparkplugDeath, WillIsTheDeathOfTheNode)
{
    const Message will = m_form.will(now);
    EXPECT_EQ(will.topic, "spBv1.0/plant/NDEATH/cabinet1");
    EXPECT_EQ(will.qos, 1);
    EXPECT_FALSE(will.isRetained);
    EXPECT_EQ(will.payload.toHex(), "120b0a05626453657120045800");
}

TEST_F(SparkplugDeath, HasOnlyBdSeq)
{
    const SparkplugPayload payload = payloadOf(m_form.will(now));
    ASSERT_EQ(payload.metrics.size(), 1);
    EXPECT_EQ(payload.metrics[0].name, "bdSeq");
    EXPECT_EQ(payload.metrics[0].datatype, Datatype::Int64);
    EXPECT_FALSE(payload.sequence);
}

TEST_F(SparkplugDeath, BdSeqCountsConnectsUpTo255)
{
    for (const int expected : {0, 1, 2})
        EXPECT_EQ(metricIn(m_form.will(now), "bdSeq").value, expected);
    m_form.recall("254");
    EXPECT_EQ(metricIn(m_form.will(now), "bdSeq").value, 255);
    EXPECT_EQ(metricIn(m_form.will(now), "bdSeq").value, 0);
}

TEST_F(SparkplugDeath, BdSeqIsKeptOverRestarts)
{
    m_form.will(now);
    m_form.will(now);
    SparkplugForm later({"plant", "cabinet1", {}}, m_plant);
    later.recall(m_form.memory());
    EXPECT_EQ(metricIn(later.will(now), "bdSeq").value, 2);
    for (const char* memory : {"", "x", "256", "-2"}) {
        SparkplugForm fresh({"plant", "cabinet1", {}}, m_plant);
        fresh.recall(memory);
        EXPECT_EQ(metricIn(fresh.will(now), "bdSeq").value, 0) << memory;
    }
}

TEST_F(SparkplugDeath, AttemptWithoutConnectIsNotCounted)
{
    m_form.will(now);
    m_form.notConnected();
    EXPECT_EQ(metricIn(m_form.will(now), "bdSeq").value, 0);
}

TEST_F(SparkplugDeath, IsPublishedBeforeALeave)
{
    m_form.recall("6");
    births();
    const Messages leaving = m_form.leaving(now);
    ASSERT_EQ(topics(leaving), "NDEATH ");
    EXPECT_EQ(leaving[0].qos, 1);
    EXPECT_FALSE(leaving[0].isRetained);
    EXPECT_EQ(metricIn(leaving[0], "bdSeq").value, 7);
    EXPECT_FALSE(payloadOf(leaving[0]).sequence);
    EXPECT_TRUE(m_form.wantsWillAfterLeaving());
}

TEST_F(SparkplugDeath, IsNotOwedBeforeABirth)
{
    m_form.will(now);
    EXPECT_TRUE(m_form.leaving(now).isEmpty());
}

TEST_F(SparkplugDeath, OfADeviceComesAtOnceWithTheTimeOfNow)
{
    births();
    const Messages death = linkIs(false);
    ASSERT_EQ(topics(death), "DDEATH press1");
    EXPECT_EQ(death[0].qos, 0);
    EXPECT_FALSE(death[0].isRetained);
    EXPECT_EQ(payloadOf(death[0]).timeMs, now);
    EXPECT_EQ(payloadOf(death[0]).sequence, 2);
    EXPECT_TRUE(linkIs(false).isEmpty());
}

// Births.

TEST_F(SparkplugBirth, TopicsHaveGroupTypeNodeAndDevice)
{
    const Messages told = births();
    ASSERT_EQ(told.size(), 2);
    EXPECT_EQ(told[0].topic, "spBv1.0/plant/NBIRTH/cabinet1");
    EXPECT_EQ(told[1].topic, "spBv1.0/plant/DBIRTH/cabinet1/press1");
}

TEST_F(SparkplugBirth, HasQos0AndIsNotRetained)
{
    for (const Message& message : births()) {
        EXPECT_EQ(message.qos, 0);
        EXPECT_FALSE(message.isRetained);
    }
}

TEST_F(SparkplugBirth, NodeComesFirstThenEachLiveDevice)
{
    m_plant["press2"] = pressView();
    m_plant["press3"] = pressView();
    m_plant["press3"].isUp = false;
    m_plant["press4"].isUp = true;  // its tags are not known yet
    EXPECT_EQ(topics(births()), "NBIRTH \nDBIRTH press1\nDBIRTH press2");
}

TEST_F(SparkplugBirth, HasTheTimeOfSending)
{
    for (const Message& message : births())
        EXPECT_EQ(payloadOf(message).timeMs, now);
}

TEST_F(SparkplugBirth, SeqBeginsAtZeroAndGrows)
{
    m_plant["press2"] = pressView();
    int expected = 0;
    for (const Message& message : births())
        EXPECT_EQ(payloadOf(message).sequence, expected++);
    m_form.disconnected();
    EXPECT_EQ(payloadOf(births()[0]).sequence, 0);
}

TEST_F(SparkplugBirth, NodeHasBdSeqOfTheWill)
{
    for (const int expected : {0, 1}) {
        const Metric number = metricIn(births()[0], "bdSeq");
        EXPECT_EQ(number.value, expected);
        EXPECT_EQ(number.datatype, Datatype::Int64);
        m_form.disconnected();
    }
}

TEST_F(SparkplugBirth, NodeOffersRebirthWithoutAlias)
{
    const Metric rebirth = metricIn(births()[0], "Node Control/Rebirth");
    EXPECT_EQ(rebirth.datatype, Datatype::Boolean);
    EXPECT_EQ(rebirth.value, false);
    EXPECT_FALSE(rebirth.alias);
}

TEST_F(SparkplugBirth, EachMetricHasNameTypeTimeAndValue)
{
    const Messages told = births();
    for (const Message& message : told)
        for (const Metric& metric : payloadOf(message).metrics) {
            EXPECT_FALSE(metric.name.isEmpty());
            EXPECT_TRUE(metric.tellsDatatype);
            EXPECT_TRUE(metric.timeMs);
            EXPECT_FALSE(metric.value.isUndefined()) << metric.name.toStdString();
        }
    EXPECT_EQ(payloadOf(told[0]).metrics.size(), 3);
    EXPECT_EQ(payloadOf(told[1]).metrics.size(), 4);
    EXPECT_EQ(metricIn(told[1], "flow").value, 12.5);
    EXPECT_EQ(metricIn(told[1], "flow").timeMs, noon - 3);
    EXPECT_EQ(metricIn(told[1], "pump").value, true);
    EXPECT_EQ(metricIn(told[1], "count").value, -2);
    EXPECT_EQ(metricIn(told[1], "batch").value, "A7");
}

TEST_F(SparkplugBirth, DatatypeFollowsTheTag)
{
    const Message birth = births()[1];
    EXPECT_EQ(metricIn(birth, "flow").datatype, Datatype::Double);
    EXPECT_EQ(metricIn(birth, "pump").datatype, Datatype::Boolean);
    EXPECT_EQ(metricIn(birth, "count").datatype, Datatype::Int64);
    EXPECT_EQ(metricIn(birth, "batch").datatype, Datatype::String);
}

TEST_F(SparkplugBirth, TagThatWasNeverReadIsNull)
{
    m_plant["press1"].samples.remove("flow");
    const Metric flow = metricIn(births()[1], "flow");
    EXPECT_TRUE(flow.value.isUndefined());
    EXPECT_EQ(flow.datatype, Datatype::Double);
    EXPECT_EQ(flow.timeMs, now);
}

TEST_F(SparkplugBirth, AliasesAreUniqueInTheNodeAndStay)
{
    m_plant["press2"] = pressView();
    const auto aliasesIn = [](const Messages& messages) {
        QMap<quint64, QString> aliases;
        int metrics = 0;
        for (const Message& message : messages)
            for (const Metric& metric : payloadOf(message).metrics)
                if (metric.alias) {
                    aliases.insert(*metric.alias, message.topic + ' ' + metric.name);
                    ++metrics;
                }
        EXPECT_EQ(aliases.size(), metrics);
        return aliases;
    };
    const auto before = aliasesIn(births());
    EXPECT_EQ(before.size(), 8);
    m_form.disconnected();
    EXPECT_EQ(aliasesIn(births()), before);
}

TEST_F(SparkplugBirth, CommandsAreSubscribedForNodeAndWritableDevices)
{
    m_plant["press2"] = pressView();
    for (ServedTag& tag : m_plant["press2"].tags)
        tag.isWritable = false;
    EXPECT_EQ(m_form.subscriptions().join(' '),
              "spBv1.0/plant/NCMD/cabinet1 spBv1.0/plant/DCMD/cabinet1/press1");
}

TEST_F(SparkplugBirth, DeviceThatReturnsIsBornAgain)
{
    births();
    linkIs(false);
    const Messages birth = linkIs(true);
    ASSERT_EQ(topics(birth), "DBIRTH press1");
    EXPECT_EQ(payloadOf(birth[0]).sequence, 3);  // a device's birth resets nothing
    EXPECT_TRUE(linkIs(true).isEmpty());
}

TEST_F(SparkplugBirth, DeviceWithOtherTagsDiesAndIsBornAgain)
{
    births();
    m_plant["press1"].tags.append(served("new", ValueKind::Bit));
    EXPECT_EQ(topics(m_form.linkChanged("press1", now)), "DDEATH press1\nDBIRTH press1");
    m_plant["press1"].tags[0].kind = ValueKind::Integer;
    EXPECT_EQ(topics(m_form.linkChanged("press1", now)), "DDEATH press1\nDBIRTH press1");
    m_plant.remove("press1");
    EXPECT_EQ(topics(m_form.linkChanged("press1", now)), "DDEATH press1");
}

// Data.

TEST_F(SparkplugData, NeedsBirths)
{
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Later);
    EXPECT_TRUE(m_form.values({change("flow", 1, now)}, now).isEmpty());
    EXPECT_TRUE(m_form.linkChanged("press1", now).isEmpty());
    EXPECT_TRUE(m_form.dropped(1, now).isEmpty());
    births();
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Now);
    linkIs(false);
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Later);
    EXPECT_TRUE(m_form.values({change("flow", 1, now)}, now).isEmpty());
    EXPECT_EQ(m_form.sending("press1", "gone"), Form::Sending::Never);
    EXPECT_EQ(m_form.sending("press9", "flow"), Form::Sending::Never);
    m_form.disconnected();
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Later);
}

TEST_F(SparkplugData, GoesByAliasWithoutNameAndDatatype)
{
    const quint64 alias = *metricIn(births()[1], "flow").alias;
    const Messages data = m_form.values({change("flow", 13.5, now - 1)}, now);
    ASSERT_EQ(data.size(), 1);
    const SparkplugPayload payload = payloadOf(data[0]);
    ASSERT_EQ(payload.metrics.size(), 1);
    EXPECT_EQ(payload.metrics[0].alias, alias);
    EXPECT_EQ(payload.metrics[0].name, "");
    EXPECT_FALSE(payload.metrics[0].tellsDatatype);
    EXPECT_EQ(payload.metrics[0].value, 13.5);
    EXPECT_EQ(payload.metrics[0].timeMs, now - 1);
    EXPECT_FALSE(payload.metrics[0].isHistorical);
}

TEST_F(SparkplugData, HasDatatypesForReadersThatNeedThem)
{
    SparkplugForm form({"plant", "cabinet1", {}, true}, m_plant);
    form.will(now);
    form.connected(now);
    const Messages data = form.values({change("flow", 13.5, now)}, now) +
                          form.history({{1, change("count", 3, now), false}}, now) +
                          form.dropped(1, now);
    ASSERT_EQ(data.size(), 3);
    for (const Message& message : data)
        EXPECT_TRUE(payloadOf(message).metrics.first().tellsDatatype);
}

TEST_F(SparkplugData, OfADeviceHasItsTopic)
{
    births();
    const Messages data = m_form.values({change("flow", 13.5, now)}, now);
    ASSERT_EQ(data.size(), 1);
    EXPECT_EQ(data[0].topic, "spBv1.0/plant/DDATA/cabinet1/press1");
    EXPECT_EQ(data[0].qos, 0);
    EXPECT_FALSE(data[0].isRetained);
    EXPECT_EQ(payloadOf(data[0]).timeMs, now);
}

TEST_F(SparkplugData, OfTheNodeTellsWhatTheStoreDropped)
{
    EXPECT_EQ(metricIn(births()[0], "Dropped").value, 0);
    const Messages data = m_form.dropped(12, now);
    ASSERT_EQ(data.size(), 1);
    EXPECT_EQ(data[0].topic, "spBv1.0/plant/NDATA/cabinet1");
    EXPECT_EQ(data[0].qos, 0);
    EXPECT_FALSE(data[0].isRetained);
    EXPECT_EQ(payloadOf(data[0]).timeMs, now);
    EXPECT_EQ(payloadOf(data[0]).sequence, 2);
    ASSERT_EQ(payloadOf(data[0]).metrics.size(), 1);
    const Metric dropped = metricIn(data[0], "Dropped");
    EXPECT_EQ(dropped.value, 12);
    EXPECT_EQ(dropped.timeMs, now);
    EXPECT_FALSE(dropped.tellsDatatype);
    m_form.disconnected();
    EXPECT_EQ(metricIn(births()[0], "Dropped").value, 12);
}

TEST_F(SparkplugData, SeqGoesFrom255To0OverAllDevices)
{
    m_plant["press2"] = pressView();
    int expected = births().size() - 1;
    for (int time = 0; time < 300; ++time) {
        Change one = change("flow", time, now + time);
        one.link = time % 2 == 0 ? "press1" : "press2";
        const Messages data = m_form.values({one}, now);
        ASSERT_EQ(data.size(), 1);
        expected = (expected + 1) % 256;
        ASSERT_EQ(payloadOf(data[0]).sequence, expected);
    }
}

TEST_F(SparkplugData, TellsOnlyChanges)
{
    births();
    EXPECT_TRUE(
        m_form.values({change("flow", 12.5, noon - 3)}, now).isEmpty());  // the birth had it
    EXPECT_EQ(m_form.values({change("flow", 12.5, noon - 3, Quality::Stale)}, now).size(), 1);
    EXPECT_EQ(m_form.values({change("flow", 13, now)}, now).size(), 1);
    EXPECT_TRUE(m_form.values({change("flow", 13, now)}, now).isEmpty());
}

TEST_F(SparkplugData, OfOneDeviceShareAMessageInTimeOrder)
{
    m_plant["press2"] = pressView();
    births();
    Change other = change("pump", false, now);
    other.link = "press2";
    const Messages data = m_form.values(
        {change("flow", 2, now + 2), other, change("flow", 1, now + 1), change("pump", false, now)},
        now);
    ASSERT_EQ(topics(data), "DDATA press1\nDDATA press2");
    const SparkplugPayload payload = payloadOf(data[0]);
    ASSERT_EQ(payload.metrics.size(), 3);
    for (int place = 0; place < 3; ++place)
        EXPECT_EQ(payload.metrics[place].timeMs, now + place);
}

TEST_F(SparkplugData, LargeSetsTakeSeveralMessages)
{
    births();
    QVector<Change> changes;
    for (int time = 0; time < 1001; ++time)
        changes.append(change("flow", time, now + time));
    const Messages data = m_form.values(changes, now);
    ASSERT_EQ(data.size(), 3);
    EXPECT_EQ(payloadOf(data[2]).metrics.size(), 1);
    EXPECT_EQ(payloadOf(data[2]).sequence, 4);
}

TEST_F(SparkplugData, HistoryHasItsOwnTimesAndTheSeqOfItsSending)
{
    const quint64 alias = *metricIn(births()[1], "flow").alias;
    const Messages data = m_form.history({{7, change("flow", 1, noon - 9000), false},
                                          {8, change("flow", 2, noon - 8000, Quality::Bad), true}},
                                         now);
    ASSERT_EQ(topics(data), "DDATA press1");
    const SparkplugPayload payload = payloadOf(data[0]);
    EXPECT_EQ(payload.timeMs, now);
    EXPECT_EQ(payload.sequence, 2);
    ASSERT_EQ(payload.metrics.size(), 2);
    EXPECT_TRUE(payload.metrics[0].isHistorical);
    EXPECT_EQ(payload.metrics[0].alias, alias);
    EXPECT_EQ(payload.metrics[0].timeMs, noon - 9000);
    EXPECT_EQ(payload.metrics[1].value, 2);
    // Only the second is of bad quality and perhaps repeated.
    EXPECT_EQ(data[0].payload.count("Quality"), 1);
    EXPECT_EQ(data[0].payload.count("Repeat"), 1);
}

// Commands.

TEST_F(SparkplugCommand, RebirthTellsAllAgainOverTheSameConnection)
{
    births();
    m_form.values({change("flow", 13, now)}, now);
    m_plant["press1"].samples["flow"] = {14, Quality::Good, {}, now};
    const Received received = nodeCommand(command("Node Control/Rebirth", Datatype::Boolean, true));
    EXPECT_FALSE(received.mustLeave);
    ASSERT_EQ(topics(received.messages), "NBIRTH \nDBIRTH press1");
    EXPECT_EQ(payloadOf(received.messages[0]).sequence, 0);
    EXPECT_EQ(metricIn(received.messages[0], "bdSeq").value, 0);
    EXPECT_EQ(metricIn(received.messages[1], "flow").value, 14);
    // From then on nothing is sent that the births had.
    EXPECT_TRUE(m_form.values({change("flow", 14, now)}, now).isEmpty());
}

TEST_F(SparkplugCommand, RebirthsAreNoMoreThanOneASecondAndNoDataComesBefore)
{
    births();
    const QByteArray rebirth = command("Node Control/Rebirth", Datatype::Boolean, true);
    EXPECT_EQ(nodeCommand(rebirth).messages.size(), 2);
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Now);
    for (int times = 0; times < 100; ++times)
        EXPECT_TRUE(nodeCommand(rebirth).messages.isEmpty());
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Later);
    EXPECT_FALSE(m_form.isAnnounced("press1"));
    EXPECT_TRUE(linkIs(false).isEmpty());
    EXPECT_TRUE(linkIs(true).isEmpty());
    EXPECT_TRUE(m_form.dropped(7, now).isEmpty());
    const Messages due = m_form.everySecond(now);
    EXPECT_EQ(topics(due), "NBIRTH \nDBIRTH press1");
    EXPECT_EQ(metricIn(due[0], "Dropped").value, 7);
    EXPECT_TRUE(m_form.isAnnounced("press1"));
    EXPECT_TRUE(nodeCommand(rebirth).messages.isEmpty());
    EXPECT_EQ(m_form.everySecond(now).size(), 2);
    EXPECT_TRUE(m_form.everySecond(now).isEmpty());
    EXPECT_EQ(nodeCommand(rebirth).messages.size(), 2);
}

TEST_F(SparkplugCommand, ARebirthThatIsDueEndsWithTheConnection)
{
    births();
    const QByteArray rebirth = command("Node Control/Rebirth", Datatype::Boolean, true);
    nodeCommand(rebirth);
    nodeCommand(rebirth);
    EXPECT_EQ(topics(m_form.leaving(now)), "NDEATH ");
    m_form.disconnected();
    EXPECT_TRUE(m_form.everySecond(now).isEmpty());
    births();
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Now);
}

TEST_F(SparkplugCommand, OtherNodeCommandsAreIgnored)
{
    births();
    for (const QByteArray& payload :
         {command("Node Control/Rebirth", Datatype::Boolean, false),
          command("Node Control/Rebirth", Datatype::Int32, 1),
          command("Node Control/Rebirth", Datatype::Boolean, {}),
          command("Node Control/Reboot", Datatype::Boolean, true),
          command("bdSeq", Datatype::Int64, 3), QByteArray("hostile"), QByteArray()}) {
        const Received received = nodeCommand(payload);
        EXPECT_TRUE(received.messages.isEmpty() && received.writes.isEmpty());
    }
    EXPECT_TRUE(nodeCommand(command("Node Control/Rebirth", Datatype::Boolean, true), true)
                    .messages.isEmpty());  // a retained one would come at each connection
}

TEST_F(SparkplugCommand, BeforeTheBirthIsIgnored)
{
    const QByteArray rebirth = command("Node Control/Rebirth", Datatype::Boolean, true);
    EXPECT_TRUE(nodeCommand(rebirth).messages.isEmpty());
    EXPECT_TRUE(deviceCommand(command("count", Datatype::Int64, 5)).isEmpty());
    births();
    linkIs(false);
    EXPECT_TRUE(deviceCommand(command("count", Datatype::Int64, 5)).isEmpty());
}

TEST_F(SparkplugCommand, WritesByNameOrByAlias)
{
    const quint64 alias = *metricIn(births()[1], "count").alias;
    Message message = {"spBv1.0/plant/DCMD/cabinet1/press1", command("count", Datatype::Int64, 5),
                       1, true};
    message.user = "anna";
    const QVector<WriteRequest> byName = m_form.received(message, now).writes;
    ASSERT_EQ(byName.size(), 1);
    EXPECT_EQ(byName[0].link, "press1");
    EXPECT_EQ(byName[0].tag, "count");
    EXPECT_EQ(byName[0].value, 5);
    EXPECT_EQ(byName[0].sentMs, now);
    EXPECT_TRUE(byName[0].isRetained);
    EXPECT_EQ(byName[0].who, "anna");

    Metric metric;
    metric.alias = alias;
    metric.datatype = Datatype::Int32;
    metric.value = -6;
    metric.tellsDatatype = true;
    const QVector<WriteRequest> byAlias = deviceCommand(encoded({{}, {}, {metric}}));
    ASSERT_EQ(byAlias.size(), 1);
    EXPECT_EQ(byAlias[0].tag, "count");
    EXPECT_EQ(byAlias[0].value, -6);
    EXPECT_FALSE(byAlias[0].sentMs);
}

TEST_F(SparkplugCommand, ValueMustBeOfTheTagsKind)
{
    births();
    for (const QByteArray& payload :
         {command("count", Datatype::Boolean, true), command("count", Datatype::String, "5"),
          command("count", Datatype::Double, 5.5), command("count", Datatype::Int64, {}),
          command("pump", Datatype::Int64, 1), command("batch", Datatype::Int64, 1),
          command("flow", Datatype::Boolean, true), command("nobody", Datatype::Int64, 5),
          command("", Datatype::Int64, 5), QByteArray("hostile")})
        EXPECT_TRUE(deviceCommand(payload).isEmpty());
    EXPECT_EQ(deviceCommand(command("flow", Datatype::Float, 5)).size(), 1);
    EXPECT_EQ(deviceCommand(command("pump", Datatype::Boolean, true)).size(), 1);
    EXPECT_EQ(deviceCommand(command("batch", Datatype::Text, "B8")).size(), 1);
    EXPECT_TRUE(deviceCommand(command("count", Datatype::Int64, 5), "press9").isEmpty());
}

TEST_F(SparkplugCommand, WithMoreMetricsThanTheDeviceIsIgnored)
{
    births();
    Metric metric;
    metric.name = "count";
    metric.datatype = Datatype::Int64;
    metric.value = 5;
    EXPECT_EQ(deviceCommand(encoded({{}, {}, QVector<Metric>(4, metric)})).size(), 4);
    EXPECT_TRUE(deviceCommand(encoded({{}, {}, QVector<Metric>(5, metric)})).isEmpty());
}

TEST_F(SparkplugCommand, IsAnsweredByTheNewValueAlone)
{
    births();
    EXPECT_TRUE(m_form.reply({}, {}).isEmpty());
}

// The primary host.

class SparkplugHost : public testing::Test
{
protected:
    Plant m_plant = {{"press1", pressView()}};
    SparkplugForm m_form = SparkplugForm({"plant", "cabinet1", "scada"}, m_plant);

    void SetUp() override { connectAgain(); }

    void connectAgain()
    {
        m_form.disconnected();
        m_form.will(now);
        EXPECT_TRUE(m_form.connected(now).isEmpty());
    }

    Received state(const QByteArray& payload, const QString& host = "scada")
    {
        return m_form.received({"spBv1.0/STATE/" + host, payload, 1, true}, now);
    }

    std::string born(const QByteArray& payload) { return topics(state(payload).messages); }
};

TEST_F(SparkplugHost, IsSubscribedAndAwaited)
{
    EXPECT_EQ(m_form.subscriptions().last(), "spBv1.0/STATE/scada");
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Later);
    EXPECT_EQ(born(R"({"online":true,"timestamp":1000})"), "NBIRTH \nDBIRTH press1");
}

TEST_F(SparkplugHost, OnlyItsOwnOnlineStateCounts)
{
    EXPECT_TRUE(state(R"({"online":true,"timestamp":1000})", "other").messages.isEmpty());
    EXPECT_EQ(born(R"({"online":false,"timestamp":1000})"), "");
    for (const char* payload :
         {"ONLINE", "", "{}", "[]", R"({"online":true})", R"({"online":"true","timestamp":1000})",
          R"({"online":true,"timestamp":"1000"})", R"({"online":true,"timestamp":-5})",
          R"({"online":true,"timestamp":1e300})"})
        EXPECT_EQ(born(payload), "") << payload;
}

TEST_F(SparkplugHost, OnlineWithAnEarlierTimeIsIgnored)
{
    EXPECT_EQ(born(R"({"online":false,"timestamp":1000})"), "");
    EXPECT_EQ(born(R"({"online":true,"timestamp":999})"), "");
    EXPECT_EQ(born(R"({"online":true,"timestamp":1000})"), "NBIRTH \nDBIRTH press1");
}

TEST_F(SparkplugHost, OfflineMeansDeathAndDisconnect)
{
    born(R"({"online":true,"timestamp":1000})");
    EXPECT_FALSE(state(R"({"online":false,"timestamp":999})").mustLeave);  // a late will
    EXPECT_TRUE(state(R"({"online":false,"timestamp":1000})").mustLeave);
    EXPECT_EQ(topics(m_form.leaving(now)), "NDEATH ");
    // Then it stays connected and waits.
    connectAgain();
    EXPECT_FALSE(state(R"({"online":false,"timestamp":1000})").mustLeave);
    EXPECT_EQ(born(R"({"online":true,"timestamp":999})"), "");  // the time outlives a connection
    EXPECT_EQ(born(R"({"online":true,"timestamp":2000})"), "NBIRTH \nDBIRTH press1");
}

TEST_F(SparkplugHost, OnlineAgainTellsNothingTwice)
{
    born(R"({"online":true,"timestamp":1000})");
    EXPECT_EQ(born(R"({"online":true,"timestamp":2000})"), "");
}

}  // namespace
