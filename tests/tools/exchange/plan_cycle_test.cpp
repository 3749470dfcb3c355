// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Blocks that a planner has cut, each merged alone when its turn comes: every one is read once a
// cycle, in its turn, and the driver reports changes as it does in its own plan.

#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/poller.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

const QVector<RegisterRange> threeRanges = {range("D0:2"), range("D4:2"), range("M0:8")};

// The registers of the read frames, from one of them on.
std::string framesFrom(int first, const QByteArrayList& sent)
{
    QByteArrayList frames;
    for (const QByteArray& frame : sent.mid(first))
        frames += frame.mid(2, 6);
    return frames.join(' ').toStdString();
}

}  // namespace

TEST(PlanCycle, ReadsEachBlockOfThePlannerOnce)
{
    Bench bench;
    PlanCycle plan(bench.loop, apart);
    plan.plan(threeRanges);
    EXPECT_EQ(plan.blocks(), 3);
    EXPECT_TRUE(plan.poll().allGood());
    EXPECT_EQ(plan.poll().ended.size(), 3);
    EXPECT_EQ(framesFrom(0, bench.line.framesSent()), "100004 100804 010001 100004 100804 010001");
}

TEST(PlanCycle, TakesTwoBlocksInTurn)
{
    Bench bench;
    PlanCycle plan(bench.loop, apart);
    plan.plan({range("D0:2"), range("M0:8")});
    EXPECT_EQ(plan.blocks(), 2);
    plan.poll();
    plan.poll();
    EXPECT_EQ(framesFrom(0, bench.line.framesSent()), "100004 010001 100004 010001");
}

TEST(PlanCycle, LeavesThePlanToTheDriverWithoutAPlanner)
{
    Bench bench;
    PlanCycle plan(bench.loop);
    plan.plan(threeRanges);
    EXPECT_EQ(plan.blocks(), 2);
    EXPECT_TRUE(plan.poll().allGood());
    EXPECT_EQ(framesFrom(0, bench.line.framesSent()), "010001 10000C");
}

TEST(PlanCycle, ReadsNothingWhereNothingIsDue)
{
    Bench bench;
    PlanCycle plan(bench.loop, apart);
    plan.plan({});
    EXPECT_EQ(plan.blocks(), 0);
    EXPECT_EQ(plan.poll().end, RoundEnd::Done);
    EXPECT_TRUE(bench.line.sent().isEmpty());
}

// The merge of one block takes the marks of the others away, until their turn comes again.
TEST(PlanCycle, ReportsTheChangesOfEveryBlock)
{
    Bench bench;
    QStringList changed;
    bench.session.onValueChanged = [&changed](const QString& type, int, int number) {
        changed += type + QString::number(number);
    };
    PlanCycle plan(bench.loop, apart);
    plan.plan(threeRanges);
    plan.poll();
    changed.clear();
    bench.setD(1, 77);
    bench.setD(2, 78);  // not asked for
    bench.setD(4, 79);
    plan.poll();
    EXPECT_EQ(changed.join(' ').toStdString(), "D1 D4");
    EXPECT_EQ(bench.session.values(range("D0:2"))[1], 77U);
    changed.clear();
    plan.poll();
    EXPECT_TRUE(changed.isEmpty());
}

// A block that failed keeps its last values, whatever is merged after it.
TEST(PlanCycle, KeepsTheValuesOfABlockThatFailed)
{
    Bench bench;
    PlanCycle plan(bench.loop, apart);
    plan.plan(threeRanges);
    plan.poll();
    const QVector<quint32> before = bench.session.values(range("D4:2"));
    bench.setD(4, before[0] + 1);
    bench.refuseD(4, 4);
    EXPECT_EQ(plan.poll().failed(), 1);
    EXPECT_EQ(bench.session.values(range("D4:2")), before);
    bench.line.refuseNothing();
    EXPECT_TRUE(plan.poll().allGood());
    EXPECT_EQ(bench.session.values(range("D4:2"))[0], before[0] + 1);
}

TEST(PlanCycle, SendsAWriteBetweenItsBlocks)
{
    Bench bench;
    PlanCycle plan(bench.loop, apart);
    plan.plan(threeRanges);
    bench.session.write(range("D9"), {5});
    EXPECT_TRUE(plan.poll().allGood());
    EXPECT_EQ(bench.plcWord(addressOfD(9)), 5U);
}

// The frame in flight belongs to the block that was merged then: no other one counts as read for
// it.
TEST(PlanCycle, GoesOnWithTheBlockInFlight)
{
    Bench bench(badLine(0, "link-drop@2"));
    PlanCycle plan(bench.loop, apart);
    plan.plan(threeRanges);
    EXPECT_EQ(plan.poll().end, RoundEnd::LinkLost);
    bench.line.open();
    EXPECT_TRUE(plan.poll().allGood());
    EXPECT_EQ(framesFrom(0, bench.line.framesSent()), "100004 100804 100804 010001 100004");
}

TEST(PlanCycle, BeginsANewPlanWithItsFirstBlock)
{
    Bench bench(badLine(0, "link-drop@2"));
    PlanCycle plan(bench.loop, apart);
    plan.plan(threeRanges);
    plan.poll();
    bench.line.open();
    bench.loop.step();  // the frame in flight
    plan.plan(threeRanges);
    bench.line.forgetSent();
    EXPECT_TRUE(plan.poll().allGood());
    EXPECT_EQ(framesFrom(0, bench.line.framesSent()), "100004 100804 010001");
}

TEST(PlanCycle, AsksThePlannerAgainWhenItKnowsTheLine)
{
    Bench bench;
    int asked = 0;
    PlanCycle plan(bench.loop, [&asked](const QVector<RegisterRange>& due) {
        ++asked;
        return asked == 1 ? apart(due) : Blocks{due};
    });
    plan.plan(threeRanges);
    EXPECT_EQ(plan.poll().ended.size(), 3);
    EXPECT_EQ(plan.poll().ended.size(), 2);
    for (int cycle = 2; cycle < 50; ++cycle)
        plan.poll();
    EXPECT_EQ(asked, 2);
    plan.poll();
    EXPECT_EQ(asked, 3);
}

TEST(PlanCycle, LetsThePollerHalveARefusedBlock)
{
    Bench bench;
    bench.refuseD(1, 1);
    Poller poller(bench.loop, catalogue(), threeRanges, apart);
    EXPECT_EQ(poller.poll(), RoundEnd::Done);
    EXPECT_EQ(poller.problemOf(range("D0:2"), 1), ReplyVerdict::Refused);
    for (quint32 cycle = 0; cycle < 3; ++cycle) {
        bench.setD(0, 100U + cycle);
        bench.setD(5, 200U + cycle);
        poller.poll();
        EXPECT_EQ(poller.values(range("D0"))[0], 100U + cycle);
        EXPECT_EQ(poller.values(range("D5"))[0], 200U + cycle);
        EXPECT_FALSE(poller.problemOf(range("D0:2"), 0));
        EXPECT_FALSE(poller.problemOf(range("D4:2"), 1));
    }
}

// Half a value is none: the PLC refuses D3, so D2 is not read either.
TEST(PlanCycle, SetsAWholeValueAside)
{
    Bench bench;
    bench.refuseD(3, 3);
    RegisterRange pairs = range("D0:6");
    pairs.together = 2;
    Poller poller(bench.loop, catalogue(), {pairs});
    poller.poll();
    poller.poll();
    for (int index = 0; index < 6; ++index)
        EXPECT_EQ(poller.problemOf(pairs, index).has_value(), index == 2 || index == 3) << index;
}
