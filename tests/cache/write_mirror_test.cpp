// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host write in the cache, before the PLC has confirmed it: what is stored, and whom it tells.

#include "cache/data_areas.h"
#include "cache/write_values.h"
#include "tests/support/driver_fixture.h"

namespace {
class WriteMirror : public DriverTest
{
protected:
    WriteMirror() { setUpDriver(); }

    void mirror(const char* registerType, int start, Bytes data, int count)
    {
        std::vector<unsigned char> bytes(data.begin(), data.end());
        write_saveDataToArea(1, QString::fromLatin1(registerType), start, count, bytes.data());
    }
};

TEST_F(WriteMirror, WordsWaitInTheSecondBuffer)
{
    mirror("D", 100, {1, 2, 3, 4}, 2);
    EXPECT_EQ((Bytes{1, 2, 0, 0}), pending("D", 100));
    EXPECT_EQ((Bytes{3, 4, 0, 0}), pending("D", 101));
    EXPECT_EQ((Bytes{0, 0, 0, 0}), confirmed("D", 100));
    EXPECT_EQ(1, area("D", 100).bufferSelect);
    EXPECT_EQ((Bytes{1, 2, 3, 4}), values("D", 100, 2, 4));
    EXPECT_TRUE(driver.writeList.isEmpty());
}

TEST_F(WriteMirror, CountersAreMirroredByPairsOfWords)
{
    mirror("32CV", 200, {1, 2, 3, 4, 5, 6}, 3);
    EXPECT_EQ((Bytes{1, 2, 3, 4}), pending("32CV", 200));
    EXPECT_EQ("1#32CV200", textOf(driver.dataAreas));
}

TEST_F(WriteMirror, BitsAcrossTwoAreas)
{
    mirror("M", 6, {1, 1, 1}, 3);
    EXPECT_EQ((Bytes{0xC0, 0, 0, 0}), pending("M", 0));
    EXPECT_EQ((Bytes{0x01, 0, 0, 0}), pending("M", 8));
}

TEST_F(WriteMirror, OnlyAByteOfOneSetsABit)
{
    mirror("M", 0, {1, 2, 255, 0, 1}, 5);
    EXPECT_EQ((Bytes{1, 0, 0, 0, 1}), values("M", 0, 5, 5));
    mirror("M", 0, {2, 1}, 2);
    EXPECT_EQ((Bytes{0, 1, 0, 0, 1}), values("M", 0, 5, 5));
}

TEST_F(WriteMirror, FirstBitWriteBuildsOnThePolledByte)
{
    mark("M", 0, 1);
    area("M", 0).valueBuffer0[0] = 0xF0;
    area("M", 0).valueBuffer1[0] = 0x0F;  // left over, ignored
    mirror("M", 0, {1}, 1);
    EXPECT_EQ((Bytes{0xF1, 0, 0, 0}), pending("M", 0));
    EXPECT_EQ((Bytes{0xF0, 0, 0, 0}), confirmed("M", 0));
}

TEST_F(WriteMirror, ChangedMonitoredElementIsReported)
{
    mark("D", 100, 1);
    mark("M", 3, 1);
    mark("32CV", 200, 2);
    mirror("D", 100, {0, 1}, 1);
    mirror("M", 3, {1}, 1);
    mirror("32CV", 200, {0, 0, 0, 1}, 2);
    EXPECT_EQ((Texts{"1,1,D,100", "1,1,M,3", "1,1,32CV,200"}), calls);
}

TEST_F(WriteMirror, UnchangedValueIsStoredButNotReported)
{
    mark("D", 100, 1);
    mark("M", 3, 1);
    mark("32CV", 200, 2);
    mirror("D", 100, {0, 0}, 1);
    mirror("M", 3, {0}, 1);
    mirror("32CV", 200, {0, 0, 0, 0}, 2);
    EXPECT_EQ(Texts(), calls);
    EXPECT_EQ(1, area("D", 100).bufferSelect);
    EXPECT_EQ(1, area("M", 0).bufferSelect);
    EXPECT_EQ(1, area("32CV", 200).bufferSelect);
}

TEST_F(WriteMirror, ChangeIsMeasuredAgainstThePendingValue)
{
    mark("D", 100, 1);
    mirror("D", 100, {1, 0}, 1);
    calls.clear();
    mirror("D", 100, {1, 0}, 1);
    EXPECT_EQ(Texts(), calls);
    mirror("D", 100, {0, 0}, 1);
    EXPECT_EQ((Texts{"1,1,D,100"}), calls);
}

TEST_F(WriteMirror, UnmonitoredNeighboursAreNotReported)
{
    mark("M", 4, 1);
    mirror("M", 3, {1, 1, 1}, 3);
    EXPECT_EQ((Texts{"1,1,M,4"}), calls);
}

TEST_F(WriteMirror, NotificationPrecedesTheStore)
{
    mark("D", 100, 1);
    mark("M", 3, 1);
    mark("32CV", 200, 2);
    Bytes seen;
    onCall = [this, &seen](QString&, int number) {
        const char* type = number == 100 ? "D" : number == 3 ? "M" : "32CV";
        seen.push_back(values(type, number, 2, 4).at(0));
    };
    mirror("D", 100, {9, 0}, 1);
    mirror("M", 3, {1}, 1);
    mirror("32CV", 200, {9, 0, 0, 0}, 2);
    EXPECT_EQ((Bytes{0, 0, 0}), seen);
    EXPECT_EQ((Bytes{9, 0}), values("D", 100, 1, 2));
}

TEST_F(WriteMirror, CacheThatGrowsInsideTheCallbackLosesNothing)
{
    mark("D", 100, 4);
    mark("M", 0, 4);
    mark("32CV", 200, 4);
    int grown = 0;
    onCall = [this, &grown](QString&, int) { values("TV", 3000 * grown++, 3000, 6000); };
    write("D", 100, {1, 2, 3, 4, 5, 6, 7, 8}, 4);
    write("M", 0, {1, 1, 1, 1}, 4);
    write("32CV", 200, {1, 2, 3, 4, 5, 6, 7, 8}, 4);
    EXPECT_EQ(10U, calls.size());
    EXPECT_EQ((Bytes{1, 2, 3, 4, 5, 6, 7, 8}), values("D", 100, 4, 8));
    EXPECT_EQ((Bytes{1, 1, 1, 1, 0}), values("M", 0, 5, 5));
    EXPECT_EQ((Bytes{1, 2, 3, 4, 5, 6, 7, 8}), values("32CV", 200, 4, 8));
}

}  // namespace
