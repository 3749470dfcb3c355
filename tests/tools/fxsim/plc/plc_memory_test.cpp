// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The flat memory: bytes, bits, what is missing and what is mirrored.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/plc/plc_memory.h"

#include <gtest/gtest.h>

using namespace fxsim;

TEST(PlcMemory, ValuesStandLowestByteFirst)
{
    PlcMemory memory;
    memory.setValue(0x0C00, 4, 0x12345678);
    EXPECT_EQ(memory.read(0x0C00, 4), fromHex("78563412"));
    EXPECT_EQ(memory.value(0x0C01, 2), 0x3456U);
}

TEST(PlcMemory, BitAddressIsEightTimesByteAddressPlusBit)
{
    PlcMemory memory;
    memory.forceBit(0x0803, true);
    EXPECT_EQ(memory.byte(0x0100), 0x08);
    memory.forceBit(0x0807, true);
    memory.forceBit(0x0803, false);
    EXPECT_EQ(memory.byte(0x0100), 0x80);
}

TEST(PlcMemory, HasWholeRangesOnly)
{
    PlcMemory memory;
    memory.setPresent({{0x1000, 0x1FFF}});
    memory.setMissing({{0x1010, 0x1013}});
    EXPECT_TRUE(memory.has(0x1000, 16));
    EXPECT_FALSE(memory.has(0x0FFF, 2));
    EXPECT_TRUE(memory.has(0x0FFF, 0));
    EXPECT_FALSE(memory.has(0x1000, 17));
    EXPECT_TRUE(memory.has(0x1014, 1));
    EXPECT_TRUE(memory.has(0x1FFF, 1));
    EXPECT_FALSE(memory.has(0x1FFF, 2));
}

TEST(PlcMemory, HasNothingPastTheLastAddress)
{
    const PlcMemory memory;
    EXPECT_TRUE(memory.has(0xFFFF, 1));
    EXPECT_FALSE(memory.has(0xFFFF, 2));
    EXPECT_FALSE(memory.has(0x10000, 1));
    EXPECT_FALSE(memory.has(-1, 1));
}

TEST(PlcMemory, MirrorShowsWritesAndForcesAtItsOtherEnd)
{
    PlcMemory memory;
    memory.setMirrors({{0x0F00, 0x0E00, 0x100}});
    memory.write(0x0F02, fromHex("1234"));
    memory.write(0x0EFF, fromHex("99"));
    EXPECT_EQ(memory.read(0x0E02, 2), fromHex("1234"));
    EXPECT_EQ(memory.read(0x0F02, 2), fromHex("1234"));
    memory.write(0x0FFF, fromHex("5566"));
    EXPECT_EQ(memory.read(0x0EFF, 2), fromHex("5500")) << "0x1000 lies outside the window";
    memory.forceBit(0x0F10 * 8, true);
    EXPECT_EQ(memory.byte(0x0E10), 0x01);
    memory.setByte(0x0F20, 7);
    EXPECT_EQ(memory.byte(0x0E20), 0) << "the bench's writes are not mirrored";
}

TEST(PlcMemory, ImageIsAlwaysOfFullLength)
{
    PlcMemory memory;
    memory.setImage(fromHex("0102"));
    EXPECT_EQ(memory.image().size(), 65536);
    EXPECT_EQ(memory.read(0, 3), fromHex("010200"));
}
