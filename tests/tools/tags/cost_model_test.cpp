// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/cost_model.h"

#include <gtest/gtest.h>

using namespace fxtools;

TEST(CostModel, CountsTheCharactersOfRequestAndReply)
{
    EXPECT_EQ(exchangeCharacters(0), 11 + 4);
    EXPECT_EQ(exchangeCharacters(2), 11 + 4 + 2 * 2);
    EXPECT_EQ(exchangeCharacters(64), 11 + 4 + 2 * 64);
}

// 15 + 4 characters of ten bits take 190 bit times.
TEST(CostModel, AddsTheTurnaroundToTheTimeOfTheCharacters)
{
    EXPECT_DOUBLE_EQ(milliseconds(exchangeCost({20000, 9600}, 2), {20000, 9600}),
                     20 + 1000.0 * 190 / 9600);
    EXPECT_DOUBLE_EQ(milliseconds(exchangeCost({0, 115200}, 64), {0, 115200}),
                     1000.0 * 1430 / 115200);
    EXPECT_DOUBLE_EQ(milliseconds(exchangeCost({1, 38400}, 0), {1, 38400}),
                     0.001 + 1000.0 * 150 / 38400);
}

TEST(CostModel, TakesTheTurnaroundForWhatTheCharactersLeave)
{
    const auto measured = [](const LineUse& use) {
        const LineCost line = measuredLine(use, 9600, std::nullopt);
        return std::pair(line.turnaroundUs, line.baud);
    };
    const int network = 1000000000;
    EXPECT_EQ(measured({0, 0, 0}), std::pair(LineCost().turnaroundUs, 9600));
    EXPECT_EQ(measured({10, 960, 1500000}), std::pair(qint64(50000), 9600));
    EXPECT_EQ(measured({1, 960000, 1000005000}), std::pair(qint64(5000), 9600));
    EXPECT_EQ(measured({10, 960, 999999}), std::pair(qint64(0), 9600));
    EXPECT_EQ(measured({10, 960, 500000}), std::pair(qint64(0), 9600)) << "half the time";
    EXPECT_EQ(measured({10, 960, 499999}), std::pair(qint64(49999), network));
    EXPECT_EQ(measured({10, 960, 50}), std::pair(qint64(10), network)) << "never nothing";
    EXPECT_EQ(measuredLine({10, 960, 50}, 9600, 7).turnaroundUs, 7) << "as the user says";
}
