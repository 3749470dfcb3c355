// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The limits by which requests are cut, for every word limit that a property string can bring, and
// how much of a long run one call serves.

#include "tests/support/driver_fixture.h"

#include <ostream>

namespace {
struct Row
{
    const char* name;
    const char* propertyString;
    int words;
    int bits;
};

std::ostream& operator<<(std::ostream& out, const Row& row)
{
    return out << row.propertyString;
}

class RequestLimits : public DriverTest, public ::testing::WithParamInterface<Row>
{};

TEST_P(RequestLimits, NeverDivideByLessThanOneWordOrEightBits)
{
    setUpDriver(GetParam().propertyString);
    EXPECT_EQ(GetParam().words, wordsPerRequest());
    EXPECT_EQ(GetParam().bits, bitsPerRequest());
}

const Row rows[] = {
    {"Usual", "1#0#0#3#32", 32, 256},
    {"BeyondTheWire", "1#0#0#3#100000", 100000, 800000},
    {"LargestStaysPositive", "1#0#0#3#2147483647", 2147483647, 2147483647},
    {"One", "1#0#0#3#1", 1, 8},
    {"ZeroCountsAsOne", "1#0#0#3#0", 1, 8},
    {"MinusOneCountsAsOne", "1#0#0#3#-1", 1, 8},
    {"SmallestIntegerCountsAsOne", "1#0#0#3#-2147483648", 1, 8},
    {"NoNumberCountsAsOne", "1#0#0#3#x", 1, 8},
};

INSTANTIATE_TEST_SUITE_P(PropertyStrings, RequestLimits, ::testing::ValuesIn(rows),
                         [](const auto& row) { return std::string(row.param.name); });

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
