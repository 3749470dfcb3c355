// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The two address checks of the editor. Every row is asked of both where both can answer it; the
// order in which the reasons of a refusal are found has tests of its own.

#include "driver/intf.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace {
constexpr int untouched = -777;
constexpr int bitData = -1;
constexpr int wordData = 1;  // also one of the types that a 32-bit counter takes
constexpr int readAccess = 0;

struct Answer
{
    int code;
    int number;
};

bool operator==(const Answer& a, const Answer& b)
{
    return a.code == b.code && a.number == b.number;
}

std::ostream& operator<<(std::ostream& out, const Answer& answer)
{
    return out << "code " << answer.code << ", number " << answer.number;
}

Answer checkAddr(const char* registerType, const char* text, int dataType, int count,
                 int accessMode)
{
    int number = untouched;
    const int code = intf_checkAddr(QString::fromLatin1(registerType), QString::fromLatin1(text),
                                    &number, dataType, count, accessMode);
    return {code, number};
}

Answer checkValidity(const char* registerType, const char* text, int count, int wordAccess)
{
    int number = untouched;
    const int code = intf_checkAddrValidity(QString::fromLatin1(registerType),
                                            QString::fromLatin1(text), &number, count, wordAccess);
    return {code, number};
}

struct Row
{
    const char* registerType;
    const char* text;
    int count;
    int code;
    int number;
};

bool isBitType(const std::string& type)
{
    return type == "X" || type == "Y" || type == "M" || type == "S" || type == "SM" ||
           type == "T" || type == "C";
}

class AddressCheck : public ::testing::TestWithParam<Row>
{};

TEST_P(AddressCheck, GivesCodeAndNumber)
{
    const Row& row = GetParam();
    const bool bit = isBitType(row.registerType);
    const Answer wanted = {row.code, row.number};
    EXPECT_EQ(wanted, checkAddr(row.registerType, row.text, bit ? bitData : wordData, row.count,
                                readAccess));
    EXPECT_EQ(wanted, checkValidity(row.registerType, row.text, row.count, bit ? 0 : 1));
}

// clang-format off
const Row ranges[] = {
    {"X", "0", 1, 0, 0},            {"X", "377", 1, 0, 255},        {"X", "400", 1, 2, 256},
    {"X", "377", 2, 2, 255},        {"X", "0", 256, 0, 0},          {"X", "0", 257, 2, 0},
    {"Y", "0", 1, 0, 0},            {"Y", "377", 1, 0, 255},        {"Y", "400", 1, 2, 256},
    {"Y", "0", 256, 0, 0},          {"Y", "0", 257, 2, 0},          {"Y", "10", 248, 0, 8},
    {"Y", "10", 249, 2, 8},
    {"M", "0", 1, 0, 0},            {"M", "3071", 1, 0, 3071},      {"M", "3072", 1, 2, 3072},
    {"M", "0", 3072, 0, 0},         {"M", "0", 3073, 2, 0},         {"M", "3071", 2, 2, 3071},
    {"S", "0", 1, 0, 0},            {"S", "999", 1, 0, 999},        {"S", "1000", 1, 2, 1000},
    {"S", "0", 1000, 0, 0},         {"S", "0", 1001, 2, 0},
    {"SM", "7999", 1, 2, 7999},     {"SM", "8000", 1, 0, 8000},     {"SM", "8255", 1, 0, 8255},
    {"SM", "8256", 1, 2, 8256},     {"SM", "8000", 256, 0, 8000},   {"SM", "8000", 257, 2, 8000},
    {"SM", "0", 1, 2, 0},
    {"T", "0", 1, 0, 0},            {"T", "255", 1, 0, 255},        {"T", "256", 1, 2, 256},
    {"T", "0", 256, 0, 0},          {"T", "0", 257, 2, 0},
    {"C", "0", 1, 0, 0},            {"C", "255", 1, 0, 255},        {"C", "256", 1, 2, 256},
    {"C", "0", 256, 0, 0},          {"C", "0", 257, 2, 0},
    {"D", "0", 1, 0, 0},            {"D", "7999", 1, 0, 7999},      {"D", "7999", 2, 2, 7999},
    {"D", "8000", 1, 2, 8000},      {"D", "0", 8000, 0, 0},         {"D", "0", 8001, 2, 0},
    {"SD", "7999", 1, 2, 7999},     {"SD", "8000", 1, 0, 8000},     {"SD", "8255", 1, 0, 8255},
    {"SD", "8256", 1, 2, 8256},     {"SD", "8000", 256, 0, 8000},   {"SD", "8000", 257, 2, 8000},
    {"TV", "0", 1, 0, 0},           {"TV", "255", 1, 0, 255},       {"TV", "256", 1, 2, 256},
    {"TV", "0", 256, 0, 0},         {"TV", "0", 257, 2, 0},
    {"CV", "0", 1, 0, 0},           {"CV", "199", 1, 0, 199},       {"CV", "200", 1, 2, 200},
    {"CV", "0", 200, 0, 0},         {"CV", "0", 201, 2, 0},
    {"32CV", "199", 1, 2, 199},     {"32CV", "200", 1, 0, 200},     {"32CV", "255", 1, 0, 255},
    {"32CV", "257", 1, 2, 257},     {"32CV", "200", 57, 0, 200},    {"32CV", "200", 58, 2, 200},
    {"32CV", "0", 1, 2, 0},
};

const Row texts[] = {
    {"X", "8", 1, 4, 0},            {"X", "18", 1, 4, 0},           {"Y", "9", 1, 4, 0},
    {"Y", "17", 1, 0, 15},          {"M", "0017", 1, 0, 17},        {"X", "0017", 1, 0, 15},
    {"D", "", 1, 4, 0},             {"D", " ", 1, 4, 0},            {"D", "abc", 1, 4, 0},
    {"D", "12x", 1, 4, 0},          {"D", "1.5", 1, 4, 0},          {"D", "0x10", 1, 4, 0},
    {"D", "1 2", 1, 4, 0},          {"D", " 12 ", 1, 0, 12},        {"D", "D12", 1, 4, 0},
    {"D", "2147483647", 1, 2, 2147483647},
    {"D", "2147483648", 1, 4, 0},   {"D", "99999999999999999999", 1, 4, 0},
    {"X", "17777777777", 1, 2, 2147483647},
    {"X", "20000000000", 1, 4, 0},
};

// A sign is refused before the text is read, wherever it stands; the number is left alone.
const Row signs[] = {
    {"D", "-5", 1, 4, untouched},   {"D", "+5", 1, 4, untouched},   {"D", "5-", 1, 4, untouched},
    {"D", "1+1", 1, 4, untouched},  {"D", "-", 1, 4, untouched},    {"D", "+-", 1, 4, untouched},
    {"X", "-8", 1, 4, untouched},   {"M", "-0", 1, 4, untouched},   {"SM", "+8000", 1, 4, untouched},
    {"32CV", "-200", 1, 4, untouched},
    {"CV", "-99999", 1, 4, untouched},
};

const Row hostileCounts[] = {
    {"D", "0", 2147483647, 2, 0},           {"D", "7999", 2147483647, 2, 7999},
    {"D", "2147483647", 2147483647, 2, 2147483647},
    {"X", "377", 2147483647, 2, 255},       {"32CV", "256", 2147483647, 2, 256},
    {"D", "5", 0, 0, 5},                    {"D", "5", -1, 0, 5},
    {"D", "5", -2147483647 - 1, 0, 5},      {"SM", "8000", -2147483647 - 1, 0, 8000},
    {"D", "8000", 0, 0, 8000},              {"M", "3072", 0, 0, 3072},
};
// clang-format on

std::string rowName(const ::testing::TestParamInfo<Row>& info)
{
    std::string name = std::to_string(info.index) + '_' + info.param.registerType + '_';
    for (const char* character = info.param.text; *character != '\0'; ++character) {
        const char c = *character;
        name += c == '-'   ? "Minus"
                : c == '+' ? "Plus"
                : c == ' ' ? "Blank"
                : c == '.' ? "Dot"
                           : std::string(1, c);
    }
    return name + "_Count" + (info.param.count < 0 ? "Below0" : std::to_string(info.param.count));
}

INSTANTIATE_TEST_SUITE_P(Ranges, AddressCheck, ::testing::ValuesIn(ranges), rowName);
INSTANTIATE_TEST_SUITE_P(Texts, AddressCheck, ::testing::ValuesIn(texts), rowName);
INSTANTIATE_TEST_SUITE_P(Signs, AddressCheck, ::testing::ValuesIn(signs), rowName);
INSTANTIATE_TEST_SUITE_P(HostileCounts, AddressCheck, ::testing::ValuesIn(hostileCounts), rowName);

TEST(AddressCheckOddities, CounterBoundIsOnePastTheOtherTypesOf256)
{
    EXPECT_EQ((Answer{0, 256}), checkAddr("32CV", "256", 9, 1, readAccess));
    EXPECT_EQ((Answer{2, 256}), checkAddr("32CV", "256", 9, 2, readAccess));
    EXPECT_EQ((Answer{0, 256}), checkValidity("32CV", "256", 1, 1));
    EXPECT_EQ((Answer{2, 256}), checkValidity("32CV", "256", 2, 1));
}
}  // namespace
