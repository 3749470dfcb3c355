// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which periods a line keeps, from what they cost.

#include "tools/tags/line_load.h"

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

struct Row
{
    const char* name;
    QVector<PeriodLoad> wanted;  // the period, and its cost
    double used;
    std::vector<qint64> expectedUs;  // the shortest period first
};

class LoadOfALine : public testing::TestWithParam<Row>
{};

// A twentieth is shared: two periods have 0.025 each, whatever the other one wants.
const Row rows[] = {
    {"OfNothing", {}, 0, {}},
    {"OfOnePeriod", {{1000, 250}}, 0.25, {1000}},
    {"OfPeriodsInAnyOrder", {{5000, 1000}, {1000, 250}}, 0.45, {1000, 5000}},
    {"OfAFullOne", {{1000, 500}, {2000, 1000}}, 1.0, {1000, 2000}},
    {"StretchesTheLongPeriod", {{2000, 1000}, {1000, 750}}, 1.25, {1000, 4000}},
    {"StretchesTheShortOneForTheShareOfTheLongOne",
     {{1000, 975}, {2000, 1000}},
     1.475,
     {1000, 40000}},
    {"LeavesALongPeriodThatNeedsLessThanItsShare",
     {{1000, 1980}, {10000, 100}},
     1.99,
     {2000, 10000}},
    {"GivesWhatIsLeftToWhatHasNoPeriod", {{0, 300}, {1000, 250}}, 0.25, {1000, 400}},
    {"GivesAShareToWhatHasNoPeriod", {{0, 100}, {1000, 3900}}, 3.9, {4000, 4000}},
};

}  // namespace

TEST_P(LoadOfALine, IsShared)
{
    const LineLoad load = loadOf(GetParam().wanted);
    EXPECT_NEAR(load.used, GetParam().used, 1e-9);
    std::vector<qint64> expectedUs;
    for (const PeriodLoad& period : load.periods) {
        expectedUs.push_back(period.expectedUs);
        EXPECT_GE(period.expectedUs, period.wantedUs);
    }
    EXPECT_EQ(expectedUs, GetParam().expectedUs);
}

INSTANTIATE_TEST_SUITE_P(Of, LoadOfALine, testing::ValuesIn(rows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PeriodLoad, IsLateByMoreThanAHundredth)
{
    const auto isLate = [](qint64 wantedUs, qint64 expectedUs) {
        return PeriodLoad{wantedUs, 0, {}, expectedUs}.isLate();
    };
    EXPECT_FALSE(isLate(20000, 20200));
    EXPECT_TRUE(isLate(20000, 20201));
    EXPECT_FALSE(isLate(0, 20201));
}
