// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The limits by which requests are cut, for every word limit that a property string can bring, and
// how much of a long run one call serves.

#include "tests/support/driver_fixture.h"

namespace {
TEST_F(DriverTest, RequestsAreCutByNoLessThanOneWordOrEightBits)
{
    const struct
    {
        const char* propertyString;
        int words;
        int bits;
    } rows[] = {
        {"1#0#0#3#32", 32, 256},
        {"1#0#0#3#100000", 100000, 800000},  // more than the wire carries: not cut
        {"1#0#0#3#2147483647", 2147483647, 2147483647},
        {"1#0#0#3#1", 1, 8},
        {"1#0#0#3#0", 1, 8},
        {"1#0#0#3#-1", 1, 8},
        {"1#0#0#3#-2147483648", 1, 8},
        {"1#0#0#3#x", 1, 8},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.propertyString);
        setUpDriver(row.propertyString);
        EXPECT_EQ(row.words, wordsPerRequest());
        EXPECT_EQ(row.bits, bitsPerRequest());
    }
}

TEST(ServedCount, NoneBelowOneAndAtMost65536)
{
    EXPECT_EQ(0, servedCount(0, -2147483647 - 1));
    EXPECT_EQ(0, servedCount(0, 0));
    EXPECT_EQ(1, servedCount(0, 1));
    EXPECT_EQ(65536, servedCount(-1, 65536));
    EXPECT_EQ(65536, servedCount(0, 65537));
    EXPECT_EQ(65536, servedCount(-2147483647 - 1, 2147483647));
}

TEST(ServedCount, EndsAtTheLargestNumber)
{
    EXPECT_EQ(1, servedCount(2147483647, 2147483647));
    EXPECT_EQ(2, servedCount(2147483646, 3));
    EXPECT_EQ(65535, servedCount(2147483647 - 65534, 65536));
}
}  // namespace
