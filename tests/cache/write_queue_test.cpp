// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The queue of host writes: newer values replace older ones that still wait, and the queue ends
// at 513 entries.

#include "cache/write_values.h"
#include "tests/support/driver_fixture.h"

namespace {
class WriteQueue : public DriverTest
{
protected:
    WriteQueue() { setUpDriver(); }

    void queueSingles(int count)
    {
        for (int i = 0; i < count; ++i)
            driver.writeList << request("D", i, 1);
    }
    static std::string queued() { return textOf(driver.writeList); }
};

TEST_F(WriteQueue, SecondWriteReplacesTheFirstWhileAnotherIsInFlight)
{
    write("M", 0, {1}, 1);
    nextFrame();
    write("D", 100, {1, 0}, 1, 1);
    write("D", 100, {2, 0}, 1, 2);
    ASSERT_EQ("1#M0/1 1#D100/1", queued());
    EXPECT_EQ(2, driver.writeList.at(1).data[0]);
    EXPECT_EQ(2, driver.writeList.at(1).tag);
}

// Found by a soak: of writes that overlap, the PLC can get the older one last. The cache shows the
// newer until the registers are polled again.
TEST_F(WriteQueue, WriteThatReplacesAnotherGoesAheadOfAnOverlappingOneBetween)
{
    write("M", 0, {1}, 1);
    write("D", 10, {1, 1, 1, 1}, 2);
    write("D", 11, {2, 2, 2, 2}, 2);
    write("D", 10, {3, 3, 3, 3}, 2);
    ASSERT_EQ("1#M0/1 1#D10/2 1#D11/2", queued());
    nextFrame();
    acknowledge();
    EXPECT_EQ("<STX>110140403030303<ETX>EA", nextFrame());
    acknowledge();
    EXPECT_EQ("<STX>110160402020202<ETX>E8", nextFrame());
    acknowledge();
    EXPECT_EQ((Bytes{3, 3, 3, 3, 2, 2}), values("D", 10, 3, 6));
}

TEST_F(WriteQueue, EqualOfTheHeadIsAppended)
{
    write("D", 100, {1, 0}, 1, 1);
    write("D", 100, {2, 0}, 1, 2);
    ASSERT_EQ("1#D100/1 1#D100/1", queued());
    EXPECT_EQ(1, driver.writeList.at(0).data[0]);
    EXPECT_EQ(2, driver.writeList.at(1).data[0]);
    write("D", 100, {3, 0}, 1, 3);
    ASSERT_EQ("1#D100/1 1#D100/1", queued());
    EXPECT_EQ(3, driver.writeList.at(1).data[0]);
}

TEST_F(WriteQueue, CountIsPartOfTheKey)
{
    queueSingles(1);
    write("D", 100, {1, 0, 2, 0}, 2);
    write("D", 100, {1, 0}, 1);
    EXPECT_EQ("1#D0/1 1#D100/2 1#D100/1", queued());
}

TEST_F(WriteQueue, StationTypeAndNumberArePartsOfTheKey)
{
    queueSingles(1);
    write("D", 100, {1, 0}, 1);
    write("TV", 100, {1, 0}, 1);
    write("D", 101, {1, 0}, 1);
    unsigned char data[] = {1, 0};
    intf_setData(2, QString::fromLatin1("D"), 100, 1, data, 0);
    EXPECT_EQ("1#D0/1 1#D100/1 1#TV100/1 1#D101/1 2#D100/1", queued());
}

TEST_F(WriteQueue, BitWritesReplaceEachOtherBitByBit)
{
    queueSingles(1);
    write("M", 0, {1, 1, 1}, 3);
    write("M", 1, {0}, 1);
    ASSERT_EQ("1#D0/1 1#M0/1 1#M1/1 1#M2/1", queued());
    EXPECT_EQ(0, driver.writeList.at(2).data[0]);
}

TEST_F(WriteQueue, With512EntriesTheNextIsAppended)
{
    queueSingles(512);
    write("TV", 0, {1, 0}, 1);
    EXPECT_EQ(513, driver.writeList.size());
    EXPECT_EQ("1#TV0/1", textOf(driver.writeList.at(512)));
}

TEST_F(WriteQueue, With513EntriesTheLastIsLost)
{
    queueSingles(513);
    write("TV", 0, {1, 0}, 1);
    EXPECT_EQ(513, driver.writeList.size());
    EXPECT_EQ("1#D511/1", textOf(driver.writeList.at(511)));
    EXPECT_EQ("1#TV0/1", textOf(driver.writeList.at(512)));
}

TEST_F(WriteQueue, FullQueueStillReplacesItsEqualInPlace)
{
    queueSingles(513);
    write("D", 7, {9, 0}, 1);
    EXPECT_EQ(513, driver.writeList.size());
    EXPECT_EQ(9, driver.writeList.at(7).data[0]);
    EXPECT_EQ("1#D512/1", textOf(driver.writeList.at(512)));
}

TEST_F(WriteQueue, SixHundredBitsKeepTheFirst512AndTheLast)
{
    write("M", 0, Bytes(600, 1), 600);
    ASSERT_EQ(513, driver.writeList.size());
    EXPECT_EQ("1#M511/1", textOf(driver.writeList.at(511)));
    EXPECT_EQ("1#M599/1", textOf(driver.writeList.at(512)));
}

TEST_F(WriteQueue, AnyListIsServed)
{
    QList<VARIABLE> list;
    VARIABLE first = request("D", 1, 1);
    VARIABLE second = request("D", 2, 1);
    VARIABLE newer = request("D", 2, 1);
    newer.tag = 8;
    newer.data[1023] = 0xEE;
    addVarToList(list, first);
    addVarToList(list, second);
    addVarToList(list, newer);
    ASSERT_EQ("1#D1/1 1#D2/1", textOf(list));
    EXPECT_EQ(8, list.at(1).tag);
    EXPECT_EQ(0xEE, list.at(1).data[1023]);
    EXPECT_TRUE(driver.writeList.isEmpty());
}

TEST_F(WriteQueue, NewestMatchIsReplaced)
{
    QList<VARIABLE> list;
    list << request("D", 0, 1) << request("D", 1, 1) << request("D", 1, 1) << request("D", 2, 1);
    VARIABLE newer = request("D", 1, 1);
    newer.tag = 8;
    addVarToList(list, newer);
    ASSERT_EQ(4, list.size());
    EXPECT_EQ(0, list.at(1).tag);
    EXPECT_EQ(8, list.at(2).tag);
}
}  // namespace
