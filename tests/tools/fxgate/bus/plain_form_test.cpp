// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values as JSON: topics, payloads, retained values of former runs, and writes from the bus.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tools/fxgate/bus/plain_form.h"

#include <gtest/gtest.h>

using namespace fxgate;
using namespace gate_tests;

namespace {

// A line a message: its topic, "r" if it is retained, its payload.
std::string text(const Messages& messages)
{
    QString lines;
    for (const Message& message : messages)
        lines += message.topic + (message.isRetained ? " r " : " ") + message.payload + '\n';
    return lines.toStdString();
}

class PlainFormTest : public testing::Test
{
protected:
    Plant m_plant = {{"press1", pressView()}};
    PlainForm m_form = PlainForm("fx", "cabinet1", m_plant);

    std::string setTopic(const QByteArray& payload, const QString& topic = "press1/count/set")
    {
        const Received received =
            m_form.received({"fx/cabinet1/" + topic, payload, 1, false}, noon);
        if (!received.messages.isEmpty())
            return text(received.messages);
        QString lines;
        for (const WriteRequest& request : received.writes)
            lines += request.link + ' ' + request.tag + ' ' + request.value.toVariant().toString() +
                     " id=" + request.id + " t=" + QString::number(request.sentMs.value_or(-1));
        return lines.toStdString();
    }
};

TEST_F(PlainFormTest, WillSaysOffline)
{
    EXPECT_EQ(
        text({m_form.will(noon)}),
        R"(fx/cabinet1/state r {"dropped":0,"state":"offline","t":"2026-11-22T12:00:00.000Z"})"
        "\n");
    EXPECT_EQ(m_form.will(noon).qos, 1);
    EXPECT_EQ(text(m_form.leaving(noon)), text({m_form.will(noon)}));
}

TEST_F(PlainFormTest, FirstTellsStatesAndAllValues)
{
    EXPECT_EQ(text(m_form.connected(noon)),
              R"(fx/cabinet1/state r {"dropped":0,"state":"online","t":"2026-11-22T12:00:00.000Z"}
fx/cabinet1/press1/state r {"state":"up","t":"2026-11-22T12:00:00.000Z"}
fx/cabinet1/press1/flow r {"q":"good","t":"2026-11-22T11:59:59.997Z","v":12.5}
fx/cabinet1/press1/pump r {"q":"good","t":"2026-11-22T11:59:59.998Z","v":true}
fx/cabinet1/press1/count r {"q":"good","t":"2026-11-22T11:59:59.999Z","v":-2}
fx/cabinet1/press1/batch r {"q":"good","t":"2026-11-22T12:00:00.000Z","v":"A7"}
)");
}

TEST_F(PlainFormTest, ValueTellsItsQualityAndWhy)
{
    EXPECT_EQ(
        text(m_form.values({change("flow", 1, noon, Quality::Stale, "not read for 3 periods"),
                            change("pump", {}, noon, Quality::Bad, "refused")},
                           noon)),
        R"(fx/cabinet1/press1/flow r {"q":"stale","t":"2026-11-22T12:00:00.000Z","v":1,"why":"not read for 3 periods"}
fx/cabinet1/press1/pump r {"q":"bad","t":"2026-11-22T12:00:00.000Z","v":null,"why":"refused"}
)");
}

// Its values are told as changes, once.
TEST_F(PlainFormTest, ValueIsToldOnceInAConnection)
{
    const Change one = change("flow", 12.5, noon - 3);
    EXPECT_EQ(m_form.connected(noon).size(), 6);
    EXPECT_TRUE(m_form.values({one}, noon).isEmpty());
    EXPECT_EQ(m_form.linkChanged("press1", noon).size(), 1);  // its state
    EXPECT_EQ(m_form.values({change("flow", 12.5, noon)}, noon).size(), 1);
    EXPECT_EQ(m_form.values({change("flow", 12.5, noon, Quality::Stale, "a")}, noon).size(), 1);
    EXPECT_EQ(m_form.values({change("flow", 12.5, noon, Quality::Stale, "b")}, noon).size(), 1);
    m_form.disconnected();
    EXPECT_EQ(m_form.connected(noon).size(), 6);
}

TEST_F(PlainFormTest, LinkThatGoesDownSaysWhy)
{
    m_plant["press1"].isUp = false;
    m_plant["press1"].reason = "no reply";
    EXPECT_EQ(
        text(m_form.linkChanged("press1", noon)),
        R"(fx/cabinet1/press1/state r {"state":"down","t":"2026-11-22T12:00:00.000Z","why":"no reply"})"
        "\n");
}

TEST_F(PlainFormTest, HistoryIsNeverOnTheTopicOfTheValueOfNow)
{
    EXPECT_EQ(
        text(m_form.history(
            {{7, change("flow", 1.5, noon), false}, {8, change("flow", 2, noon + 1), true}}, noon)),
        R"(fx/cabinet1/press1/flow/history {"historical":true,"n":7,"q":"good","t":"2026-11-22T12:00:00.000Z","v":1.5}
fx/cabinet1/press1/flow/history {"historical":true,"n":8,"q":"good","repeat":true,"t":"2026-11-22T12:00:00.001Z","v":2}
)");
}

TEST_F(PlainFormTest, TellsWhatTheStoreDropped)
{
    EXPECT_EQ(
        text(m_form.dropped(12, noon)),
        R"(fx/cabinet1/state r {"dropped":12,"state":"online","t":"2026-11-22T12:00:00.000Z"})"
        "\n");
}

TEST_F(PlainFormTest, ValuesOfAFormerRunDoNotLookGoodWhileTheLinkStarts)
{
    m_form.connected(noon);
    m_plant["press1"] = {};
    PlainForm later("fx", "cabinet1", m_plant);
    later.recall(m_form.memory());
    const std::string told = text(later.connected(noon));
    EXPECT_NE(told.find(R"(fx/cabinet1/press1/flow r {"q":"bad","t":"2026-11-22T12:00:00.000Z",)"
                        R"("v":null,"why":"the link is starting"})"),
              std::string::npos)
        << told;
}

TEST_F(PlainFormTest, ValuesOfTagsAndLinksThatAreGoneAreDeleted)
{
    m_form.connected(noon);
    m_plant["press1"].tags.removeFirst();
    EXPECT_NE(text(m_form.linkChanged("press1", noon)).find("fx/cabinet1/press1/flow r \n"),
              std::string::npos);
    EXPECT_EQ(m_form.linkChanged("press1", noon).size(), 1);  // once in a connection
    EXPECT_TRUE(m_form.confirmed());
    EXPECT_EQ(m_form.memory(), "press1/batch\npress1/count\npress1/pump\npress1/state");
    EXPECT_FALSE(m_form.confirmed());
    m_plant.clear();
    const std::string told = text(m_form.connected(noon));
    EXPECT_NE(told.find("fx/cabinet1/press1/state r \n"), std::string::npos) << told;
    EXPECT_NE(told.find("fx/cabinet1/press1/pump r \n"), std::string::npos) << told;
    m_form.confirmed();
    EXPECT_EQ(m_form.memory(), "");
}

// A broker that stood still when a link was taken out of the configuration had its values for ever.
TEST_F(PlainFormTest, WhatIsGoneIsDeletedAgainUntilThatIsConfirmed)
{
    m_form.connected(noon);
    m_plant.clear();
    EXPECT_EQ(m_form.linkChanged("press1", noon).size(), 5);
    m_form.disconnected();
    PlainForm later("fx", "cabinet1", m_plant);
    later.recall(m_form.memory());
    EXPECT_EQ(later.connected(noon).size(), 1 + 5);
    later.confirmed();
    later.disconnected();
    EXPECT_EQ(later.connected(noon).size(), 1);
}

TEST_F(PlainFormTest, ValueThatCameBackIsDeletedAgain)
{
    const Plant plant = m_plant;
    m_form.connected(noon);
    m_plant.clear();
    m_form.linkChanged("press1", noon);
    m_plant = plant;
    m_form.linkChanged("press1", noon);
    m_plant.clear();
    EXPECT_EQ(m_form.linkChanged("press1", noon).size(), 5);
}

TEST_F(PlainFormTest, ValueThatWasDeletedIsToldAgain)
{
    const LinkView view = m_plant["press1"];
    m_form.connected(noon);
    m_plant["press1"].tags.removeFirst();
    m_form.linkChanged("press1", noon);
    m_plant["press1"] = view;
    EXPECT_EQ(m_form.values({change("flow", 12.5, noon - 3)}, noon).size(), 1);
}

TEST_F(PlainFormTest, SendsWhatIsConfigured)
{
    EXPECT_EQ(m_form.sending("press1", "flow"), Form::Sending::Now);
    EXPECT_EQ(m_form.sending("press2", "flow"), Form::Sending::Never);
}

TEST_F(PlainFormTest, TagCannotTakeTheTopicOfItsLinksState)
{
    EXPECT_EQ(m_form.sending("press1", "state"), Form::Sending::Never);
    EXPECT_TRUE(m_form.values({change("state", 1, noon)}, noon).isEmpty());
}

TEST_F(PlainFormTest, WriteIsAValueOrAnObject)
{
    EXPECT_EQ(m_form.subscriptions(), QStringList("fx/cabinet1/+/+/set"));
    EXPECT_EQ(setTopic("5"), "press1 count 5 id= t=-1");
    EXPECT_EQ(setTopic("true"), "press1 count true id= t=-1");
    EXPECT_EQ(setTopic("\"abc\""), "press1 count abc id= t=-1");
    EXPECT_EQ(setTopic(R"({"v":5,"id":"a","t":"2026-11-22T12:00:00.123Z"})"),
              "press1 count 5 id=a t=1795348800123");
    EXPECT_EQ(setTopic(R"({"v":5,"id":17,"t":1795348800123})"),
              "press1 count 5 id=17 t=1795348800123");
}

TEST_F(PlainFormTest, WriteThatCannotBeReadIsRefusedWithAReply)
{
    const std::string refused =
        R"(fx/cabinet1/press1/count/set/reply {"id":"","new":null,"old":null,)"
        R"("outcome":"refused","reason":")";
    for (const char* payload :
         {"{", "5,6", "nothing", "[5]", "null", R"({"v":null})", "{}", "1e999", "\xff\xfe",
          R"({"v":5,"t":"yesterday"})", R"({"v":5,"t":-1})", R"({"v":{"v":5}})"})
        EXPECT_EQ(setTopic(payload).substr(0, refused.size()), refused) << payload;
    EXPECT_NE(setTopic('"' + QByteArray(4096, 'a') + '"').find("longer than 4096"),
              std::string::npos);
    EXPECT_NE(
        setTopic("{\"v\":5,\"id\":\"" + QByteArray(129, 'a') + "\"}").find("its id is longer"),
        std::string::npos);
}

TEST_F(PlainFormTest, OnlyWritesAreRead)
{
    for (const char* topic : {"press1/count", "press1/set", "press1/count/set/reply", "a/b/c/set"})
        EXPECT_EQ(setTopic("5", topic), "") << topic;
    EXPECT_EQ(setTopic(""), "");  // a retained one that was deleted
    EXPECT_TRUE(m_form.received({"fx/cabinet2/press1/count/set", "5"}, noon).writes.isEmpty());
}

TEST_F(PlainFormTest, RetainedWriteIsMarked)
{
    const Received received = m_form.received({"fx/cabinet1/press1/count/set", "5", 1, true}, noon);
    ASSERT_EQ(received.writes.size(), 1);
    EXPECT_TRUE(received.writes[0].isRetained);
}

TEST_F(PlainFormTest, ReplyTellsOldAndNew)
{
    WriteRequest request;
    request.link = "press1";
    request.tag = "count";
    request.id = "17";
    EXPECT_EQ(
        text(m_form.reply(request, {WriteResult::Outcome::Done, 70, 72.5, {}, noon})),
        R"(fx/cabinet1/press1/count/set/reply {"id":"17","new":72.5,"old":70,"outcome":"done",)"
        R"("t":"2026-11-22T12:00:00.000Z"})"
        "\n");
    EXPECT_NE(text(m_form.reply(request, {WriteResult::Outcome::Failed, 70, 70, "NAK", noon}))
                  .find(R"("outcome":"failed","reason":"NAK")"),
              std::string::npos);
    EXPECT_NE(text(m_form.reply(request, {WriteResult::Outcome::Unknown, {}, {}, "silence", noon}))
                  .find(R"("outcome":"unknown","reason":"silence")"),
              std::string::npos);
}

TEST_F(PlainFormTest, ReplyAlsoGoesWhereItsSenderWantsIt)
{
    const auto replies = [this](const QString& topic) {
        Message message = {"fx/cabinet1/press1/count/set", "{"};
        message.responseTopic = topic;
        message.correlation = "c1";
        return m_form.received(message, noon).messages;
    };
    const Messages both = replies("replies/me");
    ASSERT_EQ(both.size(), 2);
    EXPECT_EQ(both[1].topic, "replies/me");
    EXPECT_EQ(both[1].correlation, "c1");
    EXPECT_EQ(both[1].payload, both[0].payload);
    // Not where others look for values, nor where nothing can be published.
    for (const char* topic : {"", "fx/cabinet1/press1/flow", "spBv1.0/a/NDEATH/b", "$SYS/a", "a/#",
                              "a/+", "fx/cabinet1/press1/count/set/reply"}) {
        ASSERT_EQ(replies(topic).size(), 1) << topic;
        EXPECT_EQ(replies(topic)[0].correlation, "c1");
    }
}

}  // namespace
