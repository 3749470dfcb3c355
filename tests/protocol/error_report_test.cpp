// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The text that names the request of an exchange: station#register(count)(reply bytes).

#include "protocol/error_report.h"
#include "tests/support/driver_fixture.h"

namespace {
struct ErrorRow
{
    const char* name;
    int stationNo;
    const char* registerType;
    int addressIndex;
    int count;
    int replyBytes;
    const char* text;
};

class ErrorReport : public DriverTest, public ::testing::WithParamInterface<ErrorRow>
{};

TEST_P(ErrorReport, NamesTheRequest)
{
    const ErrorRow& row = GetParam();
    FRAME_PRO frame;
    frame.variable = request(row.registerType, row.addressIndex, row.count, row.stationNo);
    driver.frames << frame << FRAME_PRO();
    EXPECT_EQ(row.text, plain(getErrorInfo(QByteArray(row.replyBytes, 'x'))));
}

const ErrorRow errors[] = {
    {"WordsWithoutAnswer", 1, "D", 100, 2, 0, "1#D100(2)(0)"},
    {"InputsInOctal", 0, "X", 16, 3, 5, "0#X20(3)(5)"},
    {"OutputsInOctal", 1, "Y", 8, 1, 1, "1#Y10(1)(1)"},
    {"RelaysInDecimal", 1, "M", 8, 1, 1, "1#M8(1)(1)"},
    {"States", 1, "S", 999, 1, 6, "1#S999(1)(6)"},
    {"SpecialRelaysWithTheirFullNumber", 1, "SM", 8000, 1, 6, "1#SM8000(1)(6)"},
    {"SpecialRegistersWithTheirFullNumber", 2, "SD", 8255, 1, 6, "2#SD8255(1)(6)"},
    {"Timers", 1, "T", 9, 1, 6, "1#T9(1)(6)"},
    {"Counters", 1, "C", 10, 1, 6, "1#C10(1)(6)"},
    {"TimerValues", 1, "TV", 9, 1, 6, "1#TV9(1)(6)"},
    {"CounterValues", 1, "CV", 9, 1, 6, "1#CV9(1)(6)"},
    {"LongCountersCountAsTheRequestDoes", 1, "32CV", 200, 2, 20, "1#32CV200(2)(20)"},
    {"LowerCaseInputIsDecimal", 1, "x", 16, 1, 0, "1#x16(1)(0)"},
    {"UnknownType", 1, "Z", 16, 1, 0, "1#Z16(1)(0)"},
    {"EmptyType", 1, "", 16, 1, 0, "1#16(1)(0)"},
    {"LongReply", 255, "D", 7999, 64, 260, "255#D7999(64)(260)"},
    {"NegativeNumberIsUnsigned", 1, "D", -1, 1, 0, "1#D4294967295(1)(0)"},
    {"NegativeOctalNumberIsUnsigned", 1, "X", -1, 1, 0, "1#X37777777777(1)(0)"},
    {"SmallestNumber", 1, "M", -2147483647 - 1, 1, 0, "1#M2147483648(1)(0)"},
    {"NegativeStationAndCount", -7, "D", 1, -2, 0, "-7#D1(-2)(0)"},
    {"Zeros", 0, "D", 0, 0, 0, "0#D0(0)(0)"},
};

INSTANTIATE_TEST_SUITE_P(Requests, ErrorReport, ::testing::ValuesIn(errors), nameOf<ErrorRow>);

using ErrorReportOfAReply = DriverTest;

TEST_F(ErrorReportOfAReply, WithoutAFrameInFlightIsEmpty)
{
    EXPECT_EQ("", plain(getErrorInfo(QByteArray("x"))));
}

TEST_F(ErrorReportOfAReply, UsesTheLengthOnly)
{
    FRAME_PRO frame;
    frame.variable = request("D", 1, 1);
    driver.frames << frame;
    EXPECT_EQ("1#D1(1)(4)", plain(getErrorInfo(QByteArray("\0%1\0", 4))));
    EXPECT_EQ("1#D1(1)(0)", plain(getErrorInfo(QByteArray())));
}
}  // namespace
