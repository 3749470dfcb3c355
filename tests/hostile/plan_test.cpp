// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Planning with numbers that no sane host gives: limits of 0 and less or without end, lengths
// beyond what the wire can address, starts near the largest integer, lists longer than any screen.

#include "tests/hostile/extremes.h"
#include "tests/model/driver_properties.h"
#include "tests/plan/plan_of_ranges.h"

#include <algorithm>
#include <random>

namespace {

class OddRanges : public PlanOfRanges
{};

TEST_P(OddRanges, GivePlan)
{
    mergeAndCompare();
}

const PlanRow rows[] = {
    {"LimitOfZeroIsOneWord", 0, {{"D", 5, 3}}, "1#D5/1 1#D6/1 1#D7/1"},
    {"LimitBelowZeroIsOneWord", -1, {{"D", 5, 2}}, "1#D5/1 1#D6/1"},
    {"SmallestLimitIsOneWord", smallest, {{"D", 5, 2}}, "1#D5/1 1#D6/1"},
    {"LimitOfZeroIsEightBits", 0, {{"M", 0, 20}}, "1#M0/1 1#M8/1 1#M16/1"},
    {"SmallestLimitIsEightBits", smallest, {{"M", 0, 9}}, "1#M0/1 1#M8/1"},
    {"LargestLimitDoesNotOverflow",
     largest,
     {{"D", 0, 10}, {"D", 5000, 5}, {"M", 0, 1}, {"M", 3000, 1}},
     "1#M0/376 1#D0/5005"},
    {"LimitBeyondTheWireIsNoLimitOfBlocks", 100000, {{"D", 0, 1}, {"D", 80000, 1}}, "1#D0/80001"},
    {"NeitherEndNorLimit", largest, {{"D", 0, largest}}, "1#D0/65536"},
    {"BlocksAtTheLargestNumber",
     32,
     {{"D", largest - 5, 3},
      {"D", largest - 1, 2},
      {"D", largest, 1},
      {"M", largest - 9, 2},
      {"M", largest, 1}},
     "1#M2147483632/2 1#D2147483642/6"},
    {"BothEndsOfTheNumbersNeverJoin",
     largest,
     {{"D", smallest, 1}, {"D", largest, 1}},
     "1#D-2147483648/1 1#D2147483647/1"},
    {"NegativeStart", 32, {{"D", -5, 3}}, "1#D-5/3"},
    {"SmallestStartOfBits", 32, {{"M", smallest, 8}}, "1#M-2147483648/1"},
    {"SortedByEveryByteTheNegativeOnesFirst",
     1,
     {{"D", 16777216, 1},
      {"D", -1, 1},
      {"D", 256, 1},
      {"D", 65536, 1},
      {"D", 0, 1},
      {"D", -257, 1},
      {"D", 255, 1},
      {"D", -16777217, 1},
      {"D", 65791, 1},
      {"D", 1, 1}},
     "1#D-16777217/1 1#D-257/1 1#D-1/1 1#D0/1 1#D1/1 1#D255/1 1#D256/1 1#D65536/1 1#D65791/1 "
     "1#D16777216/1"},
};

INSTANTIATE_TEST_SUITE_P(Ranges, OddRanges, ::testing::ValuesIn(rows), nameOf<PlanRow>);

class HostilePlan : public DriverTest
{
protected:
    static int merge(const KEY_ADDRESS& key) { return DriverTest::merge({key}); }
    static void queue(const char* type, int start, int length, int bitIndex)
    {
        KEY_ADDRESS key = watch(type, start, length);
        key.bitIndex = bitIndex;
        readOnce(key);
    }
};

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

TEST_F(HostilePlan, OneOffReadWithoutEndFillsTheQueueWithItsFirst512PiecesAndItsLast)
{
    setUpDriver();
    queue("D", 0, largest, 0);
    ASSERT_EQ(513, driver.conditionReadList.size());
    EXPECT_EQ("1#D16352/32", textOf(driver.conditionReadList.at(511)));
    EXPECT_EQ("1#D65504/32", textOf(driver.conditionReadList.at(512)));
    EXPECT_EQ("1#D65504/32", textOf(driver.lastConditionRead));
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
class ManyKeys : public DriverTest
{
protected:
    static constexpr int keyCount = 20000;  // twice the registers of a station

    ManyKeys() { setUpDriver(); }

    static QList<KEY_ADDRESS> keys(const char* registerType, int spacing)
    {
        QList<KEY_ADDRESS> list;
        for (int i = 0; i < keyCount; ++i)
            list.append(watch(registerType, i * spacing, 1, 1 + i % 3));
        std::shuffle(list.begin(), list.end(), std::mt19937(1));
        return list;
    }
};

TEST_F(ManyKeys, ScatteredKeysArePlannedOneByOne)
{
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(keyCount, merge(keys("D", 50)));
        EXPECT_EQ(keyCount, driver.dataAreas.size());
    }
    EXPECT_EQ("", brokenState());
}

TEST_F(ManyKeys, DenseKeysShareRequests)
{
    // Stations 1 to 3 have every third bit each: 256 bits a request.
    EXPECT_EQ(3 * ((keyCount + 255) / 256), merge(keys("M", 1)));
}

TEST_F(ManyKeys, OneAddressOverAndOverIsPolledOnce)
{
    EXPECT_EQ(1, merge(QVector<KEY_ADDRESS>(keyCount, watch("TV", 7, 3)).toList()));
    EXPECT_EQ(3, driver.dataAreas.size());
}
}  // namespace
