// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A poller that is told in every cycle what is read next: the rest keeps its values, its problems
// and its place in the plan.

#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/poller.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

class InTurns : public testing::Test
{
protected:
    Poller& start()
    {
        const Turns turns = {[this] { return next.isEmpty() ? next : QVector{next.takeFirst()}; },
                             [this](const auto& unreadable) { leftOut = unreadable; }};
        return poller.emplace(bench.loop, catalogue(), ranges, Planner(), turns);
    }

    // The registers that were asked for since the last call.
    std::string asked()
    {
        QByteArrayList frames;
        for (const QByteArray& frame : bench.line.framesSent())
            frames += frame.mid(2, 6);
        bench.line.forgetSent();
        return frames.join(' ').toStdString();
    }

    Bench bench{badLine(0, ""), SessionSettings{2, 32}};
    QVector<RegisterRange> ranges = {range("D0:4"), range("D100:4")};
    QVector<RegisterRange> next;
    QVector<RegisterRange> leftOut = ranges;
    std::optional<Poller> poller;
};

}  // namespace

TEST_F(InTurns, ReadsEverythingOnceAndThenWhatIsNext)
{
    start();
    EXPECT_EQ(poller->poll(), RoundEnd::Done);
    EXPECT_EQ(asked(), "100008 10C808");
    EXPECT_TRUE(leftOut.isEmpty());
    next = {range("D100:2"), range("D0")};
    poller->poll();
    poller->poll();
    EXPECT_EQ(asked(), "10C804 100002");
    EXPECT_EQ(poller->poll(), RoundEnd::Done);
    EXPECT_EQ(asked(), "");
}

TEST_F(InTurns, KeepsWhatIsNotRead)
{
    start().poll();
    bench.setD(0, 7);
    bench.setD(100, 8);
    next = {range("D100")};
    const QVector<quint32> before = poller->values(range("D0"));
    poller->poll();
    EXPECT_EQ(poller->values(range("D0")), before);
    EXPECT_EQ(poller->values(range("D100"))[0], 8U);
}

TEST_F(InTurns, KeepsAProblemUntilTheNextTurnOfItsRegister)
{
    start().poll();
    bench.line.setFaults("silence@1,silence@2");
    next = {range("D0:4"), range("D100:4"), range("D0:4")};
    poller->poll();
    EXPECT_TRUE(poller->problemOf(range("D0"), 0));
    EXPECT_FALSE(poller->problemOf(range("D100"), 0));
    poller->poll();
    EXPECT_TRUE(poller->problemOf(range("D0"), 0));
    poller->poll();
    EXPECT_FALSE(poller->problemOf(range("D0"), 0));
}

TEST_F(InTurns, LeavesOutWhatThePlcRefuses)
{
    start().poll();
    bench.refuseD(101, 101);
    next = {range("D100:4"), range("D0")};
    poller->poll();
    ASSERT_EQ(leftOut.size(), 1);
    EXPECT_EQ(leftOut[0].text().toStdString(), "D101");
    asked();
    poller->poll();
    EXPECT_EQ(asked(), "100002");
    EXPECT_EQ(poller->problemOf(range("D100:4"), 1), ReplyVerdict::Refused);
    EXPECT_FALSE(poller->problemOf(range("D100:4"), 2));
}

TEST_F(InTurns, AsksAgainForWhatThePlcRefused)
{
    bench.refuseD(0, 103);
    start().poll();
    EXPECT_EQ(leftOut.size(), 8);
    bench.line.refuseNothing();
    bench.refuseD(3, 3);
    for (int cycle = 1; cycle < 50; ++cycle)
        poller->poll();
    ASSERT_EQ(leftOut.size(), 1);
    EXPECT_EQ(leftOut[0].text().toStdString(), "D3");
}

TEST_F(InTurns, GoesOnWithATurnThatEndedEarly)
{
    start().poll();
    asked();
    bench.line.setFaults("link-drop@1");
    next = {range("D0"), range("D100")};
    EXPECT_EQ(poller->poll(), RoundEnd::LinkLost);
    EXPECT_EQ(poller->problemOf(range("D100"), 0), ReplyVerdict::LinkLost);
    bench.line.open();
    EXPECT_EQ(poller->poll(), RoundEnd::Done);
    EXPECT_EQ(asked(), "100002 100002");
    EXPECT_FALSE(poller->problemOf(range("D100"), 0));
    poller->poll();
    EXPECT_EQ(asked(), "10C802");
}

TEST_F(InTurns, ReadsEverythingAgainIfThatEndedEarly)
{
    start();
    bench.line.setFaults("link-drop@1");
    next = {range("D0")};
    EXPECT_EQ(poller->poll(), RoundEnd::LinkLost);
    bench.line.open();
    asked();
    EXPECT_EQ(poller->poll(), RoundEnd::Done);
    EXPECT_EQ(asked(), "100008 10C808");
}

TEST_F(InTurns, TakesTheNextTurnAfterAnotherPlan)
{
    start().poll();
    next = {range("D0"), range("D100")};
    writeRegisters(bench.loop, range("D9"), {1});
    poller->planEverything();
    asked();
    poller->poll();
    poller->poll();
    EXPECT_EQ(asked(), "100002 10C802");
}

// What is not due would stand as 0 until it is.
TEST_F(InTurns, ReadsEverythingAgainAfterTheCacheWasEmptied)
{
    bench.setD(100, 8);
    bench.refuseD(3, 3);
    start().poll();
    next = {range("D0"), range("D100:4")};
    readBack(bench.loop, range("D9"));
    poller->readEverythingAgain();
    EXPECT_EQ(poller->poll(), RoundEnd::Done);
    EXPECT_EQ(poller->values(range("D100"))[0], 8U);
    EXPECT_EQ(poller->problemOf(range("D0:4"), 3), ReplyVerdict::Refused);
    ASSERT_EQ(leftOut.size(), 1);
    EXPECT_EQ(leftOut[0].text().toStdString(), "D3");
    asked();
    poller->poll();
    EXPECT_EQ(asked(), "100002");
}

TEST_F(InTurns, DoesNotGoOnWithATurnAfterAnotherPlan)
{
    start().poll();
    bench.line.setFaults("link-drop@1");
    next = {range("D0"), range("D100")};
    EXPECT_EQ(poller->poll(), RoundEnd::LinkLost);
    bench.line.open();
    writeRegisters(bench.loop, range("D9"), {1});
    poller->planEverything();
    asked();
    poller->poll();
    EXPECT_EQ(asked(), "10C802");
}
