// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Numbers, places and ranges as people write them.

#include "tests/tools/fxsim/error_text.h"
#include "tests/tools/fxsim/printing.h"
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
        EXPECT_EQ(errorText([text] { parseNumber(text, -10, 100); }),
                  QStringLiteral("invalid number '%1': expected -10 to 100").arg(text));
    EXPECT_EQ(errorText([] { parseNumber("2", 1, 1, "byte"); }), "invalid byte '2': expected 1");
}

TEST(NumberText, ReadsAddresses)
{
    EXPECT_EQ(parseByteAddress("0xFFFF"), 65535);
    for (const char* text : {"0x10000", "-1", "D5"})
        EXPECT_EQ(errorText([text] { parseByteAddress(text); }),
                  QStringLiteral("invalid byte address '%1': expected 0x0000 to 0xFFFF").arg(text));
}

TEST(NumberText, ReadsBytesAndBits)
{
    EXPECT_EQ(parsePlace("0x0100").address, 0x0100);
    EXPECT_EQ(parsePlace("0x0100").bit, std::nullopt);
    EXPECT_EQ(parsePlace("0x0100.7").address, 0x0100);
    EXPECT_EQ(parsePlace("0x0100.7").bit, 7);
    EXPECT_EQ(errorText([] { parsePlace("0x0100.8"); }), "invalid bit number '8': expected 0 to 7");
    for (const char* text : {"0x0100.", ".1", "1.2.3"})
        EXPECT_THROW(parsePlace(text), Error) << text;
}

TEST(NumberText, ReadsRanges)
{
    const QVector<AddressRange> ranges = parseRanges("0x0000-0x3FFF, 0x8000");
    ASSERT_EQ(ranges.size(), 2);
    EXPECT_EQ(ranges[0].last, 0x3FFF);
    EXPECT_EQ(ranges[1].first, 0x8000);
    EXPECT_EQ(ranges[1].last, 0x8000);
    for (const char* text : {"", "1-", "2-1", "1-2-3", "1,,2", "0-0x10000"})
        EXPECT_THROW(parseRanges(text), Error) << text;
    EXPECT_EQ(errorText([] { parseRanges("0,2-1"); }),
              "invalid address range '2-1': expected FIRST-LAST, as in 0x0000-0x7FFF");
}

TEST(NumberText, ReadsMirrors)
{
    const QVector<MirrorWindow> mirrors = parseMirrors("0x0F00:0x0E00:256");
    ASSERT_EQ(mirrors.size(), 1);
    EXPECT_EQ(mirrors[0].from, 0x0F00);
    EXPECT_EQ(mirrors[0].to, 0x0E00);
    EXPECT_EQ(mirrors[0].byteCount, 256);
    EXPECT_TRUE(parseMirrors("none").isEmpty());
    for (const char* text : {"", "1:2:0", "0xFFFF:0:2", "0:0xFFFF:2", "a:b:c"})
        EXPECT_THROW(parseMirrors(text), Error) << text;
    EXPECT_EQ(errorText([] { parseMirrors("1:2"); }),
              "invalid mirror '1:2': expected FROM:TO:BYTES, as in 0x0F00:0x0E00:256, or none");
}
