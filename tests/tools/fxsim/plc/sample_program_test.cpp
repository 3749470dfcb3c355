// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The built-in program, at chosen moments.

#include "tests/tools/fxsim/support.h"
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

TEST(SampleProgram, HoldsWhatItPromisesAtEachMoment)
{
    const struct
    {
        qint64 ms;
        int address;
        const char* bytes;
        const char* what;
    } rows[] = {
        {0, 0x0080, "00", "inputs"},
        {500, 0x0080, "01", "inputs"},
        {1000, 0x0080, "02", "inputs"},
        {1500, 0x0080, "07", "inputs"},
        {0, 0x0100, "01", "relays"},
        {250, 0x0100, "02", "relays"},
        {1750, 0x0100, "80", "relays"},
        {2000, 0x0100, "01", "relays"},
        {4999, 0x0800, "3100310031003100", "timers in tenths"},
        {4999, 0x00C0, "00", "timer contacts"},
        {5500, 0x0800, "3200370037003700", "a timer holds"},
        {5500, 0x00C0, "01", "timer contacts"},
        {5500, 0x00A0, "01", "outputs"},
        {6000, 0x0800, "0000", "a timer starts again"},
        {6000, 0x00C0, "00", "timer contacts"},
        {15000, 0x00C0, "04", "timer contacts"},
        {499, 0x0A00, "0000", "edges"},
        {500, 0x0A00, "0100", "edges"},
        {1500, 0x0A00, "02000F00", "edges and tenths"},
        {1500, 0x0C00, "13000100", "65,000 + 15 * 37"},
        {9499, 0x01C0, "00", "counter contacts"},
        {9500, 0x01C0, "01", "counter contacts"},
        {100000, 0x01C0, "03", "counter contacts"},
        {5000, 0x1000, "0500F401E8033200", "seconds, triangle, sine, sawtooth"},
        {5000, 0x1008, "0000000200000000", "bit 25 of 64"},
        {7000, 0x1008, "0000000008000000", "bit 35 of 64"},
        {12600, 0x1008, "0000000000000080", "bit 63 of 64"},
        {12800, 0x1008, "0100000000000000", "bit 0 again"},
        {5000, 0x1010, "88130000", "milliseconds"},
        {100000, 0x1004, "0000", "sine after five turns"},
        {15000, 0x1002, "F40118FC", "triangle and sine on their way down"},
    };
    for (const auto& row : rows) {
        const QByteArray bytes = fromHex(row.bytes);
        EXPECT_EQ(after(row.ms).read(row.address, bytes.size()), bytes)
            << row.what << " after " << row.ms << " ms";
    }
}

TEST(SampleProgram, ShowsItsFirstMomentAtOnce)
{
    PlcMemory memory;
    SampleProgram program;
    program.start(memory);
    EXPECT_EQ(memory.byte(0x0100), 0x01);
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
