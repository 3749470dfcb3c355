// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Finding or creating a data area, through whatever happens to the list in between, and the
// setting of single bits.

#include "cache/data_areas.h"
#include "tests/support/driver_fixture.h"

namespace {
int indexOf(const char* registerType, int startIndex, int stationNo = 1)
{
    return getIndexOfDataArea(stationNo, QString::fromLatin1(registerType), startIndex,
                              driver.dataAreas);
}

using AreaLookUp = DriverTest;

TEST_F(AreaLookUp, MissingAreaIsAppendedAllZero)
{
    EXPECT_EQ(0, indexOf("D", 100, 7));
    ASSERT_EQ("7#D100", textOf(driver.dataAreas));
    const _DATA_& made = driver.dataAreas.at(0);
    EXPECT_EQ(0, made.flag0);
    EXPECT_EQ(0, made.bufferSelect);
    EXPECT_EQ(0, made.word1);
    EXPECT_EQ(0, made.monitorFlags);
    EXPECT_EQ(0, made.changeFlags);
    EXPECT_EQ(Bytes(4, 0), firstBytes(made.valueBuffer0, 4));
    EXPECT_EQ(Bytes(4, 0), firstBytes(made.valueBuffer1, 4));
}

TEST_F(AreaLookUp, AnyTextIsAKey)
{
    EXPECT_EQ(0, indexOf("", 0));
    EXPECT_EQ(1, indexOf("no such type", 0));
    EXPECT_EQ(0, getIndexOfDataArea(1, QString(), 0, driver.dataAreas));
}

// A merge writes to all areas before it looks one up: the index took the new empty list for the one
// that it knew, and answered with places past its end.
TEST_F(AreaLookUp, ListEmptiedBeforeAMergeBeginsAnew)
{
    indexOf("D", 1);
    indexOf("D", 2);
    driver.dataAreas = QList<_DATA_>();
    clearMonitorFlags();
    EXPECT_EQ(0, indexOf("D", 2));
    EXPECT_EQ(1, driver.dataAreas.size());
}

TEST_F(AreaLookUp, AnotherListIsServedToo)
{
    indexOf("D", 5);
    QList<_DATA_> other;
    EXPECT_EQ(0, getIndexOfDataArea(1, QString::fromLatin1("M"), 8, other));
    EXPECT_EQ(1, getIndexOfDataArea(1, QString::fromLatin1("D"), 5, other));
    EXPECT_EQ(0, indexOf("D", 5));
    EXPECT_EQ(1, driver.dataAreas.size());
    EXPECT_EQ(2, other.size());
}

TEST_F(AreaLookUp, CopyOfTheListStaysAsItWas)
{
    indexOf("D", 5);
    const QList<_DATA_> copy = driver.dataAreas;
    indexOf("D", 6);
    write("D", 5, {1, 2}, 1);
    EXPECT_EQ(1, copy.size());
    EXPECT_EQ(0, copy.at(0).bufferSelect);
    EXPECT_EQ(0, indexOf("D", 5));
}

struct LookUpRow
{
    const char* name;
    int value;
    int bit;
    int on;
    int result;
};

class BitValue : public ::testing::TestWithParam<LookUpRow>
{};

TEST_P(BitValue, IsSetOrCleared)
{
    EXPECT_EQ(GetParam().result, _setBitValue(GetParam().value, GetParam().bit, GetParam().on));
}

constexpr int smallest = -2147483647 - 1;

const LookUpRow bits[] = {
    {"SetsBit0", 0, 0, 1, 1},
    {"SetsBit7", 0, 7, 1, 128},
    {"SetsBit30", 0, 30, 1, 1073741824},
    {"SetsBit31", 0, 31, 1, smallest},
    {"ClearsBit0", 3, 0, 0, 2},
    {"ClearsBit7", 255, 7, 0, 127},
    {"ClearsBit31", -1, 31, 0, 2147483647},
    {"SetsASetBit", 128, 7, 1, 128},
    {"ClearsAClearedBit", 127, 7, 0, 127},
    {"AnyNonzeroSets", 0, 3, -5, 8},
    {"Bit32ChangesNothing", 5, 32, 1, 5},
    {"Bit32ClearsNothing", -1, 32, 0, -1},
    {"BitMinusOneChangesNothing", 5, -1, 1, 5},
    {"LargestBitChangesNothing", 5, 2147483647, 1, 5},
    {"SmallestBitChangesNothing", 5, smallest, 0, 5},
};

TEST(BitOfAValue, IsSetOnlyWithin32Bits)
{
    EXPECT_TRUE(isBitSet(1, 0));
    EXPECT_TRUE(isBitSet(smallest, 31));
    EXPECT_FALSE(isBitSet(-1, 32));
    EXPECT_FALSE(isBitSet(-1, -1));
    EXPECT_FALSE(isBitSet(-2, 0));
}

INSTANTIATE_TEST_SUITE_P(Bits, BitValue, ::testing::ValuesIn(bits), nameOf<LookUpRow>);
}  // namespace
