// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The polling plan as a whole: what a call replaces and returns, which keys reach the plan, its
// order, and the marks that it sets in the cache.

#include "tests/support/driver_fixture.h"

namespace {
class AddressMerge : public DriverTest
{
protected:
    AddressMerge() { setUpDriver(); }

    std::string planOf(QList<KEY_ADDRESS> keys)
    {
        const int entries = intf_addrMerge(keys);
        EXPECT_EQ(entries, driver.readList.size());
        return textOf(driver.readList);
    }
};

TEST_F(AddressMerge, WorkedExample)
{
    EXPECT_EQ("1#M0/3 1#D10/32 1#D42/32 1#D74/6 1#D100/25 1#D140/5",
              planOf({watch("D", 100, 10), watch("D", 105, 20), watch("D", 140, 5),
                      watch("D", 10, 70), watch("M", 5, 1), watch("M", 20, 3)}));
}

TEST_F(AddressMerge, EntriesAreTaggedFourAndCarryZeros)
{
    KEY_ADDRESS key = watch("D", 10, 2);
    key.data[0] = 0xEE;
    key.hostValue1 = 9;
    planOf({key});
    ASSERT_EQ(1, driver.readList.size());
    EXPECT_EQ(4, driver.readList.at(0).tag);
    EXPECT_EQ(Bytes(1024, 0), firstBytes(driver.readList.at(0).data, 1024));
}

TEST_F(AddressMerge, BitIndexPlaysNoPart)
{
    KEY_ADDRESS key = watch("D", 0, 33);
    key.bitIndex = -1;
    EXPECT_EQ("1#D0/32 1#D32/1", planOf({key}));
}

TEST_F(AddressMerge, KeysAreLeftAsTheyWere)
{
    QList<KEY_ADDRESS> keys;
    keys << watch("M", 5, 300) << watch("D", 1, 1);
    intf_addrMerge(keys);
    ASSERT_EQ(2, keys.size());
    EXPECT_EQ(5, keys.at(0).startIndex);
    EXPECT_EQ(300, keys.at(0).length);
    EXPECT_EQ("M", plain(keys.at(0).registerType));
}

TEST_F(AddressMerge, WithoutKeysThePlanIsEmptyAndNothingIsMarked)
{
    planOf({watch("D", 0, 1), watch("M", 0, 1)});
    EXPECT_EQ("", planOf({}));
    EXPECT_EQ(0, area("D", 0).monitorFlags);
    EXPECT_EQ(0, area("M", 0).changeFlags);
    EXPECT_EQ("1#D0 1#M0", textOf(driver.dataAreas));
}

TEST_F(AddressMerge, SecondCallReplacesThePlan)
{
    planOf({watch("D", 0, 1), watch("M", 3, 1)});
    EXPECT_EQ("1#D7/1", planOf({watch("D", 7, 1)}));
    EXPECT_EQ(0, area("D", 0).monitorFlags);
    EXPECT_EQ(0, area("M", 0).changeFlags);
    EXPECT_EQ(1, area("D", 7).monitorFlags);
}

TEST_F(AddressMerge, KeepsCachedValues)
{
    setUpDriver("1#1#0#3#32");
    write("D", 5, {1, 2}, 1);
    planOf({watch("D", 5, 1)});
    EXPECT_EQ((Bytes{1, 2}), values("D", 5, 1, 2));
}

TEST_F(AddressMerge, LeavesQueuesFramesAndCurrentAlone)
{
    driver.writeList << request("D", 1, 1);
    driver.conditionReadList << request("D", 2, 1);
    driver.frames << FRAME_PRO();
    driver.current = request("D", 3, 1);
    planOf({watch("D", 5, 1)});
    EXPECT_EQ("1#D1/1", textOf(driver.writeList));
    EXPECT_EQ("1#D2/1", textOf(driver.conditionReadList));
    EXPECT_EQ(1, driver.frames.size());
    EXPECT_EQ("1#D3/1", textOf(driver.current));
}

TEST_F(AddressMerge, ClearsBothFlagsOfEveryAreaCompletely)
{
    _DATA_ stale;
    stale.monitorFlags = -1;
    stale.changeFlags = -1;
    driver.dataAreas << stale << stale;
    planOf({});
    for (const _DATA_& cleared : driver.dataAreas) {
        EXPECT_EQ(0, cleared.monitorFlags);
        EXPECT_EQ(0, cleared.changeFlags);
    }
}

TEST_F(AddressMerge, StationZeroIsMarkedButNotPolled)
{
    EXPECT_EQ("", planOf({watch("D", 5, 1, 0)}));
    EXPECT_EQ(1, area("D", 5, 0).monitorFlags);
}

TEST_F(AddressMerge, UnknownTypeIsNeitherPolledNorMarked)
{
    EXPECT_EQ("", planOf({watch("Z", 5, 1), watch("d", 5, 1), watch("", 5, 1), watch("D ", 5, 1)}));
    EXPECT_TRUE(driver.dataAreas.isEmpty());
}

TEST_F(AddressMerge, EmptyAndNegativeLengthsAreLeftOut)
{
    EXPECT_EQ("",
              planOf({watch("D", 5, 0), watch("M", 5, 0), watch("D", 5, -1), watch("M", 5, -300)}));
    EXPECT_TRUE(driver.dataAreas.isEmpty());
}

TEST_F(AddressMerge, BadKeysDoNotDisturbGoodOnes)
{
    EXPECT_EQ("1#D7/1",
              planOf({watch("D", 5, 1, 0), watch("Z", 1, 1), watch("D", 7, 1), watch("D", 9, 0)}));
}

TEST_F(AddressMerge, MarksEveryKeyWithItsOwnLength)
{
    planOf({watch("M", 13, 6), watch("D", 5, 2), watch("32CV", 200, 3)});
    EXPECT_EQ("1#M8 1#M16 1#D5 1#D6 1#32CV200", textOf(driver.dataAreas));
    EXPECT_EQ(0xE0, area("M", 8).changeFlags);
    EXPECT_EQ(0x07, area("M", 16).changeFlags);
    EXPECT_EQ(1, area("D", 6).monitorFlags);
    EXPECT_EQ(1, area("32CV", 200).monitorFlags);
}

// The length of counters goes as it stands to the plan, while the marks count words, two a counter.
TEST_F(AddressMerge, CounterLengthIsCountersInThePlanAndWordsInTheMarks)
{
    EXPECT_EQ("1#32CV200/4", planOf({watch("32CV", 200, 4)}));
    EXPECT_EQ("1#32CV200 1#32CV201", textOf(driver.dataAreas));
}

TEST_F(AddressMerge, TypesComeInPlanOrderWhateverTheOrderOfKeys)
{
    QList<KEY_ADDRESS> keys;
    for (const char* type : {"32CV", "CV", "TV", "SD", "D", "C", "T", "S", "SM", "M", "Y", "X"})
        keys << watch(type, 8000, 1);
    EXPECT_EQ("1#X8000/1 1#Y8000/1 1#M8000/1 1#SM8000/1 1#S8000/1 1#T8000/1 1#C8000/1 "
              "1#D8000/1 1#SD8000/1 1#TV8000/1 1#CV8000/1 1#32CV8000/1",
              planOf(keys));
}

TEST_F(AddressMerge, StationsAreNeverMergedAndComeInAscendingOrder)
{
    EXPECT_EQ("1#D0/1 2#D1/1 255#D2/1",
              planOf({watch("D", 2, 1, 255), watch("D", 1, 1, 2), watch("D", 0, 1, 1)}));
}

TEST_F(AddressMerge, TypeComesBeforeStation)
{
    EXPECT_EQ("9#X0/1 1#Y0/1 2#Y0/1",
              planOf({watch("Y", 0, 1, 2), watch("Y", 0, 1, 1), watch("X", 0, 1, 9)}));
}

// 0 x 256 + 257 and 1 x 256 + 1 would be one number.
TEST_F(AddressMerge, StationsBeyond255NeverMeetAnotherType)
{
    EXPECT_EQ("257#X0/1 1#Y0/1", planOf({watch("Y", 0, 1, 1), watch("X", 0, 1, 257)}));
    EXPECT_EQ("300#X0/1 1#Y0/1", planOf({watch("Y", 0, 1, 1), watch("X", 0, 1, 300)}));
}

TEST_F(AddressMerge, ExtremeStationsKeepToTheirType)
{
    EXPECT_EQ("-2147483648#D0/1 -1#D0/1 2147483647#D0/1 1#SD8000/1",
              planOf({watch("SD", 8000, 1, 1), watch("D", 0, 1, 2147483647), watch("D", 0, 1, -1),
                      watch("D", 0, 1, -2147483647 - 1)}));
}
}  // namespace
