// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Numbers, places and ranges as people write them.

#include "tools/fxsim/plc/number_text.h"

#include <gtest/gtest.h>

using namespace fxsim;

TEST(NumberText, ReadsDecimalAndHex)
{
    EXPECT_EQ(parseNumber("10", 0, 100), 10);
    EXPECT_EQ(parseNumber("0x1f", 0, 100), 31);
    EXPECT_EQ(parseNumber("0X1F", 0, 100), 31);
    EXPECT_EQ(parseNumber("-5", -10, 100), -5);
    for (const char* text :
         {"", "0x", "x", "1.5", "101", "-11", "1 2", "0x-1", "0x+1", "+", "99999999999"})
        EXPECT_EQ(parseNumber(text, -10, 100), std::nullopt) << text;
}

TEST(NumberText, ReadsAddresses)
{
    EXPECT_EQ(parseByteAddress("0xFFFF"), 65535);
    EXPECT_EQ(parseByteAddress("0x10000"), std::nullopt);
    EXPECT_EQ(parseByteAddress("-1"), std::nullopt);
}

TEST(NumberText, ReadsBits)
{
    const std::optional<BitPlace> place = parseBitPlace("0x0100.7");
    ASSERT_TRUE(place);
    EXPECT_EQ(place->address, 0x0100);
    EXPECT_EQ(place->bit, 7);
    for (const char* text : {"0x0100", "0x0100.8", ".1", "0x0100.", "1.2.3"})
        EXPECT_FALSE(parseBitPlace(text)) << text;
}

TEST(NumberText, ReadsRanges)
{
    const auto ranges = parseRanges("0x0000-0x3FFF, 0x8000");
    ASSERT_TRUE(ranges);
    ASSERT_EQ(ranges->size(), 2);
    EXPECT_EQ(ranges->at(0).last, 0x3FFF);
    EXPECT_EQ(ranges->at(1).first, 0x8000);
    EXPECT_EQ(ranges->at(1).last, 0x8000);
    for (const char* text : {"", "1-", "2-1", "1-2-3", "1,,2", "0-0x10000"})
        EXPECT_FALSE(parseRanges(text)) << text;
}

TEST(NumberText, ReadsMirrors)
{
    const auto mirrors = parseMirrors("0x0F00:0x0E00:256");
    ASSERT_TRUE(mirrors);
    ASSERT_EQ(mirrors->size(), 1);
    EXPECT_EQ(mirrors->at(0).from, 0x0F00);
    EXPECT_EQ(mirrors->at(0).to, 0x0E00);
    EXPECT_EQ(mirrors->at(0).byteCount, 256);
    EXPECT_TRUE(parseMirrors("none")->isEmpty());
    for (const char* text : {"", "1:2", "1:2:0", "0xFFFF:0:2", "0:0xFFFF:2", "a:b:c"})
        EXPECT_FALSE(parseMirrors(text)) << text;
}
