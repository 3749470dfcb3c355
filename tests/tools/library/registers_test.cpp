// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Register types as the driver describes them, runs of registers and their parts.

#include "tests/tools/support/loaded_driver.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

TEST(Catalogue, HoldsEachTypeAsTheDriverDescribesIt)
{
    QStringList rows;
    for (const RegisterType& type : catalogue().all()) {
        rows += QStringLiteral("%1 %2..%3 base %4, %5%6")
                    .arg(type.name, type.numberText(type.lowest), type.numberText(type.highest))
                    .arg(type.numberBase)
                    .arg(widthText(type.width), type.writable ? ", writable" : "");
    }
    EXPECT_EQ(rows.join('\n').toStdString(), R"(X 0..377 base 8, bit
Y 0..377 base 8, bit, writable
M 0..3071 base 10, bit, writable
S 0..999 base 10, bit, writable
SM 8000..8255 base 10, bit, writable
T 0..255 base 10, bit, writable
C 0..255 base 10, bit, writable
D 0..7999 base 10, 16 bits, writable
SD 8000..8255 base 10, 16 bits, writable
TV 0..255 base 10, 16 bits, writable
CV 0..199 base 10, 16 bits, writable
32CV 200..255 base 10, 32 bits, writable)");
    EXPECT_EQ(catalogue().find("x"), nullptr);
}

TEST(RegisterTypes, CountAsTheDriverDoes)
{
    struct Row
    {
        const char* type;
        int registers;
        int valueBytes;
        int driverCountOf3;
        int mostInFrameOf32Words;
        int mostInFrameOf1Word;
    };
    const Row rows[] = {
        {"X", 256, 1, 3, 256, 8},
        {"D", 8000, 2, 3, 32, 1},
        {"32CV", 56, 4, 6, 16, 1},
    };
    for (const Row& row : rows) {
        const RegisterType& type = *catalogue().find(row.type);
        EXPECT_EQ(type.registers(), row.registers) << row.type;
        EXPECT_EQ(type.valueBytes(), row.valueBytes) << row.type;
        EXPECT_EQ(type.driverCount(3), row.driverCountOf3) << row.type;
        EXPECT_EQ(type.mostInFrame(32), row.mostInFrameOf32Words) << row.type;
        EXPECT_EQ(type.mostInFrame(1), row.mostInFrameOf1Word) << row.type;
    }
}

TEST(Ranges, AreCutAndNamed)
{
    const RegisterRange whole = range("2#X6:8");
    EXPECT_EQ(whole.nameOf(2), "2#X10");
    const RegisterRange part = whole.part(2, 3);
    EXPECT_EQ(part.text(), "2#X10:3");
    EXPECT_EQ(part.first, 8);
    EXPECT_EQ(part.part(2, 1).text(), "2#X12");
}

// Bits go into the plan from the first of their byte on.
TEST(Ranges, BecomeKeysOfThePlan)
{
    const KEY_ADDRESS words = planKey(range("3#D5:7"));
    EXPECT_EQ(words.stationNo, 3);
    EXPECT_EQ(words.registerType, "D");
    EXPECT_EQ(words.startIndex, 5);
    EXPECT_EQ(words.length, 7);
    const KEY_ADDRESS bits = planKey(range("M13:4"));
    EXPECT_EQ(bits.startIndex, 8);
    EXPECT_EQ(bits.length, 9);
    EXPECT_EQ(planKey(range("M16")).startIndex, 16);
    EXPECT_EQ(planKey(range("M16")).length, 1);
}
