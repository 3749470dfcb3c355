// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Rounds of the exchange loop: what each says of its exchanges, and how it ends, whatever else came
// of it.

#include "tests/tools/support/virtual_line.h"
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

    Bench bench{badLine(0, ""), SessionSettings{2, 32}};
    int blocks = 0;
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
    int reconnects = 0;
    bench.loop.onLinkLost = [&] {
        ++reconnects;
        bench.line.open();
        return true;
    };
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

TEST_F(RoundsOfExchanges, OfAOneOffReadTakeEveryFrameOfItAndCountersByHalves)
{
    plan({"D0"});
    QVector<quint32> words;
    QVector<quint32> counters;
    for (quint32 index = 0; index < 100; ++index) {
        words += 100 + index;
        bench.setD(100 + static_cast<int>(index), words.last());
    }
    for (int index = 0; index < 56; ++index) {
        counters += 70000U + static_cast<quint32>(index);
        bench.line.memory().setValue(addressOf32CV200 + 4 * index, 4, counters.last());
    }
    EXPECT_EQ(readOnce(bench.loop, range("D100:100")), ReplyVerdict::Good);
    EXPECT_EQ(bench.session.values(range("D100:100")), words);
    EXPECT_EQ(bench.loop.statistics().of(ExchangeKind::ConditionalRead).sent, 4);
    EXPECT_EQ(readOnce(bench.loop, range("32CV200:56")), ReplyVerdict::Good);
    EXPECT_EQ(bench.session.values(range("32CV200:56")), counters);
    EXPECT_EQ(bench.loop.statistics().of(ExchangeKind::ConditionalRead).sent, 8);
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
        for (const char* const other : {"D600", "TV100"}) {
            plan({"D0"});
            bench.session.queueRead(range(other));
            bench.refuseD(100, 100);
            bench.line.setFaults(faults);
            bench.loop.step();
            EXPECT_EQ(readOnce(bench.loop, range("D100")), ReplyVerdict::Refused)
                << faults << other;
            bench.line.refuseNothing();
            EXPECT_EQ(readOnce(bench.loop, range("D100")), ReplyVerdict::Good) << faults << other;
        }
    }
}

namespace {

// A loop whose user wants an end as soon as so many frames were sent.
ExchangeLoop interruptedAfter(int frames, Bench& bench)
{
    LoopSettings settings = bench.line.loopSettings();
    settings.isInterrupted = [&bench, frames] { return bench.line.framesSent().size() >= frames; };
    return ExchangeLoop(bench.session, bench.line, settings);
}

}  // namespace

TEST(Rounds, EndWhenThePlanHadItsTurn)
{
    Bench bench;
    const Round round = pollCycle(bench.loop, bench.session.setPlan({range("D0:96")}));
    EXPECT_EQ(round.end, RoundEnd::Done);
    EXPECT_EQ(round.ended.size(), 3);
}

TEST(Rounds, EndWhenThereIsNothingToSend)
{
    Bench bench;
    EXPECT_EQ(flushWrites(bench.loop, 1).end, RoundEnd::NothingToSend);
}

TEST(Rounds, EndAtTheFirstSilenceOfAPlcThatHasNeverAnswered)
{
    Bench bench(badLine(0, "silence=1"));
    const Round round = pollCycle(bench.loop, bench.session.setPlan({range("D0:96")}));
    EXPECT_EQ(round.end, RoundEnd::NoAnswer);
    EXPECT_EQ(round.ended.size(), 1);
}

TEST(Rounds, GoOnAfterTheSilenceOfAPlcThatHasAnswered)
{
    Bench bench(badLine(0, "silence@2"), SessionSettings{1, 32});
    const Round round = pollCycle(bench.loop, bench.session.setPlan({range("D0:96")}));
    EXPECT_EQ(round.end, RoundEnd::Done);
    EXPECT_EQ(round.ended.size(), 3);
    EXPECT_EQ(round.failed(), 1);
}

TEST(Rounds, EndWithTheLinkUnlessItComesBack)
{
    Bench bench(badLine(0, "link-drop@2"));
    const int blocks = bench.session.setPlan({range("D0:96")});
    const Round round = pollCycle(bench.loop, blocks);
    EXPECT_EQ(round.end, RoundEnd::LinkLost);
    EXPECT_EQ(round.ended.size(), 1);
    EXPECT_TRUE(round.inFlight.has_value());
    EXPECT_FALSE(round.allGood());
}

TEST(Rounds, AnInterruptEndsThemBeforeTheNextFrame)
{
    Bench bench;
    ExchangeLoop loop = interruptedAfter(1, bench);
    const Round round = pollCycle(loop, bench.session.setPlan({range("D0:96")}));
    EXPECT_EQ(round.end, RoundEnd::Interrupted);
    EXPECT_EQ(round.ended.size(), 1);
    EXPECT_EQ(bench.line.framesSent().size(), 1);
    EXPECT_FALSE(round.allGood());
}

TEST(Rounds, AnInterruptedExchangeIsNoSilence)
{
    Bench bench(badLine(0, "silence=1"));
    ExchangeLoop loop = interruptedAfter(1, bench);
    const Round round = pollCycle(loop, bench.session.setPlan({range("D0")}));
    EXPECT_EQ(round.end, RoundEnd::Interrupted);
    ASSERT_TRUE(round.inFlight.has_value());
    EXPECT_EQ(round.inFlight->verdict, ReplyVerdict::Interrupted);
    EXPECT_EQ(bench.line.sent().last().size(), 11);  // no ENQ behind it
}

TEST(Rounds, AnInterruptedWriteTellsWhatArrived)
{
    Bench bench;
    ExchangeLoop loop = interruptedAfter(1, bench);
    const WriteOutcome outcome = writeRegisters(loop, range("D0:96"), QVector<quint32>(96, 7));
    EXPECT_EQ(outcome.problem, ReplyVerdict::Interrupted);
    ASSERT_EQ(outcome.acknowledged.size(), 1);
    EXPECT_EQ(outcome.acknowledged.first().text(), "D0:32");
    EXPECT_TRUE(outcome.uncertain.isEmpty());
}

TEST(Rounds, AnInterruptedReadIsNotGood)
{
    Bench bench;
    ExchangeLoop loop = interruptedAfter(1, bench);
    bench.session.setPlan({range("D0")});
    EXPECT_EQ(readOnce(loop, range("D100:64")), ReplyVerdict::Interrupted);
}

TEST(RecipeOutcomes, AreGoodWithEveryEntryAndWithoutAProblem)
{
    RecipeOutcome outcome;
    outcome.entries = 2;
    outcome.transferred = 1;
    EXPECT_FALSE(outcome.isGood());
    outcome.transferred = 2;
    EXPECT_TRUE(outcome.isGood());
    outcome.problem = ReplyVerdict::Interrupted;
    EXPECT_FALSE(outcome.isGood());
}
