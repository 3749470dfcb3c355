// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The cache with null buffers, counts without end and numbers at the ends of the integers. Buffers
// are exactly as large as a host must make them, so that a memory checker sees a byte too many.

#include "cache/data_areas.h"
#include "cache/write_values.h"
#include "tests/hostile/extremes.h"
#include "tests/support/driver_fixture.h"

namespace {

class HostileCache : public DriverTest
{
protected:
    HostileCache() { setUpDriver(); }

    static QString type(const char* text) { return QString::fromLatin1(text); }
};

TEST_F(HostileCache, NullOutputOfAReadIsSkipped)
{
    for (const char* name : {"D", "M", "32CV", "Z"})
        EXPECT_EQ(1, intf_getData(1, type(name), 0, 4, nullptr)) << name;
}

TEST_F(HostileCache, NullDataOfAWriteQueuesAndCachesNothing)
{
    for (const char* name : {"D", "M", "X", "32CV", "Z"}) {
        EXPECT_EQ(1, intf_setData(1, type(name), 0, 4, nullptr, 0)) << name;
        write_saveDataToArea(1, type(name), 0, 4, nullptr);
    }
    EXPECT_TRUE(driver.writeList.isEmpty());
    EXPECT_TRUE(driver.dataAreas.isEmpty());
}

TEST_F(HostileCache, ReadWithoutEndServes65536Elements)
{
    std::vector<unsigned char> bits(65536, 0xEE);
    EXPECT_EQ(1, intf_getData(1, type("M"), 0, largest, bits.data()));
    EXPECT_EQ(std::vector<unsigned char>(65536, 0), bits);
    EXPECT_EQ(8192, driver.dataAreas.size());
    driver.dataAreas.clear();
    std::vector<unsigned char> words(2 * 65536, 0xEE);
    EXPECT_EQ(1, intf_getData(1, type("D"), smallest, largest, words.data()));
    EXPECT_EQ(std::vector<unsigned char>(2 * 65536, 0), words);
    EXPECT_EQ(65536, driver.dataAreas.size());
    driver.dataAreas.clear();
    std::vector<unsigned char> counters(4 * 65536, 0xEE);
    EXPECT_EQ(1, intf_getData(1, type("32CV"), 0, largest, counters.data()));
    EXPECT_EQ(32768, driver.dataAreas.size());
}

TEST_F(HostileCache, WriteWithoutEndStaysWithin65536Elements)
{
    std::vector<unsigned char> bits(65536, 1);
    EXPECT_EQ(1, intf_setData(1, type("M"), 0, largest, bits.data(), 0));
    EXPECT_EQ(8192, driver.dataAreas.size());
    EXPECT_EQ(513, driver.writeList.size());
    EXPECT_EQ("1#M65535/1", textOf(driver.writeList.at(512)));
    setUpDriver();
    std::vector<unsigned char> words(2 * 65536, 1);
    EXPECT_EQ(1, intf_setData(1, type("D"), 0, largest, words.data(), 0));
    EXPECT_EQ(65536, driver.dataAreas.size());
    EXPECT_EQ("1#D65504/32", textOf(driver.writeList.at(512)));
    setUpDriver();
    std::vector<unsigned char> counters(4 * 65536, 1);
    EXPECT_EQ(1, intf_setData(1, type("32CV"), 0, largest, counters.data(), 0));
    EXPECT_EQ(32768, driver.dataAreas.size());
    EXPECT_EQ("1#32CV65504/32", textOf(driver.writeList.at(512)));
}

TEST_F(HostileCache, EndOfAWriteWithoutEndStaysWithin65536Elements)
{
    write_FailOrSuc(1, type("D"), 0, largest, 1);
    EXPECT_EQ(65536, driver.dataAreas.size());
    driver.dataAreas.clear();
    write_FailOrSuc(1, type("M"), 0, largest, 0);
    EXPECT_EQ(8192, driver.dataAreas.size());
}

TEST_F(HostileCache, MarksWithoutEndStayWithin65536Elements)
{
    EXPECT_EQ(0, _setDataAreaMonitorFlag(1, type("D"), 0, largest));
    EXPECT_EQ(65536, driver.dataAreas.size());
    driver.dataAreas.clear();
    EXPECT_EQ(0, _setDataAreaMonitorFlag(1, type("M"), 0, largest));
    EXPECT_EQ(8192, driver.dataAreas.size());
}

TEST_F(HostileCache, ElementsPastTheLargestNumberAreLeftOut)
{
    std::vector<unsigned char> data(16, 1);
    std::vector<unsigned char> out(16, 0xEE);
    intf_setData(1, type("D"), largest - 1, 4, data.data(), 0);
    EXPECT_EQ("1#D2147483646 1#D2147483647", textOf(driver.dataAreas));
    EXPECT_EQ(1, intf_getData(1, type("D"), largest - 1, 4, out.data()));
    EXPECT_EQ((Bytes{1, 1, 1, 1}), firstBytes(out.data(), 4));
    EXPECT_EQ("1#D2147483646 1#D2147483647", textOf(driver.dataAreas));

    driver.dataAreas.clear();
    driver.writeList.clear();
    intf_setData(1, type("M"), largest - 1, 4, data.data(), 0);
    EXPECT_EQ("1#M2147483640", textOf(driver.dataAreas));
    EXPECT_EQ("1#M2147483646/1 1#M2147483647/1", textOf(driver.writeList));

    driver.dataAreas.clear();
    intf_setData(1, type("32CV"), largest, 8, data.data(), 0);
    write_FailOrSuc(1, type("32CV"), largest, 8, 1);
    _setDataAreaMonitorFlag(1, type("32CV"), largest, 8);
    intf_getData(1, type("32CV"), largest, 8, out.data());
    EXPECT_EQ("1#32CV2147483647", textOf(driver.dataAreas));
}

TEST_F(HostileCache, NegativeNumbersAreHarmless)
{
    std::vector<unsigned char> data(16, 1);
    for (const int start : {-1, -9, smallest}) {
        for (const char* name : {"D", "M", "X", "32CV"}) {
            std::vector<unsigned char> out(16, 0xEE);
            _setDataAreaMonitorFlag(1, type(name), start, 4);
            EXPECT_EQ(1, intf_setData(1, type(name), start, 4, data.data(), 0));
            EXPECT_EQ(1, intf_getData(1, type(name), start, 4, out.data()));
            write_FailOrSuc(1, type(name), start, 4, 1);
        }
    }
    EXPECT_EQ((Bytes{1, 1}), values("D", -1, 1, 2));
    EXPECT_EQ((Bytes{1, 1}), values("D", smallest, 1, 2));
}

// A bit before the first one belongs to no bit of its area: it is never set.
TEST_F(HostileCache, NegativeBitsAreNeverSet)
{
    unsigned char on = 1;
    intf_setData(1, type("M"), -1, 1, &on, 0);
    EXPECT_EQ((Bytes{0, 0}), values("M", -1, 2, 2));
}

TEST_F(HostileCache, MinimalReadTouchesNothingBehindItsElements)
{
    std::vector<unsigned char> bit(1, 0xEE);
    std::vector<unsigned char> word(2, 0xEE);
    std::vector<unsigned char> counter(4, 0xEE);
    intf_getData(1, type("M"), 3, 1, bit.data());
    intf_getData(1, type("D"), 3, 1, word.data());
    intf_getData(1, type("32CV"), 200, 3, counter.data());
    EXPECT_EQ(0, bit[0] | word[0] | word[1] | counter[0] | counter[3]);
}

TEST_F(HostileCache, MinimalWriteReadsNothingBehindItsElements)
{
    std::vector<unsigned char> bit(1, 1);
    std::vector<unsigned char> word(2, 1);
    std::vector<unsigned char> counter(4, 1);
    intf_setData(1, type("M"), 3, 1, bit.data(), 0);
    intf_setData(1, type("D"), 3, 1, word.data(), 0);
    intf_setData(1, type("32CV"), 200, 2, counter.data(), 0);
    EXPECT_EQ("1#M3/1 1#D3/1 1#32CV200/2", textOf(driver.writeList));
}
}  // namespace
