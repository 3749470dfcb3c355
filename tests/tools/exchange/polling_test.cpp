// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Rounds of the exchange loop: what each says of its exchanges; round_test.cpp sees how they end.

#include "tests/tools/support/bench.h"
#include "tools/exchange/polling.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

// "cyclic read good, write silence" of the exchanges that have ended.
std::string textOf(const Round& round)
{
    QStringList all;
    for (const Exchange& exchange : round.ended)
        all += kindText(exchange.kind) + ' ' + verdictName(exchange.verdict);
    return all.join(", ").toStdString();
}

class RoundsOfExchanges : public testing::Test
{
protected:
    void plan(std::initializer_list<const char*> addresses)
    {
        QVector<RegisterRange> ranges;
        for (const char* const address : addresses)
            ranges.append(range(address));
        blocks = bench.session.setPlan(ranges);
    }

    void letTheLinkComeBack()
    {
        bench.loop.onLinkLost = [this] {
            ++reconnects;
            bench.line.open();
            return true;
        };
    }

    Bench bench{badLine(0, ""), SessionSettings{2, 32}};
    int blocks = 0;
    int reconnects = 0;
};

}  // namespace

TEST_F(RoundsOfExchanges, OfAPollDoNotCountWritesAndRepeats)
{
    plan({"D0:64"});
    bench.session.write(range("D500:2"), {1, 2});
    bench.line.setFaults("wrong-sum@2+4-5");
    const Round round = pollCycle(bench.loop, blocks);
    EXPECT_EQ(textOf(round), "write good, cyclic read good, cyclic read wrong-sum");
    EXPECT_FALSE(round.allGood());
    EXPECT_EQ(round.failed(), 1);
}

TEST_F(RoundsOfExchanges, OfWritesEndWithTheLastOfThem)
{
    plan({"D0:64"});
    bench.session.write(range("D500:96"), QVector<quint32>(96, 7));
    bench.line.setFaults("nak@2-3");
    const Round round = flushWrites(bench.loop, 3);
    EXPECT_EQ(textOf(round), "write good, write refused, write good");
    EXPECT_EQ(round.failed(), 1);
}

TEST_F(RoundsOfExchanges, GoOnWhenTheLinkComesBack)
{
    plan({"D0:64"});
    letTheLinkComeBack();
    bench.line.setFaults("link-drop@2");
    const Round round = pollCycle(bench.loop, blocks);
    EXPECT_EQ(textOf(round), "cyclic read good, cyclic read good");
    EXPECT_TRUE(round.allGood());
    EXPECT_FALSE(round.inFlight);
    EXPECT_EQ(reconnects, 1);
}

TEST_F(RoundsOfExchanges, TellWhichFrameIsNeitherGoodNorGivenUp)
{
    plan({"D0:64"});
    bench.line.setFaults("wrong-sum@2");
    const auto afterTwo = [](const Round& soFar) { return soFar.inFlight.has_value(); };
    const Round round = runUntil(bench.loop, afterTwo);
    EXPECT_EQ(textOf(round), "cyclic read good");
    ASSERT_TRUE(round.inFlight);
    EXPECT_EQ(round.inFlight->verdict, ReplyVerdict::WrongSum);
    EXPECT_EQ(textOf(pollCycle(bench.loop, 1)), "cyclic read good");
}

TEST_F(RoundsOfExchanges, OfAOneOffReadTakeEveryFrameOfIt)
{
    plan({"D0"});
    for (int number = 100; number < 200; ++number)
        bench.setD(number, static_cast<quint32>(number));
    EXPECT_EQ(readOnce(bench.loop, range("D100:100")), ReplyVerdict::Good);
    const QVector<quint32> values = bench.session.values(range("D100:100"));
    for (int index = 0; index < 100; ++index)
        EXPECT_EQ(values[index], static_cast<quint32>(100 + index));
    EXPECT_EQ(bench.loop.statistics().of(ExchangeKind::ConditionalRead).sent, 4);
}

TEST_F(RoundsOfExchanges, OfAOneOffReadTakeCountersByHalves)
{
    plan({"D0"});
    QVector<quint32> written;
    for (int index = 0; index < 56; ++index) {
        written += 70000U + static_cast<quint32>(index);
        bench.line.memory().setValue(addressOf32CV200 + 4 * index, 4, written.last());
    }
    EXPECT_EQ(readOnce(bench.loop, range("32CV200:56")), ReplyVerdict::Good);
    EXPECT_EQ(bench.session.values(range("32CV200:56")), written);
    EXPECT_EQ(bench.loop.statistics().of(ExchangeKind::ConditionalRead).sent, 4);
}

TEST_F(RoundsOfExchanges, OfAOneOffReadTakeBitsByBytes)
{
    plan({"D0"});
    bench.line.memory().setByte(addressOfM0 + 1, 0x80);
    bench.line.memory().setByte(addressOfM0 + 2, 0x05);
    EXPECT_EQ(readOnce(bench.loop, range("M14:6")), ReplyVerdict::Good);
    EXPECT_EQ(bench.session.values(range("M14:6")), QVector<quint32>({0, 1, 1, 0, 1, 0}));
}

TEST_F(RoundsOfExchanges, OfAOneOffReadEndWithTheFirstThatFails)
{
    plan({"D0"});
    bench.refuseD(140, 140);
    EXPECT_EQ(readOnce(bench.loop, range("D100:100")), ReplyVerdict::Refused);
    EXPECT_EQ(bench.loop.statistics().of(ExchangeKind::ConditionalRead).accepted, 1);
    EXPECT_EQ(bench.loop.statistics().of(ExchangeKind::ConditionalRead).failed, 1);
    bench.line.setFaults("silence=1");
    EXPECT_EQ(readOnce(bench.loop, range("D100")), ReplyVerdict::Silence);
    bench.line.setFaults("link-drop=1");
    EXPECT_EQ(readOnce(bench.loop, range("D100")), ReplyVerdict::LinkLost);
}

// A failure of the plan meanwhile is none of the read.
TEST_F(RoundsOfExchanges, OfAOneOffReadDoNotMindTheirNeighbours)
{
    plan({"D0"});
    pollCycle(bench.loop, 1);
    bench.session.write(range("D500:3"), {1, 2, 3});
    bench.session.queueRead(range("D600"));
    bench.line.setFaults("nak@1-2");
    EXPECT_EQ(readOnce(bench.loop, range("D100")), ReplyVerdict::Good);
}

// Nor another one-off read that somebody left in flight, whose failure drops all that wait.
TEST_F(RoundsOfExchanges, OfAOneOffReadDoNotMindOneThatIsInFlight)
{
    for (const char* const faults : {"wrong-sum@1", "wrong-sum@1-2"}) {
        plan({"D0"});
        bench.session.queueRead(range("D600"));
        bench.refuseD(100, 100);
        bench.line.setFaults(faults);
        bench.loop.step();
        EXPECT_EQ(readOnce(bench.loop, range("D100")), ReplyVerdict::Refused) << faults;
        bench.line.refuseNothing();
        EXPECT_EQ(readOnce(bench.loop, range("D100")), ReplyVerdict::Good) << faults;
    }
}
