// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Blocks of the plan: what one covers, how it lies to others, and the plan block by block.

#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/blocks.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

TEST(Blocks, OverlapAndContainByRegisterTypeAndStation)
{
    struct Row
    {
        const char* one;
        const char* other;
        bool overlap;
        bool isInside;
    };
    const Row rows[] = {
        {"D10:4", "D10:4", true, true},   {"D11:2", "D10:4", true, true},
        {"D10:4", "D11:2", true, false},  {"D8:3", "D10:4", true, false},
        {"D13:2", "D10:4", true, false},  {"D14", "D10:4", false, false},
        {"D9", "D10:4", false, false},    {"D8:2", "D10:4", false, false},
        {"2#D11", "D10:4", false, false}, {"2#D11", "2#D10:4", true, true},
        {"TV11", "D10:4", false, false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(overlap(range(row.one), range(row.other)), row.overlap) << row.one << row.other;
        EXPECT_EQ(isInside(range(row.one), range(row.other)), row.isInside) << row.one << row.other;
    }
}

TEST(Blocks, AreNamedFromTheirFirstToTheirLastRegister)
{
    EXPECT_EQ(fromToText(range("D100:32")), "D100 … D131");
    EXPECT_EQ(fromToText(range("2#X6:3")), "2#X6 … 2#X10");
    EXPECT_EQ(fromToText(range("D5")), "D5");
}

namespace {

std::string planText(const QVector<FRAME_PRO>& frames)
{
    QStringList all;
    for (const FRAME_PRO& frame : frames)
        all += blockRange(catalogue(), frame.variable).text();
    return all.join(' ').toStdString();
}

}  // namespace

TEST(Plans, AreShownBlockByBlock)
{
    Bench bench;
    EXPECT_EQ(planText(planOf(bench.session, {range("D10:70"), range("M5"), range("M20:3"),
                                              range("32CV200:17"), range("2#D5")})),
              "M0:24 D10:16 D26:16 D42:16 D58:16 D74:6 2#D5 32CV200:16 32CV216");
    EXPECT_FALSE(bench.loop.step());  // nothing of it is left
    EXPECT_EQ(planText(planOf(bench.session, {})), "");
    EXPECT_TRUE(bench.line.sent().isEmpty());
}

TEST(OneReply, BringsAWholeValueOrNone)
{
    const auto fits = [](const char* value, int wordsPerFrame) {
        try {
            requireOneReply(range(value), wordsPerFrame);
            return true;
        } catch (const Failure&) {
            return false;
        }
    };
    EXPECT_TRUE(fits("D7:32", 32));
    EXPECT_FALSE(fits("D7:33", 32));
    EXPECT_FALSE(fits("D7:33", 64)) << "another PLC may take less";
    EXPECT_TRUE(fits("D7:16", 16));
    EXPECT_FALSE(fits("D7:17", 16));
    EXPECT_TRUE(fits("M16:256", 32));
    EXPECT_FALSE(fits("M16:257", 32)) << "bits come in whole bytes";
    EXPECT_FALSE(fits("M17:256", 32));
}
