// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Trace lines as people read them.

#include "tests/tools/fxsim/printing.h"
#include "tools/fxsim/line/simulator.h"

#include <gtest/gtest.h>

using namespace fxsim;

TEST(TraceText, ShowsHexAndReadableSideBySide)
{
    EXPECT_EQ(
        traceLine({12345678, "/dev/pts/5", TraceEntry::Direction::FromHost,
                   fromHex("02373038303503"
                           "3037"),
                   "force on"}),
        "   12.345678 /dev/pts/5 > 02 37 30 38 30 35 03 30 37 | <STX>70805<ETX>07 | force on");
    EXPECT_EQ(traceLine({5, "pty", TraceEntry::Direction::ToHost, "\x06", ""}),
              "    0.000005 pty < 06 | <ACK>");
    EXPECT_EQ(traceLine({1000000, "pty", TraceEntry::Direction::Note, "", "fault: silence"}),
              "    1.000000 pty * fault: silence");
}

TEST(TraceText, NamesEveryCharacterThatCannotBeRead)
{
    EXPECT_EQ(readable(fromHex("0203050615")), "<STX><ETX><ENQ><ACK><NAK>");
    EXPECT_EQ(readable(fromHex("417E207F0AFF00")), "A~ <7F><0A><FF><00>");
}
