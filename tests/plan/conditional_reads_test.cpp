// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One-off reads: how a range is cut and queued, which queued request a new one replaces, and which
// request is remembered as the last.

#include "tests/support/driver_fixture.h"

namespace {
class ConditionalReads : public DriverTest
{
protected:
    ConditionalReads() { setUpDriver(); }

    void queue(const char* type, int start, int length, int bitIndex = 0, int tag = 0,
               int stationNo = 1)
    {
        KEY_ADDRESS key = watch(type, start, length, stationNo);
        key.bitIndex = bitIndex;
        EXPECT_EQ(1, intf_addConditionRead(key, tag));
    }
    static std::string queued() { return textOf(driver.conditionReadList); }
    static std::string last() { return textOf(driver.lastConditionRead); }
};

TEST_F(ConditionalReads, LongRangeIsCut)
{
    queue("D", 100, 70);
    EXPECT_EQ("1#D100/32 1#D132/32 1#D164/6", queued());
    EXPECT_EQ("1#D164/6", last());
}

TEST_F(ConditionalReads, MultipleOfTheLimitGivesFullRequests)
{
    queue("D", 0, 64);
    EXPECT_EQ("1#D0/32 1#D32/32", queued());
}

TEST_F(ConditionalReads, BitIndexMinusOneSelectsTheBitLimitForAnyType)
{
    queue("D", 0, 256, -1);
    queue("D", 1000, 257, -1);
    EXPECT_EQ("1#D0/256 1#D1000/256 1#D1256/1", queued());
}

TEST_F(ConditionalReads, AnyOtherBitIndexSelectsTheWordLimitEvenForBits)
{
    queue("M", 0, 33, 0);
    queue("M", 100, 33, -2);
    queue("M", 200, 33, 7);
    EXPECT_EQ("1#M0/32 1#M32/1 1#M100/32 1#M132/1 1#M200/32 1#M232/1", queued());
}

TEST_F(ConditionalReads, BitAddressesAreNotAlignedNorCountedInBytes)
{
    queue("M", 13, 9, -1);
    EXPECT_EQ("1#M13/9", queued());
}

TEST_F(ConditionalReads, EmptyAndNegativeLengthsAreQueuedAsTheyStand)
{
    queue("D", 5, 0);
    queue("D", 5, -7, -1);
    queue("D", 5, -2147483647 - 1);
    EXPECT_EQ("1#D5/0 1#D5/-7 1#D5/-2147483648", queued());
    EXPECT_EQ("1#D5/-2147483648", last());
}

TEST_F(ConditionalReads, UnknownTypeIsQueuedAllTheSame)
{
    queue("Z", 5, 1);
    EXPECT_EQ("1#Z5/1", queued());
}

TEST_F(ConditionalReads, EveryRequestCarriesTagAndZeros)
{
    KEY_ADDRESS key = watch("D", 0, 40, 6);
    key.data[0] = 0xEE;
    key.data[1023] = 0xEE;
    intf_addConditionRead(key, -33);
    ASSERT_EQ(2, driver.conditionReadList.size());
    for (const VARIABLE& entry : driver.conditionReadList) {
        EXPECT_EQ(-33, entry.tag);
        EXPECT_EQ(6, entry.stationNo);
        EXPECT_EQ(Bytes(1024, 0), firstBytes(entry.data, 1024));
    }
    EXPECT_EQ(-33, driver.lastConditionRead.tag);
}

TEST_F(ConditionalReads, KeyIsLeftAsItWas)
{
    KEY_ADDRESS key = watch("D", 100, 70);
    intf_addConditionRead(key, 1);
    EXPECT_EQ(100, key.startIndex);
    EXPECT_EQ(70, key.length);
}

TEST_F(ConditionalReads, LongRangeQueuedTwiceRepeatsItsHeadOnly)
{
    queue("D", 100, 70, 0, 1);
    queue("D", 100, 70, 0, 2);
    ASSERT_EQ("1#D100/32 1#D132/32 1#D164/6 1#D100/32", queued());
    EXPECT_EQ(1, driver.conditionReadList.at(0).tag);
    EXPECT_EQ(2, driver.conditionReadList.at(1).tag);
    EXPECT_EQ(2, driver.conditionReadList.at(2).tag);
    EXPECT_EQ("1#D164/6", last());
}

TEST_F(ConditionalReads, PlanAndWritesAreLeftAlone)
{
    driver.readList << request("D", 1, 1);
    driver.writeList << request("D", 2, 1);
    queue("D", 3, 1);
    EXPECT_EQ("1#D1/1", textOf(driver.readList));
    EXPECT_EQ("1#D2/1", textOf(driver.writeList));
    EXPECT_TRUE(driver.dataAreas.isEmpty());
}
}  // namespace
