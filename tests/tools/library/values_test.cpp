// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values as people write and read them, over registers of each width; then writes as people ask for
// them: what goes into which registers, and what is refused.

#include "tests/tools/support/failure_of.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/library/assignments.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

using Registers = QVector<quint32>;

struct Written
{
    const char* target;
    ValueStyle style;
    const char* text;
    Registers registers;
};

const ValueStyle plain;
const ValueStyle unsignedStyle = {ValueFormat::Unsigned};
const ValueStyle hex = {ValueFormat::Hex};
const ValueStyle binary = {ValueFormat::Binary};
const ValueStyle bcd = {ValueFormat::Bcd};
const ValueStyle longStyle = {ValueFormat::Long};
const ValueStyle ulongStyle = {ValueFormat::ULong};
const ValueStyle floatStyle = {ValueFormat::Float};
const ValueStyle textStyle = {ValueFormat::Text};
const ValueStyle swapped = {ValueFormat::Long, true};

const Written writtenValues[] = {
    {"D0", plain, "65535", {65535}},
    {"D0", plain, "-1", {65535}},
    {"D0", plain, "-32768", {32768}},
    {"D0", plain, "0x1e", {30}},
    {"D0", plain, "0XFFFF", {65535}},
    {"D0", plain, "0b101", {5}},
    {"D0:2", plain, "70000", {0x1170, 1}},
    {"D0:2", plain, "-32769", {0x7FFF, 0xFFFF}},
    {"D0:2", plain, "5", {5, 0}},
    {"D0", unsignedStyle, "65535", {65535}},
    {"D0", hex, "1E", {0x1E}},
    {"D0", hex, "0b1", {0xB1}},
    {"D0", hex, "0x0b1", {0xB1}},
    {"D0:2", hex, "12345678", {0x5678, 0x1234}},
    {"D0", binary, "101", {5}},
    {"D0", binary, "0b11", {3}},
    {"D0", binary, "0x11", {0x11}},
    {"D0", bcd, "1234", {0x1234}},
    {"D0:2", bcd, "12345678", {0x5678, 0x1234}},
    {"D0:2", longStyle, "5", {5, 0}},
    {"D0:2", longStyle, "-2", {0xFFFE, 0xFFFF}},
    {"D0:2", swapped, "70000", {1, 0x1170}},
    {"D0:2", ulongStyle, "4294967295", {0xFFFF, 0xFFFF}},
    {"D0:2", floatStyle, "2", {0, 0x4000}},
    {"D0:2", floatStyle, "3.14", {0xF5C3, 0x4048}},
    {"D0:2", {ValueFormat::Float, true}, "3.14", {0x4048, 0xF5C3}},
    {"D0:3", textStyle, "Abc", {0x6241, 0x63, 0}},
    {"D0", textStyle, "Ab", {0x6241}},
    {"32CV200", plain, "-1", {0xFFFFFFFF}},
    {"32CV200", plain, "65536", {65536}},
    {"32CV200", plain, "4294967295", {0xFFFFFFFF}},
    {"32CV200", plain, "-2147483648", {0x80000000}},
    {"32CV200", longStyle, "7", {7}},
    {"M0", plain, "1", {1}},
    {"M0", plain, "On", {1}},
    {"M0", plain, "0", {0}},
    {"M0", plain, "off", {0}},
    {"M0", floatStyle, "1", {1}},
};

struct Unfit
{
    const char* target;
    ValueStyle style;
    const char* text;
    const char* says;  // behind the value in quotes
};

const char* const noNumber = "is not a number; use 123, -5, 0x1F or 0b101";
const char* const noInteger =
    "is not a whole number; for a floating-point number in two words use --as float";

const Unfit unfitValues[] = {
    {"D0", plain, "", noNumber},
    {"D0", plain, "12a", noNumber},
    {"D0", plain, "0x", noNumber},
    {"D0", plain, "1.5.5", noNumber},
    {"D0", plain, "3.14", noInteger},
    {"D0", plain, "1e2", noInteger},
    {"D0:2", longStyle, "1.5", noInteger},
    {"32CV200", plain, "1.5", noInteger},
    {"D20", plain, "70000",
     "does not fit in 16 bits: -32768 to 65535; for 32 bits use D20:2=70000 or D20=70000 --as "
     "long"},
    {"D20", unsignedStyle, "-1",
     "does not fit in 16 bits: 0 to 65535; for 32 bits use D20:2=-1 or D20=-1 --as long"},
    {"D0:2", plain, "4294967296", "does not fit in 32 bits: -2147483648 to 4294967295"},
    {"D0:2", plain, "-2147483649", "does not fit in 32 bits: -2147483648 to 4294967295"},
    {"32CV200", plain, "4294967296", "does not fit in 32 bits: -2147483648 to 4294967295"},
    {"D0", binary, "102", noNumber},
    {"D0", bcd, "12345",
     "does not fit in 4 BCD digits; for 32 bits use D0:2=12345 or D0=12345 --as long"},
    {"D0:2", bcd, "123456789", "does not fit in 8 BCD digits"},
    {"D0:2", floatStyle, "1e99", "is not a floating-point number, or is out of its range"},
    {"32CV200", floatStyle, "1", "is a floating-point number, which needs 16-bit registers"},
    {"D0", textStyle, "abc", "has 3 characters, but D0 holds 2; use D0:2"},
    {"32CV200", textStyle, "a", "is a text, which needs 16-bit registers"},
    {"M0", plain, "2", "is not a bit; use 0, 1, on or off"},
    {"M0", plain, "", "is not a bit; use 0, 1, on or off"},
};

struct Shown
{
    const char* target;
    ValueStyle style;
    Registers registers;
    QJsonValue json;
};

const Shown shownValues[] = {
    {"D0", plain, {65535}, -1},
    {"D0", plain, {32767}, 32767},
    {"D0:2", plain, {0x1170, 1}, 70000},
    {"D0", unsignedStyle, {65535}, 65535},
    {"D0", hex, {0xAB}, "0x00AB"},
    {"D0:2", hex, {0xAB, 1}, "0x000100AB"},
    {"D0", binary, {5}, "0b0000000000000101"},
    {"D0", bcd, {0x1234}, 1234},
    {"D0", bcd, {0x12AB}, "not BCD: 0x12AB"},
    {"D0:2", longStyle, {1, 0x8000}, -2147483647},
    {"D0:2", swapped, {0x8000, 1}, -2147483647},
    {"D0:2", ulongStyle, {1, 0x8000}, 2147483649.0},
    {"D0:2", floatStyle, {0xF5C3, 0x4048}, 3.14},
    {"D0:2", floatStyle, {0, 0x7F80}, "inf"},
    {"D0:3", textStyle, {0x6241, 0x0163, 0}, "Abc."},
    {"32CV200", plain, {0xFFFFFFFF}, -1},
    {"32CV200", plain, {0xFFFF}, 65535},
    {"32CV200", unsignedStyle, {0xFFFFFFFF}, 4294967295.0},
    {"32CV200", longStyle, {0xFFFFFFFE}, -2},
    {"32CV200", hex, {0xAB}, "0x000000AB"},
    {"M0", plain, {1}, 1},
    {"M0", hex, {1}, 1},
    {"M0", binary, {0}, 0},
    {"D100.5", plain, {0x20}, 1},
    {"D100.5", hex, {0xFFDF}, 0},
    {"K2M0", plain, {1, 0, 1, 0, 0, 0, 0, 1}, 0x85},
    {"K2M0", hex, {1, 0, 1, 0, 0, 0, 0, 1}, "0x85"},
    {"K4M0", plain, Registers(16, 1), -1},
    {"K8M0", plain, Registers(32, 1), -1},
};

struct Asked
{
    const char* text;
    ValueStyle style;
    const char* registers;
    QVector<quint32> values;
};

const Asked askedWrites[] = {
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

struct Refused
{
    const char* text;
    ValueStyle style;
    const char* says;
};

const Refused refusedWrites[] = {
    {"D0", plain, "'D0' has no value; use for example D100=5 or M0=on"},
    {"=5", plain, "'=5' has no value; use for example D100=5 or M0=on"},
    {"D0=", plain, "'D0=' has no value; use for example D100=5 or M0=on"},
    {"X0=1", plain, "'X0=1': X registers are read-only"},
    {"D40=3,14", plain,
     "'D40=3,14' names 1 register, but 2 values take 2; use D40:2=3,14; a decimal number has a "
     "point: "
     "D40=3.14 --as float"},
    {"D40=1,2,3", plain, "'D40=1,2,3' names 1 register, but 3 values take 3; use D40:3=1,2,3"},
    {"D0:3=1", plain, "'D0:3=1' names 3 registers, but 1 value takes 1; use D0:1=1"},
    {"D0:2=1,2", longStyle,
     "'D0:2=1,2' names 2 registers, but 2 values take 4; use D0:4=1,2; a decimal "
     "number has a point: D0=1.2 --as float"},
    {"D20=70000", plain,
     "value '70000' does not fit in 16 bits: -32768 to 65535; for 32 bits use D20:2=70000 or "
     "D20=70000 --as long"},
    {"D0:3=1,2.5,3", plain,
     "value '2.5' is not a whole number; for a floating-point number in two words use --as float"},
    {"D7999:2=1,2", plain, "'D7999:2' is out of range: D0 to D7999 or D8000 to D8255"},
    {"D100.5=2", plain, "value '2' is not a bit; use 0, 1, on or off"},
    {"K1M0=16", plain, "value '16' does not fit in 4 bits: 0 to 15"},
};

AskedAddress asked(const char* text)
{
    return askedAddress(takeApart(text), catalogue());
}

}  // namespace

TEST(WrittenValues, BecomeRegisters)
{
    for (const auto& [target, style, text, registers] : writtenValues)
        EXPECT_EQ(parseValue(text, range(target), style), registers) << target << '=' << text;
}

TEST(WrittenValues, ThatDoNotFitSayWhatWould)
{
    for (const auto& [target, style, text, says] : unfitValues) {
        const auto act = [&, target = target, text = text, style = style] {
            parseValue(text, range(target), style);
        };
        EXPECT_EQ(failureOf(ExitCode::Usage, act), "value '" + std::string(text) + "' " + says)
            << target;
    }
}

TEST(WrittenNumbers, FillAGroupOfBits)
{
    EXPECT_EQ(parseNumber("255", 8, ValueFormat::Signed), 255U);
    EXPECT_EQ(parseNumber("-1", 16, ValueFormat::Signed), 0xFFFFU);
    EXPECT_EQ(parseNumber("-1", 32, ValueFormat::Signed), 0xFFFFFFFFU);
    EXPECT_THROW(parseNumber("16", 4, ValueFormat::Signed), Failure);
    EXPECT_THROW(parseNumber("-1", 4, ValueFormat::Signed), Failure);
}

TEST(ShownValues, FollowTheFormat)
{
    for (const auto& [target, style, registers, json] : shownValues) {
        EXPECT_EQ(valueOf(registers, asked(target), style), json)
            << target << ' ' << static_cast<int>(style.format);
    }
}

TEST(Values, TakeRegistersByTheirFormat)
{
    EXPECT_EQ(registersPerValue(asked("D0:8"), plain), 1);
    EXPECT_EQ(registersPerValue(asked("D0:8"), ulongStyle), 2);
    EXPECT_EQ(registersPerValue(asked("D0:8"), textStyle), 8);
    EXPECT_EQ(registersPerValue(asked("32CV200:8"), longStyle), 1);
    EXPECT_EQ(registersPerValue(asked("M0:8"), floatStyle), 1);
    EXPECT_EQ(registersPerValue(asked("D0.5"), floatStyle), 1);
    EXPECT_EQ(registersPerValue(asked("K4M0"), floatStyle), 16);
}

TEST(Values, OfTwoWordsAreAskedForByTheirFirst)
{
    const auto widened = [](const char* address) {
        AskedAddress one = asked(address);
        widen(one, floatStyle);
        return one.range.count;
    };
    EXPECT_EQ(widened("D20"), 2);
    EXPECT_EQ(widened("D20:1"), 1);
    EXPECT_EQ(widened("D7999"), 1);
    EXPECT_EQ(widened("M20"), 1);
}

TEST(ShownBits, StandInGroupsOfEight)
{
    EXPECT_EQ(bitsText({}), "");
    EXPECT_EQ(bitsText({1, 0, 0, 0, 0, 0, 0, 0}), "●○○○○○○○");
    EXPECT_EQ(bitsText({0, 0, 0, 0, 0, 0, 0, 1, 1}), "○○○○○○○● ●");
}

TEST(ValueFormats, HaveTheNamesOfTheCommandLine)
{
    EXPECT_EQ(formatNames(), "signed, unsigned, hex, bin, bcd, long, ulong, float or text");
    EXPECT_EQ(formatNamed("ULONG"), ValueFormat::ULong);
    EXPECT_EQ(formatNamed("dec"), std::nullopt);
}

TEST(Assignments, SayRegistersAndValues)
{
    for (const Asked& row : askedWrites) {
        const Assignment assignment = parseAssignment(row.text, catalogue(), row.style);
        EXPECT_EQ(assignment.asked.range.text(), row.registers) << row.text;
        EXPECT_EQ(assignment.values, row.values) << row.text;
    }
}

TEST(Assignments, SayWhichRegistersAreOneValue)
{
    const auto together = [](const char* text, ValueFormat format) {
        return parseAssignment(text, catalogue(), {format}).asked.range.together;
    };
    EXPECT_EQ(together("D0:6=1,2,3", ValueFormat::Long), 2);
    EXPECT_EQ(together("D0:3=1,2,3", ValueFormat::Signed), 1);
    EXPECT_EQ(together("D0:3=abcdef", ValueFormat::Text), 3);
}

TEST(Assignments, OfAGroupTakeAllOfItsBitsForOneValue)
{
    const Assignment assignment = parseAssignment("K4M0=5", catalogue(), ValueStyle());
    EXPECT_EQ(assignment.asked.range.together, 16);
    EXPECT_EQ(assignment.values, QVector<quint32>({1, 0, 1}) + QVector<quint32>(13, 0));
}

TEST(Assignments, GuessNothing)
{
    for (const Refused& row : refusedWrites) {
        const auto act = [&row] { parseAssignment(row.text, catalogue(), row.style); };
        EXPECT_EQ(failureOf(ExitCode::Usage, act), row.says) << row.text;
    }
}

TEST(Assignments, OfOneBitKeepTheOthers)
{
    const auto over = [](const char* text, quint32 before) {
        return parseAssignment(text, catalogue(), plain).valuesOver({before}).value(0);
    };
    EXPECT_EQ(over("D100.5=1", 0x8001), 0x8021U);
    EXPECT_EQ(over("D100.15=0", 0x8001), 0x0001U);
    EXPECT_EQ(over("D100.14=0", 0x8001), 0x8001U);
    EXPECT_EQ(over("D100=7", 0x8001), 7U);
}

TEST(Assignments, ThatHitOtherRegistersAreRefused)
{
    EXPECT_NO_THROW(requireOwnMemory(range("D0:128"), catalogue()));
    EXPECT_EQ(failureOf(ExitCode::Usage, [] { requireOwnMemory(range("D8200"), catalogue()); }),
              "a write to D8200 changes D72; to write there anyway use --force");
}
