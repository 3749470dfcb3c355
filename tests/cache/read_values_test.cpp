// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host's reads, which the cache answers and never the link.

#include "cache/data_areas.h"
#include "tests/support/driver_fixture.h"

namespace {
class ReadValues : public DriverTest
{
protected:
    ReadValues() { setUpDriver(); }

    static _DATA_& made(const char* registerType, int start)
    {
        const int position =
            getIndexOfDataArea(1, QString::fromLatin1(registerType), start, driver.dataAreas);
        return driver.dataAreas[position];
    }
    static void put(unsigned char* buffer, const Bytes& bytes)
    {
        for (const int byte : bytes)
            *buffer++ = static_cast<unsigned char>(byte);
    }
    // Twelve bytes of EE after a read into them.
    static Bytes readInto12(const char* registerType, int start, int count)
    {
        unsigned char out[12];
        for (unsigned char& byte : out)
            byte = 0xEE;
        EXPECT_EQ(1, intf_getData(1, QString::fromLatin1(registerType), start, count, out));
        return firstBytes(out, 12);
    }
};

TEST_F(ReadValues, BitsAcrossTwoAreas)
{
    made("Y", 0).valueBuffer0[0] = 0x30;
    made("Y", 8).valueBuffer0[0] = 0x01;
    EXPECT_EQ((Bytes{1, 0, 0, 1, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}),
              readInto12("Y", 5, 4));
}

TEST_F(ReadValues, EachBitTakesAByteOfZeroOrOne)
{
    made("M", 8).valueBuffer0[0] = 0xA5;
    EXPECT_EQ((Bytes{1, 0, 1, 0, 0, 1, 0, 1}), values("M", 8, 8, 8));
}

TEST_F(ReadValues, UnknownWordsAreZeroAndCreateTheirAreas)
{
    EXPECT_EQ((Bytes{0, 0, 0, 0}), values("D", 100, 2, 4));
    EXPECT_EQ("1#D100 1#D101", textOf(driver.dataAreas));
}

TEST_F(ReadValues, WordsComeInTheOrderOfTheirBytes)
{
    put(made("D", 5).valueBuffer0, {0x12, 0x34, 0x56, 0x78});
    EXPECT_EQ((Bytes{0x12, 0x34, 0, 0}), values("D", 5, 2, 4));
}

TEST_F(ReadValues, CountersCountTwoWordsEach)
{
    put(made("32CV", 200).valueBuffer0, {1, 2, 3, 4});
    put(made("32CV", 201).valueBuffer0, {5, 6, 7, 8});
    EXPECT_EQ((Bytes{1, 2, 3, 4, 5, 6, 7, 8, 0xEE, 0xEE, 0xEE, 0xEE}), readInto12("32CV", 200, 4));
    EXPECT_EQ((Bytes{1, 2, 3, 4, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}),
              readInto12("32CV", 200, 3));
}

TEST_F(ReadValues, PendingWriteIsWhatTheHostReads)
{
    for (const char* type : {"D", "32CV"}) {
        _DATA_& area = made(type, 200);
        put(area.valueBuffer0, {1, 2, 3, 4});
        put(area.valueBuffer1, {5, 6, 7, 8});
        EXPECT_EQ(1, values(type, 200, 2, 4).at(0));
        made(type, 200).bufferSelect = 1;
        EXPECT_EQ(5, values(type, 200, 2, 4).at(0));
        made(type, 200).bufferSelect = 200;  // any number but zero
        EXPECT_EQ(5, values(type, 200, 2, 4).at(0));
    }
    made("M", 0).valueBuffer0[0] = 0x0F;
    made("M", 0).valueBuffer1[0] = 0xF0;
    EXPECT_EQ((Bytes{1, 0}), values("M", 3, 2, 2));
    made("M", 0).bufferSelect = 1;
    EXPECT_EQ((Bytes{0, 1}), values("M", 3, 2, 2));
}

TEST_F(ReadValues, BufferIsChosenForEachArea)
{
    put(made("D", 1).valueBuffer1, {9, 9});
    made("D", 1).bufferSelect = 1;
    EXPECT_EQ((Bytes{0, 0, 9, 9, 0, 0}), values("D", 0, 3, 6));
}

TEST_F(ReadValues, StaleMarkIsNotConsulted)
{
    put(made("D", 1).valueBuffer0, {7, 8});
    made("D", 1).flag0 = 1;
    EXPECT_EQ((Bytes{7, 8}), values("D", 1, 1, 2));
    EXPECT_EQ(1, made("D", 1).flag0);
}

TEST_F(ReadValues, StationsAreReadApart)
{
    put(made("D", 1).valueBuffer0, {7, 8});
    unsigned char out[2] = {0xEE, 0xEE};
    intf_getData(2, QString::fromLatin1("D"), 1, 1, out);
    EXPECT_EQ((Bytes{0, 0}), firstBytes(out, 2));
    EXPECT_EQ("1#D1 2#D1", textOf(driver.dataAreas));
}

TEST_F(ReadValues, ReadingReportsAndQueuesNothing)
{
    mark("D", 1, 1);
    values("D", 1, 1, 2);
    EXPECT_EQ(Texts(), calls);
    EXPECT_TRUE(driver.writeList.isEmpty());
    EXPECT_TRUE(driver.readList.isEmpty());
    EXPECT_TRUE(driver.conditionReadList.isEmpty());
}
}  // namespace
