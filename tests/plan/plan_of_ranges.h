// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One row of a table of merges: the ranges that a host monitors, and the plan that they become.

#ifndef TESTS_PLAN_PLAN_OF_RANGES_H
#define TESTS_PLAN_PLAN_OF_RANGES_H

#include "tests/support/driver_fixture.h"

struct MonitoredRange
{
    const char* registerType;
    int start;
    int length;
};

struct PlanRow
{
    const char* name;
    int wordLimit;  // the bit limit is eight times as much
    std::vector<MonitoredRange> ranges;
    const char* plan;  // counts are words, counters or, of bit types, bytes
};

class PlanOfRanges : public DriverTest, public ::testing::WithParamInterface<PlanRow>
{
protected:
    void mergeAndCompare()
    {
        setUpDriver(("1#0#0#3#" + std::to_string(GetParam().wordLimit)).c_str());
        QList<KEY_ADDRESS> keys;
        for (const MonitoredRange& range : GetParam().ranges)
            keys << watch(range.registerType, range.start, range.length);
        const int entries = intf_addrMerge(keys);
        EXPECT_EQ(entries, driver.readList.size());
        EXPECT_EQ(GetParam().plan, textOf(driver.readList));
    }
};

#endif
