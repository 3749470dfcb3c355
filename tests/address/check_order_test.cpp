// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which reason of a refusal wins when several hold: width, sign, write access to an input, data
// type of a counter, unknown type or unreadable text, range.

#include "driver/intf.h"

#include <gtest/gtest.h>

#include <string>

namespace {
constexpr int untouched = -777;

struct Row
{
    const char* name;
    const char* registerType;
    const char* text;
    int dataType;  // of intf_checkAddr; wordAccess of intf_checkAddrValidity
    int accessMode;
    int code;
    int number;
};

std::string rowName(const ::testing::TestParamInfo<Row>& info)
{
    return info.param.name;
}

class CheckOrder : public ::testing::TestWithParam<Row>
{};

TEST_P(CheckOrder, FirstReasonDecides)
{
    const Row& row = GetParam();
    int number = untouched;
    EXPECT_EQ(row.code,
              intf_checkAddr(QString::fromLatin1(row.registerType), QString::fromLatin1(row.text),
                             &number, row.dataType, 1, row.accessMode));
    EXPECT_EQ(row.number, number);
}

const Row order[] = {
    {"BitTypeWithWordData", "M", "0", 0, 0, 1, untouched},
    {"BitTypeWithDataTypeMinusTwo", "M", "0", -2, 0, 1, untouched},
    {"WordTypeWithBitData", "D", "0", -1, 0, 1, untouched},
    {"CounterWithBitDataIsWidthNotDataType", "32CV", "200", -1, 0, 1, untouched},
    {"WidthBeforeSign", "D", "-5", -1, 0, 1, untouched},
    {"WidthBeforeWriteToInput", "X", "0", 0, 1, 1, untouched},
    {"WidthBeforeUnreadableText", "M", "abc", 0, 0, 1, untouched},
    {"SignBeforeWriteToInput", "X", "-5", -1, 2, 4, untouched},
    {"SignBeforeDataTypeOfCounter", "32CV", "+200", 2, 0, 4, untouched},
    {"SignBeforeUnknownType", "Z", "-5", -1, 0, 4, untouched},
    {"WriteToInputWithModeOne", "X", "17", -1, 1, 6, untouched},
    {"WriteToInputWithModeTwo", "X", "17", -1, 2, 6, untouched},
    {"WriteToInputBeforeUnreadableText", "X", "8", -1, 1, 6, untouched},
    {"WriteToInputBeforeRange", "X", "400", -1, 2, 6, untouched},
    {"InputWithModeZero", "X", "17", -1, 0, 0, 15},
    {"InputWithModeThree", "X", "17", -1, 3, 0, 15},
    {"InputWithModeMinusOne", "X", "17", -1, -1, 0, 15},
    {"OutputMayBeWritten", "Y", "17", -1, 2, 0, 15},
    {"LowerCaseInputIsUnknownNotReadOnly", "x", "17", -1, 2, 3, untouched},
    {"DataTypeOfCounterBeforeUnreadableText", "32CV", "abc", 2, 0, 5, untouched},
    {"DataTypeOfCounterBeforeRange", "32CV", "199", 0, 0, 5, untouched},
    {"UnknownTypeBeforeUnreadableText", "Z", "abc", -1, 0, 3, untouched},
    {"UnknownTypeWithBitData", "Z", "5", -1, 0, 3, untouched},
    {"UnknownTypeWithWordData", "Z", "5", 0, 0, 3, untouched},
    {"EmptyTypeIsUnknown", "", "5", 0, 0, 3, untouched},
    {"LowerCaseTypeIsUnknown", "d", "5", 0, 0, 3, untouched},
    {"TypeWithABlankIsUnknown", "D ", "5", 0, 0, 3, untouched},
    {"UnreadableTextStoresZero", "D", "abc", 0, 0, 4, 0},
    {"RangeStoresTheNumber", "D", "8000", 0, 0, 2, 8000},
};

INSTANTIATE_TEST_SUITE_P(Reasons, CheckOrder, ::testing::ValuesIn(order), rowName);

const Row counterDataTypes[] = {
    {"Zero", "32CV", "200", 0, 0, 5, untouched},
    {"One", "32CV", "200", 1, 0, 0, 200},
    {"Two", "32CV", "200", 2, 0, 5, untouched},
    {"Three", "32CV", "200", 3, 0, 0, 200},
    {"Four", "32CV", "200", 4, 0, 5, untouched},
    {"Five", "32CV", "200", 5, 0, 0, 200},
    {"Six", "32CV", "200", 6, 0, 0, 200},
    {"Seven", "32CV", "200", 7, 0, 5, untouched},
    {"Eight", "32CV", "200", 8, 0, 5, untouched},
    {"Nine", "32CV", "200", 9, 0, 0, 200},
    {"NineOutOfRange", "32CV", "199", 9, 0, 2, 199},
    {"Ten", "32CV", "200", 10, 0, 5, untouched},
    {"MinusTwo", "32CV", "200", -2, 0, 5, untouched},
};

INSTANTIATE_TEST_SUITE_P(CounterDataTypes, CheckOrder, ::testing::ValuesIn(counterDataTypes),
                         rowName);

class ValidityOrder : public ::testing::TestWithParam<Row>
{};

TEST_P(ValidityOrder, FirstReasonDecides)
{
    const Row& row = GetParam();
    int number = untouched;
    EXPECT_EQ(row.code,
              intf_checkAddrValidity(QString::fromLatin1(row.registerType),
                                     QString::fromLatin1(row.text), &number, 1, row.dataType));
    EXPECT_EQ(row.number, number);
}

const Row validity[] = {
    {"BitTypeWithWordAccess", "M", "0", 1, 0, 1, untouched},
    {"BitTypeWithWordAccessMinusOne", "M", "0", -1, 0, 1, untouched},
    {"WordTypeWithBitAccess", "D", "0", 0, 0, 1, untouched},
    {"CounterWithBitAccess", "32CV", "200", 0, 0, 1, untouched},
    {"AnyTruthValueIsWordAccess", "D", "0", -5, 0, 0, 0},
    {"WidthBeforeSign", "D", "-5", 0, 0, 1, untouched},
    {"SignBeforeUnknownType", "Z", "+5", 0, 0, 4, untouched},
    {"UnknownTypeBeforeUnreadableText", "Z", "abc", 1, 0, 3, untouched},
    {"UnknownTypeWithBitAccess", "Z", "5", 0, 0, 3, untouched},
    {"InputIsNeverRefusedForWriting", "X", "17", 0, 0, 0, 15},
    {"CounterHasNoDataTypeToRefuse", "32CV", "200", 2, 0, 0, 200},
    {"UnreadableTextStoresZero", "X", "8", 0, 0, 4, 0},
    {"RangeStoresTheNumber", "X", "400", 0, 0, 2, 256},
};

INSTANTIATE_TEST_SUITE_P(Reasons, ValidityOrder, ::testing::ValuesIn(validity), rowName);

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
    int number = untouched;
    EXPECT_EQ(3, intf_checkAddr(QString(), QString(), &number, 0, 1, 0));
    EXPECT_EQ(untouched, number);
    EXPECT_EQ(4, intf_checkAddr(QString::fromLatin1("D"), QString(), &number, 0, 1, 0));
    EXPECT_EQ(0, number);
}
}  // namespace
