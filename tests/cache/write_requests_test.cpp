// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a host write queues for the PLC: one request a bit, pieces of words, or nothing. Newer
// values replace older ones that still wait, by the rule that is tested with the request queue.

#include "cache/write_values.h"
#include "tests/support/driver_fixture.h"

namespace {
class WriteRequests : public DriverTest
{
protected:
    WriteRequests() { setUpDriver(); }

    static Bytes counting(int byteCount)
    {
        Bytes bytes;
        for (int i = 0; i < byteCount; ++i)
            bytes.push_back(i % 251);
        return bytes;
    }
};

TEST_F(WriteRequests, BitsAreQueuedOneByOne)
{
    write("M", 10, {1, 0, 2}, 3, -9);
    ASSERT_EQ("1#M10/1 1#M11/1 1#M12/1", textOf(driver.writeList));
    EXPECT_EQ(1, driver.writeList.at(0).data[0]);
    EXPECT_EQ(0, driver.writeList.at(1).data[0]);
    EXPECT_EQ(2, driver.writeList.at(2).data[0]);
    for (const VARIABLE& queued : driver.writeList)
        EXPECT_EQ(-9, queued.tag);
}

TEST_F(WriteRequests, InputsAreNeverQueuedYetReadBack)
{
    write("X", 5, {1, 0, 1}, 3);
    EXPECT_TRUE(driver.writeList.isEmpty());
    EXPECT_EQ((Bytes{1, 0, 1}), values("X", 5, 3, 3));
}

TEST_F(WriteRequests, CacheOnlyWritesQueueNothingAndStayPending)
{
    setUpDriver("1#-7#0#3#32");  // any number but zero
    write("D", 5, {1, 2}, 1);
    write("M", 5, {1}, 1);
    EXPECT_TRUE(driver.writeList.isEmpty());
    EXPECT_EQ((Bytes{1, 2}), values("D", 5, 1, 2));
    EXPECT_EQ((Bytes{1}), values("M", 5, 1, 1));
    EXPECT_EQ(1, area("D", 5).bufferSelect);
}

struct WriteRow
{
    const char* name;
    const char* propertyString;
    const char* registerType;
    int start;
    int wordCount;
    const char* queued;
};

class WordPieces : public WriteRequests, public ::testing::WithParamInterface<WriteRow>
{};

// Each piece carries its own bytes of the host's data, and zeros behind them.
TEST_P(WordPieces, AreQueued)
{
    const WriteRow& row = GetParam();
    setUpDriver(row.propertyString);
    const Bytes data = counting(2 * row.wordCount);
    write(row.registerType, row.start, data, row.wordCount, 31);
    EXPECT_EQ(row.queued, textOf(driver.writeList));
    Bytes carried;
    for (const VARIABLE& piece : driver.writeList) {
        EXPECT_EQ(31, piece.tag);
        const Bytes bytes = firstBytes(piece.data, 2 * piece.count);
        carried.insert(carried.end(), bytes.begin(), bytes.end());
    }
    EXPECT_EQ(data, carried);
}

const WriteRow pieces[] = {
    {"Of32", "1#0#0#3#32", "D", 0, 70, "1#D0/32 1#D32/32 1#D64/6"},
    {"Of64", "1#0#0#3#64", "D", 0, 70, "1#D0/64 1#D64/6"},
    {"MultipleOfTheLimit", "1#0#0#3#32", "D", 5, 64, "1#D5/32 1#D37/32"},
    {"ExactlyTheLimit", "1#0#0#3#32", "D", 5, 32, "1#D5/32"},
    {"OneWord", "1#0#0#3#32", "TV", 5, 1, "1#TV5/1"},
    {"SpecialRegisters", "1#0#0#3#2", "SD", 8000, 3, "1#SD8000/2 1#SD8002/1"},
    {"CounterValues", "1#0#0#3#2", "CV", 0, 3, "1#CV0/2 1#CV2/1"},
    {"LongCountersAdvanceByWords", "1#0#0#3#4", "32CV", 200, 6, "1#32CV200/4 1#32CV204/2"},
    {"OddLimitSplitsACounter", "1#0#0#3#3", "32CV", 200, 4, "1#32CV200/3 1#32CV203/1"},
    {"LimitZeroCountsAsOne", "1#0#0#3#0", "D", 5, 3, "1#D5/1 1#D6/1 1#D7/1"},
    {"NegativeLimitCountsAsOne", "1#0#0#3#-4", "D", 5, 2, "1#D5/1 1#D6/1"},
    {"LimitOfTheLongestFrame", "1#0#0#3#253", "D", 0, 254, "1#D0/253 1#D253/1"},
    {"LimitBeyondTheLongestFrame", "1#0#0#3#254", "D", 0, 300, "1#D0/253 1#D253/47"},
    {"HugeLimit", "1#0#0#3#2147483647", "D", 0, 507, "1#D0/253 1#D253/253 1#D506/1"},
};

INSTANTIATE_TEST_SUITE_P(Limits, WordPieces, ::testing::ValuesIn(pieces), nameOf<WriteRow>);

TEST_F(WriteRequests, BitWithDataByteTwoIsForcedOff)
{
    write("Y", 8, {2}, 1);
    EXPECT_EQ("<STX>80805<ETX>08", nextFrame());
}

TEST_F(WriteRequests, HostDataIsLeftAsItWas)
{
    unsigned char data[] = {1, 2, 3, 4};
    intf_setData(1, QString::fromLatin1("D"), 0, 2, data, 0);
    EXPECT_EQ((Bytes{1, 2, 3, 4}), firstBytes(data, 4));
}

// Found by a soak: of writes that overlap, the PLC can get the older one last. The cache shows the
// newer until the registers are polled again.
TEST_F(WriteRequests, WriteThatReplacesAnotherGoesAheadOfAnOverlappingOneBetween)
{
    write("M", 0, {1}, 1);
    write("D", 10, {1, 1, 1, 1}, 2);
    write("D", 11, {2, 2, 2, 2}, 2);
    write("D", 10, {3, 3, 3, 3}, 2);
    ASSERT_EQ("1#M0/1 1#D10/2 1#D11/2", textOf(driver.writeList));
    nextFrame();
    acknowledge();
    EXPECT_EQ("<STX>110140403030303<ETX>EA", nextFrame());
    acknowledge();
    EXPECT_EQ("<STX>110160402020202<ETX>E8", nextFrame());
    acknowledge();
    EXPECT_EQ((Bytes{3, 3, 3, 3, 2, 2}), values("D", 10, 3, 6));
}

TEST_F(WriteRequests, BitWritesReplaceEachOtherBitByBit)
{
    driver.writeList << request("D", 0, 1);
    write("M", 0, {1, 1, 1}, 3);
    write("M", 1, {0}, 1);
    ASSERT_EQ("1#D0/1 1#M0/1 1#M1/1 1#M2/1", textOf(driver.writeList));
    EXPECT_EQ(0, driver.writeList.at(2).data[0]);
}

TEST_F(WriteRequests, AnyListIsServed)
{
    QList<VARIABLE> list;
    VARIABLE first = request("D", 1, 1);
    addVarToList(list, first);
    EXPECT_EQ("1#D1/1", textOf(list));
    EXPECT_TRUE(driver.writeList.isEmpty());
}
}  // namespace
