// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The built-in program, at chosen moments.

#include "tests/tools/fxsim/printing.h"
#include "tools/fxsim/plc/sample_program.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

// In steps of a scan, as it runs in the PLC.
PlcMemory after(qint64 elapsedMs)
{
    PlcMemory memory;
    SampleProgram program;
    program.start(memory);
    for (qint64 ms = 10; ms < elapsedMs; ms += 10)
        program.advance(memory, ms);
    program.advance(memory, elapsedMs);
    return memory;
}

}  // namespace

TEST(SampleProgram, InputsToggle)
{
    EXPECT_EQ(after(0).byte(0x0080), 0x00);
    EXPECT_EQ(after(500).byte(0x0080), 0x01);
    EXPECT_EQ(after(1000).byte(0x0080), 0x02);
    EXPECT_EQ(after(1500).byte(0x0080), 0x07);
}

TEST(SampleProgram, OneRelayMovesUp)
{
    EXPECT_EQ(after(0).byte(0x0100), 0x01);
    EXPECT_EQ(after(250).byte(0x0100), 0x02);
    EXPECT_EQ(after(1750).byte(0x0100), 0x80);
    EXPECT_EQ(after(2000).byte(0x0100), 0x01);
}

TEST(SampleProgram, TimersCountTenthsAndHoldWithTheirContactAndOutputOn)
{
    EXPECT_EQ(after(4999).read(0x0800, 8), fromHex("3100310031003100"));
    EXPECT_EQ(after(4999).byte(0x00C0), 0x00);
    const PlcMemory held = after(5500);
    EXPECT_EQ(held.read(0x0800, 8), fromHex("3200370037003700"));
    EXPECT_EQ(held.byte(0x00C0), 0x01);
    EXPECT_EQ(held.byte(0x00A0), 0x01);
    EXPECT_EQ(after(6000).value(0x0800, 2), 0U);
    EXPECT_EQ(after(6000).byte(0x00C0), 0x00);
    EXPECT_EQ(after(15000).byte(0x00C0), 0x04);
}

TEST(SampleProgram, CountersCount)
{
    EXPECT_EQ(after(499).value(0x0A00, 2), 0U);
    EXPECT_EQ(after(500).value(0x0A00, 2), 1U);
    EXPECT_EQ(after(1500).value(0x0A00, 2), 2U);
    EXPECT_EQ(after(1500).value(0x0A02, 2), 15U);
    EXPECT_EQ(after(1500).value(0x0C00, 4), 65555U) << "65,000 + 15 * 37";
    EXPECT_EQ(after(9499).byte(0x01C0), 0x00);
    EXPECT_EQ(after(9500).byte(0x01C0), 0x01);
    EXPECT_EQ(after(100000).byte(0x01C0), 0x03);
}

TEST(SampleProgram, CountersGoOnFromWhereAHostSetsThem)
{
    PlcMemory memory;
    SampleProgram program;
    program.start(memory);
    program.advance(memory, 1000);
    memory.setValue(0x0C00, 4, 200000);
    program.advance(memory, 1200);
    EXPECT_EQ(memory.value(0x0C00, 4), 200074U);
}

TEST(SampleProgram, WordsMove)
{
    const PlcMemory memory = after(5000);
    EXPECT_EQ(memory.value(0x1000, 2), 5U);
    EXPECT_EQ(memory.value(0x1002, 2), 500U);
    EXPECT_EQ(memory.value(0x1004, 2), 1000U);
    EXPECT_EQ(memory.value(0x1006, 2), 50U);
    EXPECT_EQ(memory.read(0x1008, 8), fromHex("0000000200000000")) << "bit 25 of 64";
    EXPECT_EQ(memory.value(0x1010, 4), 5000U);
    EXPECT_EQ(after(15000).value(0x1002, 2), 500U);
    EXPECT_EQ(after(15000).value(0x1004, 2), 0xFC18U) << "-1000";
}

TEST(SampleProgram, TouchesNothingElse)
{
    PlcMemory memory;
    memory.setImage(QByteArray(65536, static_cast<char>(0xA5)));
    SampleProgram program;
    program.start(memory);
    for (qint64 ms = 0; ms < 40000; ms += 10)
        program.advance(memory, ms);
    const QVector<AddressRange> touched = {{0x0080, 0x0080}, {0x00A0, 0x00A0}, {0x00C0, 0x00C0},
                                           {0x0100, 0x0100}, {0x01C0, 0x01C0}, {0x0800, 0x0807},
                                           {0x0A00, 0x0A03}, {0x0C00, 0x0C03}, {0x1000, 0x1013}};
    memory.setPresent(touched);
    for (int address = 0; address < addressableBytes; ++address) {
        const int expected = memory.has(address, 1) ? memory.byte(address) : 0xA5;
        ASSERT_EQ(memory.byte(address), expected) << "at " << address;
    }
    EXPECT_EQ(memory.byte(0x00A0) & 0xF0, 0xA0);
    EXPECT_EQ(memory.byte(0x00C0) & 0xF0, 0xA0);
    EXPECT_EQ(memory.byte(0x01C0) & 0xFC, 0xA4);
}
