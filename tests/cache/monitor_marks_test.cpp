// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Marking elements as monitored: a bit in changeFlags for each bit, bit 0 of monitorFlags for a
// word or counter.

#include "cache/data_areas.h"
#include "tests/support/driver_fixture.h"

namespace {
class MonitorMarks : public DriverTest
{
protected:
    static std::string areas() { return textOf(driver.dataAreas); }
};

TEST_F(MonitorMarks, LongRunOfBitsMarksWholeAreas)
{
    mark("Y", 7, 18);
    EXPECT_EQ("1#Y0 1#Y8 1#Y16 1#Y24", areas());
    EXPECT_EQ(0x80, area("Y", 0).changeFlags);
    EXPECT_EQ(0xFF, area("Y", 8).changeFlags);
    EXPECT_EQ(0xFF, area("Y", 16).changeFlags);
    EXPECT_EQ(0x01, area("Y", 24).changeFlags);
}

TEST_F(MonitorMarks, CountersAreMarkedByPairsOfWords)
{
    mark("32CV", 200, 3);
    EXPECT_EQ("1#32CV200", areas());
    EXPECT_EQ(1, area("32CV", 200).monitorFlags);
    mark("32CV", 210, 4);
    EXPECT_EQ("1#32CV200 1#32CV210 1#32CV211", areas());
}

TEST_F(MonitorMarks, MarksAddUp)
{
    mark("M", 0, 1);
    mark("M", 7, 1);
    mark("M", 0, 1);
    EXPECT_EQ(0x81, area("M", 0).changeFlags);
}

TEST_F(MonitorMarks, StationsAreMarkedApart)
{
    mark("D", 0, 1, 2);
    EXPECT_EQ("2#D0", areas());
    mark("D", 0, 1, 0);
    EXPECT_EQ("2#D0 0#D0", areas());
}

TEST_F(MonitorMarks, MarkingKeepsValuesAndOtherFlags)
{
    mark("D", 0, 1);
    _DATA_& marked = area("D", 0);
    marked.valueBuffer0[0] = 5;
    marked.valueBuffer1[0] = 6;
    marked.bufferSelect = 1;
    marked.flag0 = 1;
    mark("D", 0, 1);
    EXPECT_EQ(5, area("D", 0).valueBuffer0[0]);
    EXPECT_EQ(6, area("D", 0).valueBuffer1[0]);
    EXPECT_EQ(1, area("D", 0).bufferSelect);
    EXPECT_EQ(1, area("D", 0).flag0);
}
}  // namespace
