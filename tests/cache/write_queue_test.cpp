// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The queue of host writes: newer values replace older ones that still wait. The rule itself is
// tested with the request queue.

#include "cache/write_values.h"
#include "tests/support/driver_fixture.h"

namespace {
class WriteQueue : public DriverTest
{
protected:
    WriteQueue() { setUpDriver(); }

    static std::string queued() { return textOf(driver.writeList); }
};

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

TEST_F(WriteQueue, BitWritesReplaceEachOtherBitByBit)
{
    driver.writeList << request("D", 0, 1);
    write("M", 0, {1, 1, 1}, 3);
    write("M", 1, {0}, 1);
    ASSERT_EQ("1#D0/1 1#M0/1 1#M1/1 1#M2/1", queued());
    EXPECT_EQ(0, driver.writeList.at(2).data[0]);
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

}  // namespace
