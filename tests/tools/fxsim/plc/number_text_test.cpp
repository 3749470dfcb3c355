// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Numbers, places and ranges as people write them.

#include "tests/tools/fxsim/support.h"
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
                  QString("invalid number '%1': expected -10 to 100").arg(text));
    EXPECT_EQ(errorText([] { parseNumber("2", 1, 1, "byte"); }), "invalid byte '2': expected 1");
}

TEST(NumberText, ReadsAddresses)
{
    EXPECT_EQ(parseByteAddress("0xFFFF"), 65535);
    for (const char* text : {"0x10000", "-1", "D"})
        EXPECT_EQ(errorText([text] { parseByteAddress(text); }),
                  QString("invalid address '%1': expected a device, as in D100, or 0x0000 "
                          "to 0xFFFF")
                      .arg(text));
}

TEST(NumberText, ReadsBytesAndBits)
{
    EXPECT_EQ(parsePlace("0x0100").address, 0x0100);
    EXPECT_EQ(parsePlace("0x0100").bit, std::nullopt);
    EXPECT_EQ(parsePlace("0x0100.7").address, 0x0100);
    EXPECT_EQ(parsePlace("0x0100.7").bit, 7);
    EXPECT_EQ(errorText([] { parsePlace("0x0100.8"); }), "invalid bit number '8': expected 0 to 7");
    for (const char* text : {"0x0100.", ".1", "1.2.3", "M0.1", "D0.16", "D0."})
        EXPECT_THROW(parsePlace(text), Error) << text;
}

TEST(NumberText, ReadsDevices)
{
    const struct
    {
        const char* text;
        int address;
        int bit;  // -1: a word or a counter
    } rows[] = {
        {"X0", 0x0080, 0},       {"X17", 0x0081, 7},      {"Y377", 0x00BF, 7},
        {"M0", 0x0100, 0},       {"M1535", 0x01BF, 7},    {"M2048", 0x0200, 0},
        {"M3071", 0x027F, 7},    {"M8000", 0x01E0, 0},    {"SM8255", 0x01FF, 7},
        {"S999", 0x007C, 7},     {"T3", 0x00C0, 3},       {"C255", 0x01DF, 7},
        {"d100", 0x10C8, -1},    {"D7999", 0x4E7E, -1},   {"D8000", 0x0E00, -1},
        {"SD8001", 0x0E02, -1},  {"TV255", 0x09FE, -1},   {"CV199", 0x0B8E, -1},
        {"32CV200", 0x0C00, -1}, {"32cv255", 0x0CDC, -1}, {"D100.0", 0x10C8, 0},
        {"D100.15", 0x10C9, 7},
    };
    for (const auto& row : rows) {
        const MemoryPlace place = parsePlace(row.text);
        EXPECT_EQ(place.address, row.address) << row.text;
        EXPECT_EQ(place.bit.value_or(-1), row.bit) << row.text;
    }
    const struct
    {
        const char* text;
        const char* expected;
    } wrong[] = {
        {"X8", "X0 to X377, in octal"},
        {"M1600", "M0 to M1535 or M2048 to M3071 or M8000 to M8255"},
        {"D99999999999", "D0 to D7999 or D8000 to D8255"},
        {"32CV199", "32CV200 to 32CV255"},
        {"Q5", "X, Y, M, S, T, C, D, TV, CV or 32CV"},
    };
    for (const auto& row : wrong)
        EXPECT_EQ(errorText([&row] { parsePlace(row.text); }),
                  QString("invalid device '%1': expected %2").arg(row.text, row.expected));
}

TEST(NumberText, ReadsRanges)
{
    const struct
    {
        const char* text;
        int first;
        int last;
    } rows[] = {
        {"0x0000-0x3FFF", 0, 0x3FFF}, {"0x8000", 0x8000, 0x8000},  {"D0-D1", 0x1000, 0x1003},
        {"X0-X17", 0x0080, 0x0081},   {"32CV255", 0x0CDC, 0x0CDF}, {"D0-0x10FF", 0x1000, 0x10FF},
    };
    for (const auto& row : rows) {
        const QVector<AddressRange> ranges = parseRanges(QString("0x0001, ") + row.text);
        ASSERT_EQ(ranges.size(), 2);
        EXPECT_EQ(ranges[1].first, row.first) << row.text;
        EXPECT_EQ(ranges[1].last, row.last) << row.text;
    }
    for (const char* text : {"", "0x1-", "D1-D0-D2", "0x1,,0x2", "0x0-0x10000"})
        EXPECT_THROW(parseRanges(text), Error) << text;
    EXPECT_EQ(errorText([] { parseRanges("0x0,D2-D1"); }),
              "invalid range 'D2-D1': expected FIRST-LAST, as in 0x0000-0x7FFF or D0-D99");
    EXPECT_EQ(errorText([] { parseRanges("5"); }),
              "invalid address '5': expected hex, as in 0x1000, or a device, as in D0");
}

TEST(NumberText, ReadsMirrors)
{
    const QVector<MirrorWindow> mirrors = parseMirrors("0x0F00:0x0E00:256");
    ASSERT_EQ(mirrors.size(), 1);
    EXPECT_EQ(mirrors[0].from, 0x0F00);
    EXPECT_EQ(mirrors[0].to, 0x0E00);
    EXPECT_EQ(mirrors[0].byteCount, 256);
    EXPECT_TRUE(parseMirrors("none").isEmpty());
    for (const char* text : {"", "0x1:0x2:0", "0xFFFF:0x0:2", "0x0:0xFFFF:2", "a:b:c", "1:2:3"})
        EXPECT_THROW(parseMirrors(text), Error) << text;
    EXPECT_EQ(errorText([] { parseMirrors("1:2"); }),
              "invalid mirror '1:2': expected FROM:TO:BYTES, as in 0x0F00:0x0E00:256, or none");
}

TEST(NumberText, GuessesAWordOfAtMostTwoMistakes)
{
    const QStringList known = {"poke", "peek", "trace"};
    const QString peek = " (did you mean peek?)";
    EXPECT_EQ(didYouMean("pek", known), peek);
    EXPECT_EQ(didYouMean("pk", {"peek"}), peek);
    EXPECT_EQ(didYouMean("peeeek", known), peek);
    EXPECT_EQ(didYouMean("paak", known), peek);
    EXPECT_EQ(didYouMean("paaak", known), "") << "three";
    EXPECT_EQ(didYouMean("trxyz", known), "");
    EXPECT_EQ(didYouMean("xy", {"ab"}), "") << "nothing of it is left";
    EXPECT_EQ(didYouMean("axy", {"abc"}), "") << "one letter is left";
}
