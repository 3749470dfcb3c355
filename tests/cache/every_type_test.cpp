// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What every way into the cache does alike: each register type goes through marks, a host write,
// its end and a poll; types that there are not, counts below one and half a counter go nowhere.

#include "cache/notification.h"
#include "cache/write_values.h"
#include "tests/support/driver_fixture.h"

namespace {
class EveryType : public DriverTest
{
protected:
    EveryType() { setUpDriver(); }

    static void end(const char* registerType, int start, int count)
    {
        write_FailOrSuc(1, QString::fromLatin1(registerType), start, count, 1);
    }
    // Every way in with that run; the buffers are large enough for none of it.
    void expectNothing(const char* registerType, int start, int count)
    {
        SCOPED_TRACE(std::string(registerType) + ' ' + std::to_string(count));
        unsigned char byte = 0xEE;
        mark(registerType, start, count);
        intf_setData(1, QString::fromLatin1(registerType), start, count, &byte, 0);
        intf_getData(1, QString::fromLatin1(registerType), start, count, &byte);
        end(registerType, start, count);
        EXPECT_EQ(0xEE, byte);
        EXPECT_TRUE(driver.dataAreas.isEmpty());
        EXPECT_EQ(Texts(), calls);
    }
};

TEST_F(EveryType, BitsLieEightToAnArea)
{
    for (const char* type : {"X", "Y", "M", "S", "SM", "T", "C"}) {
        SCOPED_TRACE(type);
        driver.writeList.clear();
        mark(type, 8001, 1);
        EXPECT_EQ(2, area(type, 8000).changeFlags);
        EXPECT_EQ(0, area(type, 8000).monitorFlags);
        write(type, 8003, {1}, 1);
        EXPECT_EQ(*type == 'X' ? "" : std::string("1#") + type + "8003/1",
                  textOf(driver.writeList));
        EXPECT_EQ((Bytes{8, 0, 0, 0}), pending(type, 8000));
        EXPECT_EQ((Bytes{0, 1, 0}), values(type, 8002, 3, 3));
        end(type, 8003, 1);
        EXPECT_EQ((Bytes{8, 0, 0, 0}), confirmed(type, 8000));
        EXPECT_EQ(0, area(type, 8000).bufferSelect);
        driver.writeList.clear();
        poll(type, 8000, 2, "<STX>3041<ETX>CB");
        EXPECT_EQ((Bytes{0x30, 0, 0, 0}), confirmed(type, 8000));
        EXPECT_EQ((Bytes{0x41, 0, 0, 0}), confirmed(type, 8008));
    }
}

TEST_F(EveryType, WordsLieInAreasOfTheirOwn)
{
    for (const char* type : {"D", "SD", "TV", "CV"}) {
        SCOPED_TRACE(type);
        mark(type, 8001, 2);
        EXPECT_EQ(1, area(type, 8002).monitorFlags);
        EXPECT_EQ(0, area(type, 8001).changeFlags);
        write(type, 8001, {7, 8, 9, 10}, 2);
        EXPECT_EQ((Bytes{9, 10, 0, 0}), pending(type, 8002));
        EXPECT_EQ((Bytes{7, 8, 9, 10}), values(type, 8001, 2, 4));
        end(type, 8001, 2);
        EXPECT_EQ((Bytes{7, 8, 0, 0}), confirmed(type, 8001));
        EXPECT_EQ(0, area(type, 8001).bufferSelect);
        driver.writeList.clear();
        poll(type, 8001, 1, "<STX>ABCD<ETX>0D");
        EXPECT_EQ((Bytes{0xAB, 0xCD, 0, 0}), confirmed(type, 8001));
    }
    EXPECT_EQ(8, driver.dataAreas.size());
}

TEST_F(EveryType, UnknownTypesAreNeitherQueuedNorStoredNorReported)
{
    for (const char* type : {"", "Z", "d", "m", "x", "32cv", "D "}) {
        expectNothing(type, 8, 4);
        poll(type, 8, 1, "<STX>1234<ETX>CD");
        for (const int isBit : {0, 1})
            _OnlyOneDataTypeDataChange(1, QString::fromLatin1(type), 8, isBit, 0xFF, 0, 1);
        expectNothing(type, 8, 4);
    }
    EXPECT_TRUE(driver.writeList.isEmpty());
}

TEST_F(EveryType, CountsBelowOneAreNothing)
{
    for (const int count : {0, -1, -2147483647 - 1}) {
        for (const char* type : {"M", "X", "D", "32CV"})
            expectNothing(type, 5, count);
    }
    EXPECT_TRUE(driver.writeList.isEmpty());
}

// One word of a counter is a piece for the PLC, but no element of the cache.
TEST_F(EveryType, HalfACounterIsQueuedAndNothingElse)
{
    std::vector<unsigned char> word{1, 2};
    mark("32CV", 200, 1);
    intf_setData(1, QLatin1String("32CV"), 200, 1, word.data(), 0);
    intf_getData(1, QLatin1String("32CV"), 200, 1, word.data());
    end("32CV", 200, 1);
    EXPECT_EQ("1#32CV200/1", textOf(driver.writeList));
    EXPECT_EQ((Bytes{1, 2}), firstBytes(word.data(), 2));
    EXPECT_TRUE(driver.dataAreas.isEmpty());
}
}  // namespace
