// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Writes as people ask for them: what goes into which registers, and what is refused.

#include "tests/tools/support/loaded_driver.h"
#include "tools/library/assignments.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

const ValueStyle plain;
const ValueStyle longStyle = {ValueFormat::Long};
const ValueStyle floatStyle = {ValueFormat::Float};
const ValueStyle textStyle = {ValueFormat::Text};

struct Row
{
    const char* text;
    ValueStyle style;
    const char* registers;
    QVector<quint32> values;
};

const Row rows[] = {
    {"D100=5", plain, "D100", {5}},
    {"D10:3=1,-1,0x1F", plain, "D10:3", {1, 65535, 31}},
    {"D0-D1=1,2", plain, "D0:2", {1, 2}},
    {"D20:2=70000", plain, "D20:2", {0x1170, 1}},
    {"D20=70000", longStyle, "D20:2", {0x1170, 1}},
    {"D20:4=1,2", longStyle, "D20:4", {1, 0, 2, 0}},
    {"D20=3.14", floatStyle, "D20:2", {0xF5C3, 0x4048}},
    {"D0:2=A,b", textStyle, "D0:2", {0x2C41, 0x62}},
    {"32CV200:2=1,70000", plain, "32CV200:2", {1, 70000}},
    {"M0:3=on,0,1", plain, "M0:3", {1, 0, 1}},
    {"D100.5=on", plain, "D100", {1}},
    {"K1M4=5", plain, "M4:4", {1, 0, 1, 0}},
};

struct BadRow
{
    const char* text;
    ValueStyle style;
    const char* says;
};

const BadRow badRows[] = {
    {"D0", plain, "'D0' has no value; use for example D100=5 or M0=on"},
    {"=5", plain, "'=5' has no value; use for example D100=5 or M0=on"},
    {"X0=1", plain, "'X0=1': X registers are read-only"},
    {"D40=3,14", plain,
     "'D40=3,14' needs 2 registers, but names 1; use D40:2=3,14; a decimal number has a point: "
     "D40=3.14 --as float"},
    {"D40=1,2,3", plain, "'D40=1,2,3' needs 3 registers, but names 1; use D40:3=1,2,3"},
    {"D0:3=1", plain, "'D0:3=1' needs 1 register, but names 3; use D0:1=1"},
    {"D0:2=1,2", longStyle,
     "'D0:2=1,2' needs 4 registers, but names 2; use D0:4=1,2; a decimal "
     "number has a point: D0=1.2 --as float"},
    {"D20=70000", plain,
     "value '70000' does not fit in 16 bits: -32768 to 65535; for 32 bits use D20:2=70000 or "
     "D20=70000 --as long"},
    {"D0:3=1,2.5,3", plain,
     "value '2.5' is not a whole number; for a floating-point number in two words use --as float"},
    {"D7999:2=1,2", plain, "'D7999:2' is out of range: D0 to D7999 or D8000 to D8255 in decimal"},
    {"D100.5=2", plain, "value '2' is not a bit; use 0, 1, on or off"},
    {"K1M0=16", plain, "value '16' does not fit in 4 bits: 0 to 15"},
};

}  // namespace

TEST(Assignments, SayRegistersAndValues)
{
    for (const Row& row : rows) {
        const Assignment assignment = parseAssignment(row.text, catalogue(), row.style);
        EXPECT_EQ(assignment.asked.range.text(), row.registers) << row.text;
        EXPECT_EQ(assignment.values, row.values) << row.text;
    }
}

TEST(Assignments, GuessNothing)
{
    for (const BadRow& row : badRows) {
        try {
            parseAssignment(row.text, catalogue(), row.style);
            ADD_FAILURE() << "took " << row.text;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), ExitCode::Usage) << row.text;
            EXPECT_STREQ(failure.what(), row.says);
        }
    }
}

TEST(Assignments, OfOneBitKeepTheOthers)
{
    const auto over = [](const char* text, quint32 before) {
        return parseAssignment(text, catalogue(), plain).valuesOver({before}).value(0);
    };
    EXPECT_EQ(over("D100.5=1", 0x8001), 0x8021U);
    EXPECT_EQ(over("D100.15=0", 0x8001), 0x0001U);
    EXPECT_EQ(over("D100=7", 0x8001), 7U);
}

TEST(Assignments, ThatHitOtherRegistersAreRefused)
{
    EXPECT_NO_THROW(requireOwnMemory(range("D0:128"), catalogue()));
    try {
        requireOwnMemory(range("D8200"), catalogue());
        ADD_FAILURE();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::Usage);
        EXPECT_STREQ(failure.what(),
                     "a write to D8200 changes D72; to write there anyway use --force");
    }
}
