// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Frames as they stand on the wire, judged and carried out. Every byte here is a literal, so that
// the test and the simulator cannot be wrong together.

#include "tests/tools/fxsim/printing.h"
#include "tools/fxsim/line/frame_server.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

constexpr int maxBytes = 64;
constexpr int mostThatFramesCarry = 255;

Verdict verdictOn(const QByteArray& frame, const PlcMemory& memory = PlcMemory())
{
    return judgeFrame(frame, memory, maxBytes).verdict;
}

QByteArray served(const QByteArray& frame, PlcMemory& memory)
{
    const Request request = judgeFrame(frame, memory, maxBytes);
    EXPECT_EQ(request.verdict, Verdict::Good) << frame;
    return carryOut(request, memory);
}

}  // namespace

TEST(FrameServer, ReadsFourBytes)
{
    PlcMemory memory;
    memory.write(0x10C8, fromHex("12345678"));
    EXPECT_EQ(served("\x02"
                     "010C804"
                     "\x03"
                     "73",
                     memory),
              "\x02"
              "12345678"
              "\x03"
              "A7");
}

TEST(FrameServer, ReadsHexLettersInUpperCase)
{
    PlcMemory memory;
    memory.write(0x0080, fromHex("ABCDEF"));
    EXPECT_EQ(served("\x02"
                     "0008003"
                     "\x03"
                     "5E",
                     memory),
              "\x02"
              "ABCDEF"
              "\x03"
              "98");
}

TEST(FrameServer, WritesBytesInTheirOrder)
{
    PlcMemory memory;
    EXPECT_EQ(served("\x02"
                     "11000041234ABCD"
                     "\x03"
                     "2D",
                     memory),
              "\x06");
    EXPECT_EQ(memory.read(0x0FFF, 6), fromHex("001234ABCD00"));
}

struct ForceCase
{
    const char* name;
    const char* frame;
    int byteAddress;
    int byteAfter;  // of a byte that was zero
};

class ForceOn : public testing::TestWithParam<ForceCase>
{};

TEST_P(ForceOn, SetsTheBitThatAReadShows)
{
    PlcMemory memory;
    EXPECT_EQ(served(GetParam().frame, memory), "\x06");
    EXPECT_EQ(memory.byte(GetParam().byteAddress), GetParam().byteAfter);
}

// A force base is eight times the byte address at which the same devices are read.
INSTANTIATE_TEST_SUITE_P(Wire, ForceOn,
                         testing::Values(ForceCase{"firstBitOfAll",
                                                   "\x02"
                                                   "70000"
                                                   "\x03"
                                                   "FA",
                                                   0x0000, 0x01},
                                         ForceCase{"outputs",
                                                   "\x02"
                                                   "70805"
                                                   "\x03"
                                                   "07",
                                                   0x00A1, 0x01},
                                         ForceCase{"timerContacts",
                                                   "\x02"
                                                   "70306"
                                                   "\x03"
                                                   "03",
                                                   0x00C0, 0x08},
                                         ForceCase{"relays",
                                                   "\x02"
                                                   "7FF08"
                                                   "\x03"
                                                   "2E",
                                                   0x011F, 0x80},
                                         ForceCase{"counterContacts",
                                                   "\x02"
                                                   "7000E"
                                                   "\x03"
                                                   "0F",
                                                   0x01C0, 0x01},
                                         ForceCase{"specialRelays",
                                                   "\x02"
                                                   "7070F"
                                                   "\x03"
                                                   "17",
                                                   0x01E0, 0x80},
                                         ForceCase{"lastBitOfAll",
                                                   "\x02"
                                                   "7FFFF"
                                                   "\x03"
                                                   "52",
                                                   0x1FFF, 0x80}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FrameServer, ForceOffClearsOneBit)
{
    PlcMemory memory;
    memory.setByte(0x0100, 0xFF);
    EXPECT_EQ(served("\x02"
                     "80308"
                     "\x03"
                     "06",
                     memory),
              "\x06");
    EXPECT_EQ(memory.byte(0x0100), 0xF7);
}

struct VerdictCase
{
    const char* name;
    QByteArray frame;
    Verdict verdict;
};

class BadFrame : public testing::TestWithParam<VerdictCase>
{};

TEST_P(BadFrame, IsToldApart)
{
    PlcMemory memory;
    memory.setMissing({{0x1010, 0x1013}, {0x0150, 0x0150}});
    EXPECT_EQ(verdictOn(GetParam().frame, memory), GetParam().verdict);
}

INSTANTIATE_TEST_SUITE_P(Wire, BadFrame,
                         testing::Values(VerdictCase{"wrongSum",
                                                     "\x02"
                                                     "010C804"
                                                     "\x03"
                                                     "74",
                                                     Verdict::WrongSum},
                                         VerdictCase{"sumInLowerCase",
                                                     "\x02"
                                                     "001E001"
                                                     "\x03"
                                                     "6a",
                                                     Verdict::WrongSum},
                                         VerdictCase{"sumInUpperCase",
                                                     "\x02"
                                                     "001E001"
                                                     "\x03"
                                                     "6A",
                                                     Verdict::Good},
                                         VerdictCase{"unknownCommand",
                                                     "\x02"
                                                     "2100004"
                                                     "\x03"
                                                     "5A",
                                                     Verdict::UnknownCommand},
                                         VerdictCase{"emptyFrame",
                                                     "\x02\x03"
                                                     "03",
                                                     Verdict::UnknownCommand},
                                         VerdictCase{"lowerCaseDigit",
                                                     "\x02"
                                                     "010c804"
                                                     "\x03"
                                                     "93",
                                                     Verdict::Malformed},
                                         VerdictCase{"noDigit",
                                                     "\x02"
                                                     "010G804"
                                                     "\x03"
                                                     "77",
                                                     Verdict::Malformed},
                                         VerdictCase{"readTooShort",
                                                     "\x02"
                                                     "010C80"
                                                     "\x03"
                                                     "3F",
                                                     Verdict::Malformed},
                                         VerdictCase{"readTooLong",
                                                     "\x02"
                                                     "010C8040"
                                                     "\x03"
                                                     "A3",
                                                     Verdict::Malformed},
                                         VerdictCase{"writeWithTooFewBytes",
                                                     "\x02"
                                                     "11000021"
                                                     "\x03"
                                                     "88",
                                                     Verdict::Malformed},
                                         VerdictCase{"writeWithTooManyBytes",
                                                     "\x02"
                                                     "1100001ABCD"
                                                     "\x03"
                                                     "60",
                                                     Verdict::Malformed},
                                         VerdictCase{"forceTooShort",
                                                     "\x02"
                                                     "7000"
                                                     "\x03"
                                                     "CA",
                                                     Verdict::Malformed},
                                         VerdictCase{"forceTooLong",
                                                     "\x02"
                                                     "700000"
                                                     "\x03"
                                                     "2A",
                                                     Verdict::Malformed},
                                         VerdictCase{"readOfNothing",
                                                     "\x02"
                                                     "0100000"
                                                     "\x03"
                                                     "54",
                                                     Verdict::NoBytes},
                                         VerdictCase{"readOf64",
                                                     "\x02"
                                                     "0200040"
                                                     "\x03"
                                                     "59",
                                                     Verdict::Good},
                                         VerdictCase{"readOf65",
                                                     "\x02"
                                                     "0200041"
                                                     "\x03"
                                                     "5A",
                                                     Verdict::TooMany},
                                         VerdictCase{"readTouchesAHole",
                                                     "\x02"
                                                     "0100E03"
                                                     "\x03"
                                                     "6C",
                                                     Verdict::NoMemory},
                                         VerdictCase{"readEndsBeforeAHole",
                                                     "\x02"
                                                     "0100E02"
                                                     "\x03"
                                                     "6B",
                                                     Verdict::Good},
                                         VerdictCase{"readPastTheEnd",
                                                     "\x02"
                                                     "0FFFF02"
                                                     "\x03"
                                                     "AD",
                                                     Verdict::NoMemory},
                                         VerdictCase{"writeTouchesAHole",
                                                     "\x02"
                                                     "11013020000"
                                                     "\x03"
                                                     "1B",
                                                     Verdict::NoMemory},
                                         VerdictCase{"forceInAHole",
                                                     "\x02"
                                                     "7800A"
                                                     "\x03"
                                                     "13",
                                                     Verdict::NoMemory}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FrameServer, TakesAsManyBytesAsItIsTold)
{
    const QByteArray readOf255 = "\x02"
                                 "01000FF"
                                 "\x03"
                                 "80";
    EXPECT_EQ(judgeFrame(readOf255, PlcMemory(), mostThatFramesCarry).verdict, Verdict::Good);
    EXPECT_EQ(judgeFrame(readOf255, PlcMemory(), mostThatFramesCarry - 1).verdict,
              Verdict::TooMany);
}

TEST(FrameServer, FramesOfLessThanASumAreMalformed)
{
    EXPECT_EQ(verdictOn(""), Verdict::Malformed);
    EXPECT_EQ(verdictOn("\x02\x03"
                        "0"),
              Verdict::Malformed);
}

TEST(FrameServer, SaysWhatWasAskedFor)
{
    const auto text = [](const char* frame) {
        return requestText(judgeFrame(frame, PlcMemory(), maxBytes));
    };
    EXPECT_EQ(text("\x02"
                   "010C804"
                   "\x03"
                   "73"),
              "read 4 bytes at 0x10C8");
    EXPECT_EQ(text("\x02"
                   "70805"
                   "\x03"
                   "07"),
              "force on bit 0x0508 (byte 0x00A1 bit 0)");
    EXPECT_EQ(text("\x02"
                   "0200041"
                   "\x03"
                   "5A"),
              "read 65 bytes at 0x2000: too many bytes");
    EXPECT_EQ(text("\x02"
                   "2100004"
                   "\x03"
                   "5A"),
              "frame: unknown command");
}
