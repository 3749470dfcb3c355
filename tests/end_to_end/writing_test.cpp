// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Host writes: from the host's buffers over the wire into the memory of the PLC.

#include "tests/end_to_end/session_fixture.h"

namespace {
using Writing = Session;

TEST_F(Writing, BitsWordsAndCountersReachThePlc)
{
    connect();
    monitor(QList<KEY_ADDRESS>() << range("D", 0, 1));
    write("M", 9, {1, 1, 0}, 3);
    write("Y", 8, {1}, 1);
    write("D", 100, {0x34, 0x12, 0x78, 0x56}, 2);
    write("32CV", 201, {1, 2, 3, 4}, 2);
    write("SD", 8001, {7, 8}, 1);
    plc.put(0x0101, {0xFF});
    EXPECT_EQ(10, exchanges(10));
    EXPECT_EQ((Bytes{0xF7}), plc.at(0x0101, 1));  // M9, M10 on, M11 off
    EXPECT_EQ((Bytes{0x01}), plc.at(0x00A1, 1));  // Y10
    EXPECT_EQ((Bytes{0x34, 0x12, 0x78, 0x56}), plc.at(0x10C8, 4));
    EXPECT_EQ((Bytes{1, 2, 3, 4}), plc.at(0x0C04, 4));
    EXPECT_EQ((Bytes{7, 8}), plc.at(0x0F02, 2));
}

TEST_F(Writing, WrittenValueIsReadAtOnceAndConfirmedLater)
{
    connect();
    monitor(QList<KEY_ADDRESS>() << range("D", 100, 1) << range("M", 3, 1));
    write("D", 100, {1, 2}, 1);
    write("M", 3, {1}, 1);
    EXPECT_EQ((Bytes{1, 2}), values("D", 100, 1, 2));
    EXPECT_EQ((Bytes{1}), values("M", 3, 1, 1));
    EXPECT_EQ((Texts{"1,1,D,100", "1,1,M,3"}), calls);
    calls.clear();
    EXPECT_EQ(2, exchanges(2));
    EXPECT_EQ((Texts{"1,1,D,100", "1,1,M,3"}), calls);
    calls.clear();
    EXPECT_EQ(2, exchanges(2));
    EXPECT_EQ((Bytes{1, 2}), values("D", 100, 1, 2));
    EXPECT_EQ((Bytes{1}), values("M", 3, 1, 1));
    EXPECT_EQ(Texts(), calls);
}
}  // namespace
