// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The two address checks of the editor: ranges and texts of every type, asked of both
// checks, and which reason of a refusal wins when several hold: width, sign, write access to an
// input, data type of a counter, unknown type or unreadable text, range.

#include "tests/support/driver_fixture.h"

#include <utility>

namespace {
constexpr int untouched = -777;
constexpr int bitData = -1;
constexpr int wordData = 1;  // also one of the types that a 32-bit counter takes
constexpr int readAccess = 0;

using Answer = std::pair<int, int>;  // result and number

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

struct Question
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

class AddressCheck : public ::testing::TestWithParam<Question>
{};

TEST_P(AddressCheck, GivesCodeAndNumber)
{
    const Question& row = GetParam();
    const bool bit = isBitType(row.registerType);
    const Answer wanted = {row.code, row.number};
    SCOPED_TRACE(std::string(row.registerType) + row.text + " " + std::to_string(row.count));
    EXPECT_EQ(wanted, checkAddr(row.registerType, row.text, bit ? bitData : wordData, row.count,
                                readAccess));
    EXPECT_EQ(wanted, checkValidity(row.registerType, row.text, row.count, bit ? 0 : 1));
}

// clang-format off
const Question ranges[] = {
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

const Question checkedTexts[] = {
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
const Question signs[] = {
    {"D", "-5", 1, 4, untouched},   {"D", "+5", 1, 4, untouched},   {"D", "5-", 1, 4, untouched},
    {"D", "1+1", 1, 4, untouched},  {"D", "-", 1, 4, untouched},    {"D", "+-", 1, 4, untouched},
    {"X", "-8", 1, 4, untouched},   {"M", "-0", 1, 4, untouched},   {"SM", "+8000", 1, 4, untouched},
    {"32CV", "-200", 1, 4, untouched},
    {"CV", "-99999", 1, 4, untouched},
};

const Question hostileCounts[] = {
    {"D", "0", 2147483647, 2, 0},           {"D", "7999", 2147483647, 2, 7999},
    {"D", "2147483647", 2147483647, 2, 2147483647},
    {"X", "377", 2147483647, 2, 255},       {"32CV", "256", 2147483647, 2, 256},
    {"D", "5", 0, 0, 5},                    {"D", "5", -1, 0, 5},
    {"D", "5", -2147483647 - 1, 0, 5},      {"SM", "8000", -2147483647 - 1, 0, 8000},
    {"D", "8000", 0, 0, 8000},              {"M", "3072", 0, 0, 3072},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Ranges, AddressCheck, ::testing::ValuesIn(ranges));
INSTANTIATE_TEST_SUITE_P(Texts, AddressCheck, ::testing::ValuesIn(checkedTexts));
INSTANTIATE_TEST_SUITE_P(Signs, AddressCheck, ::testing::ValuesIn(signs));
INSTANTIATE_TEST_SUITE_P(HostileCounts, AddressCheck, ::testing::ValuesIn(hostileCounts));

TEST(CheckedCounter, BoundIsOnePastTheOtherTypesOf256)
{
    EXPECT_EQ((Answer{0, 256}), checkAddr("32CV", "256", 9, 1, readAccess));
    EXPECT_EQ((Answer{2, 256}), checkAddr("32CV", "256", 9, 2, readAccess));
    EXPECT_EQ((Answer{0, 256}), checkValidity("32CV", "256", 1, 1));
    EXPECT_EQ((Answer{2, 256}), checkValidity("32CV", "256", 2, 1));
}

struct CheckRow
{
    const char* name;
    const char* registerType;
    const char* text;
    int dataType;  // of intf_checkAddr; wordAccess of intf_checkAddrValidity
    int accessMode;
    Answer answer;
};

class CheckOrder : public ::testing::TestWithParam<CheckRow>
{};

TEST_P(CheckOrder, FirstReasonDecides)
{
    const CheckRow& row = GetParam();
    EXPECT_EQ(row.answer, checkAddr(row.registerType, row.text, row.dataType, 1, row.accessMode));
}

const CheckRow order[] = {
    {"BitTypeWithWordData", "M", "0", 0, 0, {1, untouched}},
    {"BitTypeWithDataTypeMinusTwo", "M", "0", -2, 0, {1, untouched}},
    {"WordTypeWithBitData", "D", "0", -1, 0, {1, untouched}},
    {"CounterWithBitDataIsWidthNotDataType", "32CV", "200", -1, 0, {1, untouched}},
    {"WidthBeforeSign", "D", "-5", -1, 0, {1, untouched}},
    {"WidthBeforeWriteToInput", "X", "0", 0, 1, {1, untouched}},
    {"WidthBeforeUnreadableText", "M", "abc", 0, 0, {1, untouched}},
    {"SignBeforeWriteToInput", "X", "-5", -1, 2, {4, untouched}},
    {"SignBeforeDataTypeOfCounter", "32CV", "+200", 2, 0, {4, untouched}},
    {"SignBeforeUnknownType", "Z", "-5", -1, 0, {4, untouched}},
    {"WriteToInputWithModeOne", "X", "17", -1, 1, {6, untouched}},
    {"WriteToInputWithModeTwo", "X", "17", -1, 2, {6, untouched}},
    {"WriteToInputBeforeUnreadableText", "X", "8", -1, 1, {6, untouched}},
    {"WriteToInputBeforeRange", "X", "400", -1, 2, {6, untouched}},
    {"InputWithModeZero", "X", "17", -1, 0, {0, 15}},
    {"InputWithModeThree", "X", "17", -1, 3, {0, 15}},
    {"InputWithModeMinusOne", "X", "17", -1, -1, {0, 15}},
    {"OutputMayBeWritten", "Y", "17", -1, 2, {0, 15}},
    {"LowerCaseInputIsUnknownNotReadOnly", "x", "17", -1, 2, {3, untouched}},
    {"DataTypeOfCounterBeforeUnreadableText", "32CV", "abc", 2, 0, {5, untouched}},
    {"DataTypeOfCounterBeforeRange", "32CV", "199", 0, 0, {5, untouched}},
    {"UnknownTypeBeforeUnreadableText", "Z", "abc", -1, 0, {3, untouched}},
    {"UnknownTypeWithBitData", "Z", "5", -1, 0, {3, untouched}},
    {"UnknownTypeWithWordData", "Z", "5", 0, 0, {3, untouched}},
    {"EmptyTypeIsUnknown", "", "5", 0, 0, {3, untouched}},
    {"LowerCaseTypeIsUnknown", "d", "5", 0, 0, {3, untouched}},
    {"TypeWithABlankIsUnknown", "D ", "5", 0, 0, {3, untouched}},
    {"UnreadableTextStoresZero", "D", "abc", 0, 0, {4, 0}},
    {"RangeStoresTheNumber", "D", "8000", 0, 0, {2, 8000}},
    {"CounterOutOfRange", "32CV", "199", 9, 0, {2, 199}},
};

INSTANTIATE_TEST_SUITE_P(Reasons, CheckOrder, ::testing::ValuesIn(order), nameOf<CheckRow>);

TEST(CheckedCounter, TakesFiveDataTypes)
{
    for (const int taken : {1, 3, 5, 6, 9})
        EXPECT_EQ((Answer{0, 200}), checkAddr("32CV", "200", taken, 1, readAccess)) << taken;
    for (const int refused : {-2, 0, 2, 4, 7, 8, 10})
        EXPECT_EQ((Answer{5, untouched}), checkAddr("32CV", "200", refused, 1, readAccess))
            << refused;
}

class ValidityOrder : public ::testing::TestWithParam<CheckRow>
{};

TEST_P(ValidityOrder, FirstReasonDecides)
{
    const CheckRow& row = GetParam();
    EXPECT_EQ(row.answer, checkValidity(row.registerType, row.text, 1, row.dataType));
}

const CheckRow validity[] = {
    {"BitTypeWithWordAccess", "M", "0", 1, 0, {1, untouched}},
    {"BitTypeWithWordAccessMinusOne", "M", "0", -1, 0, {1, untouched}},
    {"WordTypeWithBitAccess", "D", "0", 0, 0, {1, untouched}},
    {"CounterWithBitAccess", "32CV", "200", 0, 0, {1, untouched}},
    {"AnyTruthValueIsWordAccess", "D", "0", -5, 0, {0, 0}},
    {"WidthBeforeSign", "D", "-5", 0, 0, {1, untouched}},
    {"SignBeforeUnknownType", "Z", "+5", 0, 0, {4, untouched}},
    {"UnknownTypeBeforeUnreadableText", "Z", "abc", 1, 0, {3, untouched}},
    {"UnknownTypeWithBitAccess", "Z", "5", 0, 0, {3, untouched}},
    {"InputIsNeverRefusedForWriting", "X", "17", 0, 0, {0, 15}},
    {"CounterHasNoDataTypeToRefuse", "32CV", "200", 2, 0, {0, 200}},
    {"UnreadableTextStoresZero", "X", "8", 0, 0, {4, 0}},
    {"RangeStoresTheNumber", "X", "400", 0, 0, {2, 256}},
};

INSTANTIATE_TEST_SUITE_P(Reasons, ValidityOrder, ::testing::ValuesIn(validity), nameOf<CheckRow>);

TEST(AddressCheckWithoutOutput, NullNumberIsSkipped)
{
    const QString type = QString::fromLatin1("D");
    const QString good = QString::fromLatin1("5");
    const QString bad = QString::fromLatin1("x");
    EXPECT_EQ(0, intf_checkAddr(type, good, nullptr, 0, 1, 0));
    EXPECT_EQ(4, intf_checkAddr(type, bad, nullptr, 0, 1, 0));
    EXPECT_EQ(0, intf_checkAddrValidity(type, good, nullptr, 1, 1));
    EXPECT_EQ(4, intf_checkAddrValidity(type, bad, nullptr, 1, 1));
}

TEST(AddressCheckWithoutText, NullTextsAreEmptyTexts)
{
    EXPECT_EQ((Answer{3, untouched}), checkAddr(nullptr, nullptr, 0, 1, readAccess));
    EXPECT_EQ((Answer{4, 0}), checkAddr("D", nullptr, 0, 1, readAccess));
}
}  // namespace
