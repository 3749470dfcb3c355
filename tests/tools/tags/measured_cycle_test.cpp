// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a cycle takes on a line with the timing of a real one, against what its plan predicts. The
// time is simulated: what the host adds to it, it adds by waiting.

#include "tests/tools/support/virtual_line.h"
#include "tools/tags/shortest_plan.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

struct MeasuredLine
{
    int baud;
    int turnaroundMs;
};

const QVector<RegisterRange> dueRanges = {range("D0:40"),   range("D55"),   range("D80:3"),
                                          range("D300:30"), range("M0:64"), range("32CV200:5"),
                                          range("D900"),    range("D930")};

class MeasuredCycle : public testing::TestWithParam<MeasuredLine>
{};

fxsim::Settings settingsOf(const MeasuredLine& line)
{
    return badLine(line.baud, line.turnaroundMs > 0 ? "delay:20=100%" : "");
}

}  // namespace

TEST_P(MeasuredCycle, IsWithinTwoPercentOfThePredictedOne)
{
    const MeasuredLine& line = GetParam();
    Bench bench(settingsOf(line));
    PlanCycle plan(bench.loop, shortestPlanner(bench.loop, line.baud, std::nullopt));
    plan.plan(dueRanges);
    for (int cycle = 0; cycle < 3; ++cycle)
        ASSERT_TRUE(plan.poll().allGood());
    const LineCost cost = {qint64(1000) * line.turnaroundMs, line.baud};
    const double predictedMs = milliseconds(costOf(shortestPlan(dueRanges, 32, cost), cost), cost);
    const qint64 startedUs = bench.line.nowUs();
    ASSERT_TRUE(plan.poll().allGood());
    const auto tookUs = static_cast<double>(bench.line.nowUs() - startedUs);
    EXPECT_NEAR(tookUs / 1000 / predictedMs, 1, 0.02);
}

INSTANTIATE_TEST_SUITE_P(Lines, MeasuredCycle,
                         testing::Values(MeasuredLine{9600, 0}, MeasuredLine{9600, 20},
                                         MeasuredLine{19200, 0}, MeasuredLine{19200, 20},
                                         MeasuredLine{38400, 0}, MeasuredLine{38400, 20},
                                         MeasuredLine{115200, 0}, MeasuredLine{115200, 20}),
                         [](const auto& row) {
                             return std::to_string(row.param.baud) + "Baud" +
                                    std::to_string(row.param.turnaroundMs) + "Ms";
                         });

TEST(MeasuredLine, IsAUsualOneBeforeTheFirstExchange)
{
    EXPECT_EQ(measuredLine({}, 19200).turnaroundUs, 20000);
    EXPECT_EQ(measuredLine({}, 19200).baud, 19200);
}

// 143 characters take 148.958 ms at 9600 baud.
TEST(MeasuredLine, TakesForTheTurnaroundWhatTheCharactersLeave)
{
    const LineUse use = {4, 4 * 143, qint64(4) * (148958 + 12345) + 3};
    EXPECT_EQ(measuredLine(use, 9600).turnaroundUs, 12345);
}

// A connection over a network that says nothing of its speed.
TEST(MeasuredLine, CountsExchangesAloneWhereCharactersCostLess)
{
    const LineCost line = measuredLine({1, 143, 300}, 9600);
    EXPECT_EQ(shortestPlan({range("D0"), range("D31")}, 32, line).size(), 1);
    EXPECT_EQ(exchangeCost(line, 64) / line.baud, 301);
}

// Words 8 apart: cheaper apart where the PLC answers at once, together where it takes its time.
TEST(MeasuredLine, DecidesWhatIsReadTogether)
{
    for (const MeasuredLine& line : {MeasuredLine{9600, 0}, MeasuredLine{9600, 20}}) {
        Bench bench(settingsOf(line));
        PlanCycle plan(bench.loop, shortestPlanner(bench.loop, line.baud, std::nullopt));
        plan.plan({range("D0"), range("D8")});
        EXPECT_EQ(plan.blocks(), 1);
        plan.poll();
        plan.poll();
        EXPECT_EQ(plan.blocks(), line.turnaroundMs > 0 ? 1 : 2);
    }
}

TEST(MeasuredLine, GivesWayToAGivenTurnaround)
{
    Bench bench;
    PlanCycle plan(bench.loop, shortestPlanner(bench.loop, 9600, 0));
    plan.plan({range("D0"), range("D8")});
    EXPECT_EQ(plan.blocks(), 2);
}
