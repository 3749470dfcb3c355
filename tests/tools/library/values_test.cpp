// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values as people write and read them, over registers of each width.

#include "tests/tools/support/loaded_driver.h"
#include "tools/library/values.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

using Registers = QVector<quint32>;

struct Written
{
    const char* type;
    ValueFormat format;
    const char* text;
    Registers registers;
};

const Written writtenValues[] = {
    {"D", ValueFormat::Unsigned, "65535", {65535}},
    {"D", ValueFormat::Unsigned, "-1", {65535}},
    {"D", ValueFormat::Unsigned, "-32768", {32768}},
    {"D", ValueFormat::Unsigned, "-32769", {0x7FFF, 0xFFFF}},
    {"D", ValueFormat::Unsigned, "65536", {0, 1}},
    {"D", ValueFormat::Unsigned, "0x1e", {30}},
    {"D", ValueFormat::Unsigned, "0XFFFF", {65535}},
    {"D", ValueFormat::Unsigned, "0b101", {5}},
    {"D", ValueFormat::Unsigned, "3.14", {0xF5C3, 0x4048}},
    {"D", ValueFormat::Unsigned, "1e2", {0, 0x42C8}},
    {"D", ValueFormat::Signed, "-2", {65534}},
    {"D", ValueFormat::Signed, "-1.5", {0, 0xBFC0}},
    {"D", ValueFormat::Hex, "1E", {0x1E}},
    {"D", ValueFormat::Hex, "0b1", {0xB1}},
    {"D", ValueFormat::Hex, "0x0b1", {0xB1}},
    {"D", ValueFormat::Binary, "101", {5}},
    {"D", ValueFormat::Binary, "0b11", {3}},
    {"D", ValueFormat::Binary, "0x11", {0x11}},
    {"D", ValueFormat::Long, "5", {5, 0}},
    {"D", ValueFormat::Long, "-2", {0xFFFE, 0xFFFF}},
    {"D", ValueFormat::Float, "2", {0, 0x4000}},
    {"32CV", ValueFormat::Unsigned, "-1", {0xFFFFFFFF}},
    {"32CV", ValueFormat::Unsigned, "65536", {65536}},
    {"32CV", ValueFormat::Unsigned, "4294967295", {0xFFFFFFFF}},
    {"32CV", ValueFormat::Unsigned, "-2147483648", {0x80000000}},
    {"32CV", ValueFormat::Long, "7", {7}},
    {"M", ValueFormat::Unsigned, "1", {1}},
    {"M", ValueFormat::Unsigned, "On", {1}},
    {"M", ValueFormat::Unsigned, "0", {0}},
    {"M", ValueFormat::Unsigned, "off", {0}},
    {"M", ValueFormat::Float, "1", {1}},
};

struct Unfit
{
    const char* type;
    ValueFormat format;
    const char* text;
};

const Unfit unfitValues[] = {
    {"D", ValueFormat::Unsigned, ""},
    {"D", ValueFormat::Unsigned, "12a"},
    {"D", ValueFormat::Unsigned, "4294967296"},
    {"D", ValueFormat::Unsigned, "-2147483649"},
    {"D", ValueFormat::Unsigned, "0x"},
    {"D", ValueFormat::Unsigned, "1.5.5"},
    {"D", ValueFormat::Unsigned, "1e99"},
    {"D", ValueFormat::Binary, "102"},
    {"D", ValueFormat::Long, "1.5"},
    {"32CV", ValueFormat::Unsigned, "1.5"},
    {"32CV", ValueFormat::Float, "1"},
    {"M", ValueFormat::Unsigned, "2"},
    {"M", ValueFormat::Unsigned, ""},
};

struct Shown
{
    const char* type;
    ValueFormat format;
    Registers registers;
    QJsonValue json;
    const char* text;  // of the first register
};

const Shown shownValues[] = {
    {"D", ValueFormat::Unsigned, {65535}, 65535, "65535"},
    {"D", ValueFormat::Signed, {65535}, -1, "-1"},
    {"D", ValueFormat::Signed, {32767}, 32767, "32767"},
    {"D", ValueFormat::Hex, {0xAB}, "0x00AB", "0x00AB"},
    {"D", ValueFormat::Binary, {5}, "0b0000000000000101", "0b0000000000000101"},
    {"D", ValueFormat::Long, {1, 0x8000}, -2147483647, "1"},
    {"D", ValueFormat::Float, {0xF5C3, 0x4048}, 3.14, "62915"},
    {"32CV", ValueFormat::Unsigned, {0xFFFFFFFF}, 4294967295.0, "4294967295"},
    {"32CV", ValueFormat::Signed, {0xFFFFFFFF}, -1, "-1"},
    {"32CV", ValueFormat::Signed, {0xFFFF}, 65535, "65535"},
    {"32CV", ValueFormat::Long, {0xFFFFFFFE}, -2, "4294967294"},
    {"32CV", ValueFormat::Hex, {0xAB}, "0x000000AB", "0x000000AB"},
    {"M", ValueFormat::Unsigned, {1}, 1, "1"},
    {"M", ValueFormat::Signed, {1}, 1, "1"},
    {"M", ValueFormat::Hex, {1}, 1, "1"},
    {"M", ValueFormat::Binary, {0}, 0, "0"},
};

}  // namespace

TEST(WrittenValues, BecomeRegisters)
{
    for (const auto& [type, format, text, registers] : writtenValues)
        EXPECT_EQ(parseValue(text, *catalogue().find(type), format), registers) << text;
}

TEST(WrittenValues, ThatDoNotFitAreErrorsOfUse)
{
    for (const auto& [type, format, text] : unfitValues) {
        try {
            parseValue(text, *catalogue().find(type), format);
            ADD_FAILURE() << type << " took " << text;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), ExitCode::Usage) << text;
        }
    }
}

TEST(ShownValues, FollowTheFormat)
{
    for (const auto& [name, format, registers, json, text] : shownValues) {
        const RegisterType& type = *catalogue().find(name);
        EXPECT_EQ(valueOf(registers.constData(), type, format), json) << name << text;
        EXPECT_EQ(valueText(registers[0], type, format), text) << name;
        EXPECT_EQ(registersPerValue(type, format), registers.size()) << name << text;
    }
}

TEST(ShownBits, StandInGroupsOfEight)
{
    EXPECT_EQ(bitsText({}), "");
    EXPECT_EQ(bitsText({1, 0, 0, 0, 0, 0, 0, 0}), "●○○○○○○○");
    EXPECT_EQ(bitsText({0, 0, 0, 0, 0, 0, 0, 1, 1}), "○○○○○○○● ●");
}

TEST(ValueFormats, HaveTheNamesOfTheCommandLine)
{
    QStringList names;
    for (const auto& [name, format] : valueFormats())
        names += QString::fromStdString(name) + '=' + QString::number(static_cast<int>(format));
    EXPECT_EQ(names.join(' '), "bin=3 dec=0 float=5 hex=2 long=4 signed=1");
}
