// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Entry points that a host calls before it has set a connection up: lists are empty, pointers
// null, limits 0, and every call is harmless.

#include "tests/support/driver_fixture.h"

namespace {
using BeforeSetUp = DriverTest;

TEST_F(BeforeSetUp, NothingIsToBeSent)
{
    FRAME_PRO out;
    out.frameLength = 55;
    EXPECT_EQ(0, intf_getSendFrame(&out));
    EXPECT_EQ(55, out.frameLength);
    EXPECT_EQ(0, intf_getSendFrame(nullptr));
}

TEST_F(BeforeSetUp, PlanIsCutToTheSmallestFrames)
{
    QList<KEY_ADDRESS> keys;
    keys << watch("D", 10, 2) << watch("M", 0, 9);
    EXPECT_EQ(4, intf_addrMerge(keys));
    EXPECT_EQ("1#M0/1 1#M8/1 1#D10/1 1#D11/1", textOf(driver.readList));
}

TEST_F(BeforeSetUp, PlanIsPolledWithoutHostMemory)
{
    QList<KEY_ADDRESS> keys;
    keys << watch("D", 10, 1);
    intf_addrMerge(keys);
    EXPECT_EQ("<STX>0101402<ETX>5B", nextFrame());
    // A fail limit of 0 makes the first rejection a failure.
    EXPECT_EQ(2, reply(""));
}

TEST_F(BeforeSetUp, WritesAreMirroredAndCutToSingleWords)
{
    write("D", 5, {1, 2, 3, 4}, 2);
    EXPECT_EQ("1#D5/1 1#D6/1", textOf(driver.writeList));
    EXPECT_EQ((Bytes{1, 2, 3, 4}), values("D", 5, 2, 4));
}
}  // namespace
