// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/support/loaded_driver.h"
#include "tools/tags/shortest_plan.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr LineCost line9600 = {20000, 9600};

QVector<RegisterRange> ranges(std::initializer_list<const char*> addresses)
{
    QVector<RegisterRange> all;
    for (const char* const address : addresses)
        all.append(range(address));
    return all;
}

// "D0:3 D40:2"
std::string text(const QVector<PlannedBlock>& plan)
{
    QStringList blocks;
    for (const PlannedBlock& block : plan)
        blocks += block.registers.text();
    return blocks.join(' ').toStdString();
}

std::string planned(std::initializer_list<const char*> addresses, int words = 32,
                    const LineCost& line = line9600)
{
    return text(shortestPlan(ranges(addresses), words, line));
}

}  // namespace

// A second exchange costs 20 ms and 15 characters, as much as 8.55 words.
TEST(ShortestPlan, ReadsOverAGapThatCostsLessThanAnExchange)
{
    EXPECT_EQ(planned({"D0", "D9"}), "D0:10");
    EXPECT_EQ(planned({"D0", "D10"}), "D0 D10");
    EXPECT_EQ(planned({"D0", "D4"}, 32, {0, 9600}), "D0:5");
    EXPECT_EQ(planned({"D0", "D5"}, 32, {0, 9600}), "D0 D5");
    EXPECT_EQ(planned({"D0", "D31"}, 32, {20000, 115200}), "D0:32");
}

// A gap of five words costs 20 characters; so do 15 of another exchange and 5 ms at 10,000 baud.
TEST(ShortestPlan, TakesFewerBlocksWhereBothCostTheSame)
{
    EXPECT_EQ(planned({"D0", "D6"}, 32, {5000, 10000}), "D0:7");
    EXPECT_EQ(planned({"D0", "D6"}, 32, {4999, 10000}), "D0 D6");
}

TEST(ShortestPlan, FillsFramesOfNeighbours)
{
    EXPECT_EQ(planned({"D0:70"}), "D0:32 D32:32 D64:6");
    EXPECT_EQ(planned({"D0:5"}, 2), "D0:2 D2:2 D4");
    EXPECT_EQ(planned({"M0:600"}), "M0:256 M256:256 M512:88");
    EXPECT_EQ(planned({"32CV200:20"}), "32CV200:16 32CV216:4");
}

TEST(ShortestPlan, NeverReadsMoreThan64BytesAtOnce)
{
    EXPECT_EQ(planned({"D0:40"}, 253), "D0:32 D32:8");
    EXPECT_EQ(planned({"M0:600"}, 253), "M0:512 M512:88");
    EXPECT_EQ(planned({"32CV200:20"}, 253), "32CV200:16 32CV216:4");
}

TEST(ShortestPlan, TakesCountersForTwoWords)
{
    EXPECT_EQ(planned({"32CV200:5"}, 4), "32CV200:2 32CV202:2 32CV204");
    EXPECT_EQ(planned({"32CV200:2"}, 2), "32CV200 32CV201");
    EXPECT_EQ(shortestPlan(ranges({"32CV200:5"}), 32, line9600).first().bytes(), 20);
}

TEST(ShortestPlan, ReadsWholeBytesOfBits)
{
    EXPECT_EQ(planned({"M5"}), "M0:8");
    EXPECT_EQ(planned({"M7:2"}), "M0:16");
    EXPECT_EQ(planned({"X17"}), "X10:8");
    EXPECT_EQ(shortestPlan(ranges({"M7:2"}), 32, line9600).first().characters(), 15 + 2 * 2);
}

TEST(ShortestPlan, KeepsTypesAndStationsApart)
{
    EXPECT_EQ(planned({"D0", "M0", "D1", "TV1", "2#D2"}), "D0:2 M0:8 TV1 2#D2");
    EXPECT_EQ(planned({}), "");
}

TEST(ShortestPlan, TakesEachRegisterOnce)
{
    EXPECT_EQ(planned({"D3:4", "D0:10", "D9", "D5:9"}), "D0:14");
    EXPECT_EQ(planned({"M3", "M3:2", "M7"}), "M0:8");
}

// A cut after 32 words would tear the value of D31 and D32.
TEST(ShortestPlan, TearsNoValueOfSeveralWords)
{
    RegisterRange pairs = range("D1:40");
    pairs.together = 2;
    EXPECT_EQ(text(shortestPlan({range("D0"), pairs}, 32, line9600)), "D0:31 D31:10");
    RegisterRange texts = range("D100:60");
    texts.together = 20;
    EXPECT_EQ(text(shortestPlan({texts}, 32, line9600)), "D100:20 D120:20 D140:20");
    RegisterRange groups = range("M4:64");
    groups.together = 16;
    EXPECT_EQ(text(shortestPlan({groups}, 4, line9600)), "M0:24 M16:24 M32:24 M48:24");
}

TEST(ShortestPlan, KeepsAValueWholeThatHoldsAnother)
{
    const QVector<Span> blocks = shortestCover({{0, 3}, {1, 2}, {1, 1}}, {1, 1, 4});
    ASSERT_EQ(blocks.size(), 1);
    EXPECT_EQ(blocks[0].last, 3);
}

TEST(ShortestPlan, CutsAValueThatNoFrameHolds)
{
    RegisterRange longText = range("D0:40");
    longText.together = 40;
    EXPECT_EQ(text(shortestPlan({longText}, 32, line9600)), "D0:32 D32:8");
}

TEST(ShortestPlan, SaysWhatIsDueInEachBlock)
{
    const QVector<PlannedBlock> plan = shortestPlan(ranges({"D30:4", "D0", "D5:2"}), 32, line9600);
    ASSERT_EQ(text(plan), "D0:7 D30:4");
    ASSERT_EQ(plan[0].due.size(), 2);
    EXPECT_EQ(plan[0].due[0].text(), "D0");
    EXPECT_EQ(plan[0].due[1].text(), "D5:2");
    ASSERT_EQ(plan[1].due.size(), 1);
    EXPECT_EQ(plan[1].due[0].text(), "D30:4");
}
