// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How a round of exchanges ends, whatever else came of it.

#include "tests/tools/support/bench.h"
#include "tools/exchange/polling.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

// A loop whose user wants an end as soon as so many frames were sent.
ExchangeLoop interruptedAfter(int frames, Bench& bench)
{
    LoopSettings settings = bench.line.loopSettings();
    settings.isInterrupted = [&bench, frames] { return bench.line.sent().size() >= frames; };
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
    EXPECT_EQ(bench.line.sent().size(), 1);
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
    EXPECT_EQ(bench.line.sent().size(), 1);  // no ENQ behind it
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
