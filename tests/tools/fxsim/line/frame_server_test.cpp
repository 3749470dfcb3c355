// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Frames as they stand on the wire, judged and carried out. Every byte here is a literal, so that
// the test and the simulator cannot be wrong together.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/line/frame_server.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

constexpr int maxBytes = 64;
constexpr int mostThatFramesCarry = 255;

Verdict verdictOn(const QByteArray& bytes, const PlcMemory& memory = PlcMemory())
{
    return judgeFrame(bytes, memory, maxBytes).verdict;
}

QByteArray served(const QByteArray& bytes, PlcMemory& memory)
{
    const Request request = judgeFrame(bytes, memory, maxBytes);
    EXPECT_EQ(request.verdict, Verdict::Good) << bytes;
    return carryOut(request, memory);
}

}  // namespace

TEST(FrameServer, ReadsFourBytes)
{
    PlcMemory memory;
    memory.write(0x10C8, fromHex("12345678"));
    EXPECT_EQ(served(frame("010C804", "73"), memory), frame("12345678", "A7"));
}

TEST(FrameServer, ReadsHexLettersInUpperCase)
{
    PlcMemory memory;
    memory.write(0x0080, fromHex("ABCDEF"));
    EXPECT_EQ(served(frame("0008003", "5E"), memory), frame("ABCDEF", "98"));
}

TEST(FrameServer, WritesBytesInTheirOrder)
{
    PlcMemory memory;
    EXPECT_EQ(served(frame("11000041234ABCD", "2D"), memory), "\x06");
    EXPECT_EQ(memory.read(0x0FFF, 6), fromHex("001234ABCD00"));
}

// A force base is eight times the byte address at which the same devices are read.
TEST(FrameServer, ForceOnSetsTheBitThatAReadShows)
{
    const struct
    {
        const char* name;
        QByteArray frame;
        int byteAddress;
        int byteAfter;  // of a byte that was zero
    } rows[] = {
        {"the first bit of all", frame("70000", "FA"), 0x0000, 0x01},
        {"outputs", frame("70805", "07"), 0x00A1, 0x01},
        {"timer contacts", frame("70306", "03"), 0x00C0, 0x08},
        {"relays", frame("7FF08", "2E"), 0x011F, 0x80},
        {"counter contacts", frame("7000E", "0F"), 0x01C0, 0x01},
        {"special relays", frame("7070F", "17"), 0x01E0, 0x80},
        {"the last bit of all", frame("7FFFF", "52"), 0x1FFF, 0x80},
    };
    for (const auto& row : rows) {
        PlcMemory memory;
        EXPECT_EQ(served(row.frame, memory), "\x06") << row.name;
        EXPECT_EQ(memory.byte(row.byteAddress), row.byteAfter) << row.name;
    }
}

TEST(FrameServer, QuestionsOfProgrammingSoftwareAreAcknowledged)
{
    PlcMemory memory;
    EXPECT_EQ(served(frame("B", "45"), memory), "\x06");
    EXPECT_EQ(served(frame("4", "37"), memory), "\x06");
    EXPECT_EQ(served(frame("B0E02", "1C"), memory), "\x06");
    EXPECT_EQ(verdictOn(frame("B", "46")), Verdict::WrongSum);
}

TEST(FrameServer, ForceOffClearsOneBit)
{
    PlcMemory memory;
    memory.setByte(0x0100, 0xFF);
    EXPECT_EQ(served(frame("80308", "06"), memory), "\x06");
    EXPECT_EQ(memory.byte(0x0100), 0xF7);
}

TEST(FrameServer, TellsBadFramesApart)
{
    const struct
    {
        const char* name;
        QByteArray frame;
        Verdict verdict;
    } rows[] = {
        {"wrong sum", frame("010C804", "74"), Verdict::WrongSum},
        {"sum in lower case", frame("001E001", "6a"), Verdict::WrongSum},
        {"sum in upper case", frame("001E001", "6A"), Verdict::Good},
        {"unknown command", frame("2100004", "5A"), Verdict::UnknownCommand},
        {"empty frame", frame("", "03"), Verdict::UnknownCommand},
        {"lower case digit", frame("010c804", "93"), Verdict::Malformed},
        {"no digit", frame("010G804", "77"), Verdict::Malformed},
        {"read too short", frame("010C80", "3F"), Verdict::Malformed},
        {"read too long", frame("010C8040", "A3"), Verdict::Malformed},
        {"write with too few bytes", frame("11000021", "88"), Verdict::Malformed},
        {"write with too many bytes", frame("1100001ABCD", "60"), Verdict::Malformed},
        {"force too short", frame("7000", "CA"), Verdict::Malformed},
        {"force too long", frame("700000", "2A"), Verdict::Malformed},
        {"read of nothing", frame("0100000", "54"), Verdict::NoBytes},
        {"read of 64", frame("0200040", "59"), Verdict::Good},
        {"read of 65", frame("0200041", "5A"), Verdict::TooMany},
        {"read touches ahole", frame("0100E03", "6C"), Verdict::NoMemory},
        {"read ends before ahole", frame("0100E02", "6B"), Verdict::Good},
        {"read past the end", frame("0FFFF02", "AD"), Verdict::NoMemory},
        {"write touches ahole", frame("11013020000", "1B"), Verdict::NoMemory},
        {"force in ahole", frame("7800A", "13"), Verdict::NoMemory},
        {"force before ahole", frame("77F0A", "28"), Verdict::Good},
        {"nothing at all", "", Verdict::Malformed},
        {"less than a sum", fromHex("020330"), Verdict::Malformed},
    };
    PlcMemory memory;
    memory.setMissing({{0x1010, 0x1013}, {0x0150, 0x0150}});
    for (const auto& row : rows)
        EXPECT_EQ(verdictOn(row.frame, memory), row.verdict) << row.name;
}

TEST(FrameServer, TakesAsManyBytesAsItIsTold)
{
    const QByteArray readOf255 = frame("01000FF", "80");
    EXPECT_EQ(judgeFrame(readOf255, PlcMemory(), mostThatFramesCarry).verdict, Verdict::Good);
    EXPECT_EQ(judgeFrame(readOf255, PlcMemory(), mostThatFramesCarry - 1).verdict,
              Verdict::TooMany);
}

TEST(FrameServer, SaysWhatWasAskedFor)
{
    const auto text = [](const QByteArray& request) {
        return requestText(judgeFrame(request, PlcMemory(), maxBytes));
    };
    EXPECT_EQ(text(frame("010C804", "73")), "read 4 bytes at 0x10C8");
    EXPECT_EQ(text(frame("010D001", "69")), "read 1 byte at 0x10D0");
    EXPECT_EQ(text(frame("70805", "07")), "force on bit 0x0508 (byte 0x00A1 bit 0)");
    EXPECT_EQ(text(frame("0200041", "5A")), "read 65 bytes at 0x2000: too many bytes");
    EXPECT_EQ(text(frame("B", "45")), "command B");
    EXPECT_EQ(text(frame("2100004", "5A")), "frame: unknown command");
}
