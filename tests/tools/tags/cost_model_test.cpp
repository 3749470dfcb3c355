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
