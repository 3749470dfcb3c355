// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Every value of the table of register types once more, as literals: the only second copy.

#include "address/register_types.h"

#include <gtest/gtest.h>

#include <string>

namespace {
constexpr RegisterKind bit = RegisterKind::Bit;
constexpr RegisterKind word = RegisterKind::Word;
constexpr RegisterKind doubleWord = RegisterKind::DoubleWord;
constexpr int none = -1;

// clang-format off
const RegisterType wanted[] = {
    {"X",    bit,        8,  0,    255,  256,  128,  none, 0,    0,  "ooo",   false},
    {"Y",    bit,        8,  0,    255,  256,  160,  none, 1280, 1,  "ooo",   true},
    {"M",    bit,        10, 0,    3071, 3072, 256,  none, 2048, 2,  "dddd",  true},
    {"S",    bit,        10, 0,    999,  1000, 0,    none, 0,    4,  "ddd",   true},
    {"SM",   bit,        10, 8000, 8255, 8256, 480,  none, 3840, 3,  "dddd",  true},
    {"T",    bit,        10, 0,    255,  256,  192,  none, 1536, 5,  "ddd",   true},
    {"C",    bit,        10, 0,    255,  256,  448,  none, 3584, 6,  "ddd",   true},
    {"D",    word,       10, 0,    7999, 8000, 4096, 4096, none, 7,  "dddd",  true},
    {"SD",   word,       10, 8000, 8255, 8256, 3584, 3840, none, 8,  "dddd",  true},
    {"TV",   word,       10, 0,    255,  256,  2048, 2048, none, 9,  "ddd",   true},
    {"CV",   word,       10, 0,    199,  200,  2560, 2560, none, 10, "ddd",   true},
    {"32CV", doubleWord, 10, 200,  255,  257,  3072, 3072, none, 11, "ddddd", true},
};
// clang-format on

class RegisterTypeTable : public ::testing::TestWithParam<int>
{};

TEST_P(RegisterTypeTable, HoldsTheRow)
{
    const RegisterType& row = wanted[GetParam()];
    const RegisterType* found = findRegisterType(QString::fromLatin1(row.name));
    ASSERT_NE(nullptr, found);
    EXPECT_STREQ(row.name, found->name);
    EXPECT_EQ(row.kind, found->kind);
    EXPECT_EQ(row.numberBase, found->numberBase);
    EXPECT_EQ(row.first, found->first);
    EXPECT_EQ(row.last, found->last);
    EXPECT_EQ(row.checkEnd, found->checkEnd);
    EXPECT_EQ(row.readBase, found->readBase);
    EXPECT_EQ(row.writeBase, found->writeBase);
    EXPECT_EQ(row.forceBase, found->forceBase);
    EXPECT_EQ(row.planOrder, found->planOrder);
    EXPECT_STREQ(row.format, found->format);
    EXPECT_EQ(row.writable, found->writable);
}

INSTANTIATE_TEST_SUITE_P(Rows, RegisterTypeTable, ::testing::Range(0, 12), [](const auto& row) {
    return "Type" + std::string(wanted[row.param].name);
});

TEST(RegisterTypes, AreTwelve)
{
    EXPECT_EQ(12U, std::size(registerTypes));
}

TEST(RegisterTypes, UnknownNamesHaveNoRow)
{
    for (const char* name : {"", "x", "Z", "D ", " D", "32cv", "CV32", "SDD", "32C"})
        EXPECT_EQ(nullptr, findRegisterType(QString::fromLatin1(name))) << '"' << name << '"';
    EXPECT_EQ(nullptr, findRegisterType(QString()));
}

TEST(RegisterTypes, LongNamesAreUnknown)
{
    for (const char* name : {"32CVX", "X32CV", "DDDDDDDD", "32CV 32CV", "SMSMSMSMSMSMSMSMSMSM"})
        EXPECT_EQ(nullptr, findRegisterType(QString::fromLatin1(name))) << '"' << name << '"';
}

TEST(RegisterTypes, NamesWithNulsAreUnknown)
{
    EXPECT_EQ(nullptr, findRegisterType(QString::fromLatin1("D\0", 2)));
    EXPECT_EQ(nullptr, findRegisterType(QString::fromLatin1("\0D", 2)));
    EXPECT_EQ(nullptr, findRegisterType(QString::fromLatin1("\0", 1)));
}

// Whatever a look-up makes of a name, no other text of one or two characters may pass for one:
// U+0144 shares its low byte with "D".
TEST(RegisterTypes, NoOtherShortTextPassesForAName)
{
    constexpr int someCharacters = 0x160;
    int found = 0;
    for (int first = 0; first < someCharacters; ++first) {
        QString text = QString(QChar(first));
        found += findRegisterType(text) != nullptr ? 1 : 0;
        text += QLatin1Char('?');
        for (int second = 0; second < someCharacters; ++second) {
            text[1] = QChar(second);
            found += findRegisterType(text) != nullptr ? 1 : 0;
        }
    }
    EXPECT_EQ(7 + 4, found);  // X Y M S T C D, SM SD TV CV
}
}  // namespace
