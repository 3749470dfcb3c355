// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The property string of a connection: which text gives which numbers, and the two frame limits
// that follow from the fifth.

#include "tests/support/driver_fixture.h"

namespace {
struct Row
{
    const char* name;
    const char* propertyString;
    std::vector<int> fields;  // link, cache only, stored, fail limit, word limit, stored
    int maxWords;
    int maxBits;
};

std::vector<int> propertyFields()
{
    return {driver.linkNo,    driver.cacheOnlyWrites, driver.propertyField2,
            driver.failLimit, driver.frameWordLimit,  driver.propertyField5};
}

class PropertyString : public DriverTest, public ::testing::WithParamInterface<Row>
{};

// The connection before it had 9 in every field, so that a field left alone is seen.
TEST_P(PropertyString, GivesFieldsAndLimits)
{
    setUpDriver("9#9#9#9#9#9");
    setUpDriver(GetParam().propertyString);
    EXPECT_EQ(GetParam().fields, propertyFields());
    EXPECT_EQ(GetParam().maxWords, driver.maxWordsPerFrame);
    EXPECT_EQ(GetParam().maxBits, driver.maxBitsPerFrame);
}

const Row rows[] = {
    {"FiveFieldsZeroTheSixth", "1#0#0#0#32", {1, 0, 0, 0, 32, 0}, 32, 256},
    {"SixFieldsAreAllTaken", "1#0#0#0#32#7", {1, 0, 0, 0, 32, 7}, 32, 256},
    {"FieldsBeyondTheSixthAreIgnored", "1#0#0#0#32#7#9", {1, 0, 0, 0, 32, 7}, 32, 256},
    {"EachFieldHasItsPlace", "1#2#3#4#5#6", {1, 2, 3, 4, 5, 6}, 5, 40},
    {"FourFieldsChangeNothing", "1#2#3#4", {9, 9, 9, 9, 9, 9}, 9, 72},
    {"OneFieldChangesNothing", "1", {9, 9, 9, 9, 9, 9}, 9, 72},
    {"EmptyTextChangesNothing", "", {9, 9, 9, 9, 9, 9}, 9, 72},
    {"LettersAreZero", "a#b#c#d#e", {0, 0, 0, 0, 0, 0}, 0, 0},
    {"EmptyFieldsAreKeptAndZero", "####", {0, 0, 0, 0, 0, 0}, 0, 0},
    {"EmptyFieldsInBetweenKeepTheirPlace", "1##3##5#", {1, 0, 3, 0, 5, 0}, 5, 40},
    {"LettersInTheSixthAreZero", "1#2#3#4#5#x", {1, 2, 3, 4, 5, 0}, 5, 40},
    {"NumberWithATailIsZero", "1x#2.0#0x3#4#5", {0, 0, 0, 4, 5, 0}, 5, 40},
    {"BlanksAroundANumberAreSkipped", " 1#2 # 3 #4#5", {1, 2, 3, 4, 5, 0}, 5, 40},
    {"SignsAreTaken", "+1#-2#3#4#-5", {1, -2, 3, 4, -5, 0}, -5, -40},
    {"LeadingZerosStayDecimal", "010#0#0#0#010", {10, 0, 0, 0, 10, 0}, 10, 80},
    {"NumberBeyond32BitsIsZero", "2147483648#0#0#0#99999999999", {0, 0, 0, 0, 0, 0}, 0, 0},
    {"LargestNumberIsTaken", "2147483647#0#0#0#1", {2147483647, 0, 0, 0, 1, 0}, 1, 8},
    {"BitLimitSaturates",
     "1#0#0#0#2147483647",
     {1, 0, 0, 0, 2147483647, 0},
     2147483647,
     2147483647},
    {"BitLimitSaturatesJustPastTheRange",
     "1#0#0#0#268435456",
     {1, 0, 0, 0, 268435456, 0},
     268435456,
     2147483647},
    {"BitLimitBelowTheRangeIsExact",
     "1#0#0#0#268435455",
     {1, 0, 0, 0, 268435455, 0},
     268435455,
     2147483640},
    {"NegativeBitLimitSaturates",
     "1#0#0#0#-2147483648",
     {1, 0, 0, 0, -2147483647 - 1, 0},
     -2147483647 - 1,
     -2147483647 - 1},
    {"OtherSeparatorsDoNotSeparate", "1,0,0,0,32", {9, 9, 9, 9, 9, 9}, 9, 72},
    {"HighLatin1CharactersAreNoDigits", "\xB9#\xB2#\xB3#\xE4#\xFF", {0, 0, 0, 0, 0, 0}, 0, 0},
};

INSTANTIATE_TEST_SUITE_P(Texts, PropertyString, ::testing::ValuesIn(rows), nameOf<Row>);

TEST_F(DriverTest, NullPropertyStringCountsAsEmpty)
{
    setUpDriver("1#2#3#4#5#6");
    setUpDriver(nullptr);
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 6}), propertyFields());
    EXPECT_EQ(5, driver.maxWordsPerFrame);
    EXPECT_EQ(40, driver.maxBitsPerFrame);
}

TEST_F(DriverTest, VeryLongPropertyStringIsTaken)
{
    const std::string text = "1#0#0#0#32" + std::string(100000, '#');
    setUpDriver(text.c_str());
    EXPECT_EQ((std::vector<int>{1, 0, 0, 0, 32, 0}), propertyFields());
}
}  // namespace
