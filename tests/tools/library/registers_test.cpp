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

// The frames of the driver say where each type lies.
TEST(RegisterTypes, KnowTheirAddressesOnTheWire)
{
    struct Row
    {
        const char* address;
        int read;
        int write;
    };
    const Row rows[] = {
        {"D100", 0x10C8, 0x10C8}, {"SD8001", 0x0E02, 0x0F02},  {"TV3", 0x0806, 0x0806},
        {"CV5", 0x0A0A, 0x0A0A},  {"32CV201", 0x0C04, 0x0C04}, {"Y11", 0x00A1, 0x0509},
        {"M9", 0x0101, 0x0809},   {"S9", 0x0001, 0x0009},      {"T9", 0x00C1, 0x0609},
        {"C9", 0x01C1, 0x0E09},   {"SM8009", 0x01E1, 0x0F09},
    };
    for (const Row& row : rows) {
        const RegisterRange one = range(row.address);
        EXPECT_EQ(one.type.readAddress(one.first), row.read) << row.address;
        EXPECT_EQ(one.type.writeAddress(one.first), row.write) << row.address;
    }
    EXPECT_EQ(range("X17").type.readAddress(15), 0x0081);
}

TEST(Aliases, AreTheUpperEndsOfTwoTypes)
{
    const auto textOf = [](const char* address) {
        const std::optional<Alias> alias = catalogue().aliasIn(range(address));
        return alias ? alias->text().toStdString() : "none";
    };
    EXPECT_EQ(textOf("D8127"), "none");
    EXPECT_EQ(textOf("D8128"), "a write to D8128 changes D0");
    EXPECT_EQ(textOf("D8200"), "a write to D8200 changes D72");
    EXPECT_EQ(textOf("SD8120:16"), "a write to SD8128:8 changes D0:8");
    EXPECT_EQ(textOf("SD8255"), "a write to SD8255 changes D127");
    EXPECT_EQ(textOf("M1535"), "none");
    EXPECT_EQ(textOf("M1536"), "M1536 and C0 are the same memory");
    EXPECT_EQ(textOf("M1791:2"), "M1791 and C255 are the same memory");
    EXPECT_EQ(textOf("M1792"), "M1792 and SM8000 are the same memory");
    EXPECT_EQ(textOf("M2047"), "M2047 and SM8255 are the same memory");
    EXPECT_EQ(textOf("M2048:1024"), "none");
    for (const char* const own : {"D0:8000", "C0:256", "SM8000:256", "X0:256", "Y0:256", "S0:1000",
                                  "T0:256", "TV0:256", "CV0:200", "32CV200:56"})
        EXPECT_EQ(textOf(own), "none") << own;
}
