// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the soak measures with: the line through memory, and the book of writes.

#include "memory_trend.h"
#include "write_book.h"

#include <gtest/gtest.h>

using namespace fxsoak;

namespace {

fxtools::RegisterRange words(int first, int count)
{
    fxtools::RegisterType type;
    type.name = QStringLiteral("D");
    return {type, 1, first, count};
}

fxtools::RegisterRange bits(int first, int count)
{
    fxtools::RegisterRange range = words(first, count);
    range.type.name = QStringLiteral("M");
    range.type.width = fxtools::RegisterWidth::Bit;
    return range;
}

}  // namespace

TEST(MemoryTrend, ALeakOfAKilobyteInEachHundredExchangesIsSeen)
{
    MemoryTrend trend;
    for (int sample = 0; sample <= 100; ++sample)
        trend.add(1000 * sample, 4096 * (sample * 10240 / 4096));  // whole pages
    EXPECT_NEAR(trend.bytesAnExchange(), 10.24, 0.01);
    EXPECT_NEAR(trend.fittedGrowthBytes(), 1024000, 1000);
}

TEST(MemoryTrend, AStepThatStaysIsLittleASlope)
{
    MemoryTrend trend;
    for (int sample = 0; sample <= 100; ++sample)
        trend.add(1000 * sample, sample < 10 ? 1000000 : 1016384);
    EXPECT_LT(trend.fittedGrowthBytes(), 16384);
}

TEST(MemoryTrend, ThisProcessHoldsSomething)
{
    EXPECT_GT(residentBytes(), 100000);
}

TEST(WriteBook, WordsAreCutByTheFrame)
{
    WriteBook book(32);
    book.add(words(10, 40), QVector<quint32>(40, 7));
    ASSERT_EQ(book.size(), 2);
    EXPECT_EQ(book.next().first, 10);
    EXPECT_EQ(book.next().count, 32);
    book.endNext();
    EXPECT_EQ(book.next().first, 42);
    EXPECT_EQ(book.next().count, 8);
}

TEST(WriteBook, ALaterWriteTakesThePlaceOfAllButTheNextOne)
{
    WriteBook book(32);
    book.add(words(10, 1), {1});
    book.add(words(10, 1), {2});
    book.add(words(20, 1), {3});
    book.add(words(10, 1), {4});
    ASSERT_EQ(book.size(), 3);
    EXPECT_EQ(book.replaced(), 1);
    EXPECT_EQ(book.next().values, QVector<quint32>{1});
    book.endNext();
    EXPECT_EQ(book.next().values, QVector<quint32>{4});
    EXPECT_EQ(book.lastWritten("D", 10), 4U);
}

TEST(WriteBook, AWaitingBitCoversItsByte)
{
    WriteBook book(32);
    book.add(bits(9, 1), {1});
    EXPECT_FALSE(book.mayCover(bits(0, 1).type, 7));
    EXPECT_TRUE(book.mayCover(bits(0, 1).type, 8));
    EXPECT_TRUE(book.mayCover(bits(0, 1).type, 15));
    EXPECT_FALSE(book.mayCover(words(0, 1).type, 9));
}

TEST(ReadBook, BitsCountBytesAndAnEqualReadDoesNotWaitTwice)
{
    ReadBook book;
    book.add(words(10, 3));
    book.add(bits(8, 9));
    book.add(bits(8, 9));
    ASSERT_EQ(book.size(), 2);
    EXPECT_EQ(book.next().count, 3);
    book.endNext();
    EXPECT_EQ(book.next().count, 2);
    book.keepFirst(0);
    EXPECT_TRUE(book.isEmpty());
}
