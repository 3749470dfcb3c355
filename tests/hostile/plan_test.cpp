// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Planning with numbers that no sane host gives: limits of 0 and less or without end, lengths
// beyond what the wire can address, starts near the largest integer.

#include "tests/support/driver_fixture.h"

namespace {
constexpr int largest = 2147483647;
constexpr int smallest = -2147483647 - 1;

class HostilePlan : public DriverTest
{
protected:
    int merge(const KEY_ADDRESS& key)
    {
        QList<KEY_ADDRESS> keys;
        keys << key;
        return intf_addrMerge(keys);
    }
    static void queue(const char* type, int start, int length, int bitIndex)
    {
        KEY_ADDRESS key = watch(type, start, length);
        key.bitIndex = bitIndex;
        EXPECT_EQ(1, intf_addConditionRead(key, 0));
    }
};

TEST_F(HostilePlan, WordLimitBelowOneCutsToSingleWords)
{
    for (const char* properties : {"1#0#0#3#0", "1#0#0#3#-1", "1#0#0#3#-2147483648"}) {
        setUpDriver(properties);
        EXPECT_EQ(3, merge(watch("D", 5, 3))) << properties;
        EXPECT_EQ("1#D5/1 1#D6/1 1#D7/1", textOf(driver.readList)) << properties;
        EXPECT_EQ(3, merge(watch("M", 0, 20))) << properties;
        EXPECT_EQ("1#M0/1 1#M8/1 1#M16/1", textOf(driver.readList)) << properties;
    }
}

TEST_F(HostilePlan, WordLimitBelowOneCutsOneOffReadsToSingleWordsOrEightBits)
{
    for (const char* properties : {"1#0#0#3#0", "1#0#0#3#-1", "1#0#0#3#-2147483648"}) {
        setUpDriver(properties);
        queue("D", 5, 2, 0);
        queue("M", 5, 20, -1);
        EXPECT_EQ("1#D5/1 1#D6/1 1#M5/8 1#M13/8 1#M21/4", textOf(driver.conditionReadList))
            << properties;
    }
}

TEST_F(HostilePlan, HugeWordLimitDoesNotOverflow)
{
    setUpDriver("1#0#0#3#2147483647");
    QList<KEY_ADDRESS> keys;
    keys << watch("D", 0, 10) << watch("D", 5000, 5) << watch("M", 0, 1) << watch("M", 3000, 1);
    EXPECT_EQ(2, intf_addrMerge(keys));
    EXPECT_EQ("1#M0/376 1#D0/5005", textOf(driver.readList));
}

TEST_F(HostilePlan, WordLengthWithoutEndCountsAs65536)
{
    setUpDriver();
    EXPECT_EQ(2048, merge(watch("D", 0, largest)));
    EXPECT_EQ("1#D65504/32", textOf(driver.readList.last()));
    EXPECT_EQ(65536, driver.dataAreas.size());
    EXPECT_EQ(2048, merge(watch("D", 0, 65537)));
    EXPECT_EQ(2048, merge(watch("D", 0, 65536)));
    EXPECT_EQ(2048, merge(watch("D", 0, 65535)));
    EXPECT_EQ("1#D65504/31", textOf(driver.readList.last()));
}

TEST_F(HostilePlan, BitLengthWithoutEndCountsAs65536)
{
    setUpDriver();
    EXPECT_EQ(256, merge(watch("M", 0, largest)));
    EXPECT_EQ("1#M65280/32", textOf(driver.readList.last()));
    EXPECT_EQ(8192, driver.dataAreas.size());
}

TEST_F(HostilePlan, CounterLengthWithoutEndStaysBounded)
{
    setUpDriver();
    EXPECT_EQ(2048, merge(watch("32CV", 200, largest)));
    EXPECT_EQ(32768, driver.dataAreas.size());
}

TEST_F(HostilePlan, LengthWithoutEndAndWithoutLimitStaysBounded)
{
    setUpDriver("1#0#0#3#2147483647");
    EXPECT_EQ(1, merge(watch("D", 0, largest)));
    EXPECT_EQ("1#D0/65536", textOf(driver.readList));
}

TEST_F(HostilePlan, OneOffReadWithoutEndFillsTheQueueWithItsFirst512PiecesAndItsLast)
{
    setUpDriver();
    queue("D", 0, largest, 0);
    ASSERT_EQ(513, driver.conditionReadList.size());
    EXPECT_EQ("1#D16352/32", textOf(driver.conditionReadList.at(511)));
    EXPECT_EQ("1#D65504/32", textOf(driver.conditionReadList.at(512)));
    EXPECT_EQ("1#D65504/32", textOf(driver.lastConditionRead));
}

TEST_F(HostilePlan, FrameLimitBeyondTheWireIsNoLimitOfBlocks)
{
    setUpDriver("1#0#0#3#100000");
    QList<KEY_ADDRESS> keys;
    keys << watch("D", 0, 1) << watch("D", 80000, 1);
    EXPECT_EQ(1, intf_addrMerge(keys));
    EXPECT_EQ("1#D0/80001", textOf(driver.readList));
}

TEST_F(HostilePlan, OneOffReadThatFitsAFrameIsQueuedAsItStands)
{
    setUpDriver();
    queue("D", largest, 2, 0);
    queue("M", largest, 32, -1);
    EXPECT_EQ("1#D2147483647/2 1#M2147483647/32", textOf(driver.conditionReadList));
    setUpDriver("1#0#0#3#2147483647");
    queue("D", 5, largest, 0);
    EXPECT_EQ("1#D5/2147483647", textOf(driver.conditionReadList));
}

TEST_F(HostilePlan, OneOffReadBeyondAFrameCountsAs65536)
{
    setUpDriver("1#0#0#3#70000");
    queue("D", 0, 70000, 0);
    queue("D", 0, 70001, 0);
    EXPECT_EQ("1#D0/70000 1#D0/65536", textOf(driver.conditionReadList));
}

TEST_F(HostilePlan, PiecesPastTheLargestNumberAreLeftOut)
{
    setUpDriver();
    EXPECT_EQ(1, merge(watch("D", largest - 1, 100)));
    EXPECT_EQ(largest - 1, driver.readList.at(0).addressIndex);
    EXPECT_EQ("1#D2147483646 1#D2147483647", textOf(driver.dataAreas));
}

TEST_F(HostilePlan, BitPiecesPastTheLargestNumberAreLeftOut)
{
    setUpDriver();
    EXPECT_EQ(1, merge(watch("M", largest, 1000)));
    EXPECT_EQ("1#M2147483640", textOf(driver.dataAreas));
    EXPECT_EQ(2147483640, driver.readList.at(0).addressIndex);
    EXPECT_EQ(0x80, driver.dataAreas.at(0).changeFlags);
}

TEST_F(HostilePlan, OneOffPiecesPastTheLargestNumberAreLeftOut)
{
    setUpDriver();
    queue("D", largest - 40, 1000, 0);
    ASSERT_EQ(2, driver.conditionReadList.size());
    EXPECT_EQ(largest - 40, driver.conditionReadList.at(0).addressIndex);
    EXPECT_EQ(largest - 8, driver.conditionReadList.at(1).addressIndex);
}

TEST_F(HostilePlan, BlockAtTheLargestNumberDoesNotOverflow)
{
    setUpDriver();
    QList<KEY_ADDRESS> keys;
    keys << watch("D", largest - 5, 3) << watch("D", largest - 1, 2) << watch("D", largest, 1)
         << watch("M", largest - 9, 2) << watch("M", largest, 1);
    EXPECT_EQ(2, intf_addrMerge(keys));
    EXPECT_EQ("1#M2147483632/2 1#D2147483642/6", textOf(driver.readList));
}

TEST_F(HostilePlan, RangesFromOneEndOfTheNumbersToTheOtherNeverJoin)
{
    setUpDriver("1#0#0#3#2147483647");
    QList<KEY_ADDRESS> keys;
    keys << watch("D", smallest, 1) << watch("D", largest, 1);
    EXPECT_EQ(2, intf_addrMerge(keys));
    EXPECT_EQ("1#D-2147483648/1 1#D2147483647/1", textOf(driver.readList));
}

TEST_F(HostilePlan, NegativeStartsAreHarmless)
{
    setUpDriver();
    EXPECT_EQ(1, merge(watch("D", -5, 3)));
    EXPECT_EQ("1#D-5/3", textOf(driver.readList));
    EXPECT_EQ(1, merge(watch("M", -3, 2)));
    EXPECT_EQ(1, merge(watch("M", smallest, 8)));
}

TEST_F(HostilePlan, AddressesThatDifferInAnyByteAreSortedTheNegativeOnesFirst)
{
    setUpDriver("1#0#0#3#1");
    QList<KEY_ADDRESS> keys;
    for (const int address : {16777216, -1, 256, 65536, 0, -257, 255, -16777217, 65791, 1})
        keys << watch("D", address, 1);
    ASSERT_EQ(10, intf_addrMerge(keys));
    EXPECT_EQ("1#D-16777217/1 1#D-257/1 1#D-1/1 1#D0/1 1#D1/1 1#D255/1 1#D256/1 1#D65536/1 "
              "1#D65791/1 1#D16777216/1",
              textOf(driver.readList));
}
}  // namespace
