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

TEST_F(BeforeSetUp, ReplyIsIgnored)
{
    EXPECT_EQ(0, reply("<ACK>"));
    EXPECT_EQ("", errorText);
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

TEST_F(BeforeSetUp, OneOffReadIsQueued)
{
    KEY_ADDRESS key = watch("D", 7, 1);
    EXPECT_EQ(1, intf_addConditionRead(key, 3));
    EXPECT_EQ("1#D7/1", textOf(driver.conditionReadList));
}

TEST_F(BeforeSetUp, UnknownValuesAreZero)
{
    EXPECT_EQ((Bytes{0, 0}), values("D", 5, 1, 2));
}

TEST_F(BeforeSetUp, RecipeListKeepsTheEntriesOfLinkZero)
{
    QVector<_RCP_VAR_PRO> list;
    list << recipeEntry("D", 0, 1, 0, 0) << recipeEntry("D", 1, 1, 1, 1);
    EXPECT_EQ(1, intf_setRcpAddress(list));
}

TEST_F(BeforeSetUp, AddressServicesAnswer)
{
    int index = -1;
    const QString type = QString::fromLatin1("D");
    EXPECT_EQ(0, intf_checkAddr(type, QString::fromLatin1("12"), &index, 0, 1, 0));
    EXPECT_EQ(12, index);
    QList<QString> texts;
    EXPECT_EQ(1, intf_getRegListByType(0, texts));
    EXPECT_EQ(0, intf_getRegDiscription(type, texts));
    QVector<QString> copies;
    QVector<int> numbers;
    EXPECT_EQ(1, intf_multiCopy(type, 0, 1, -1, copies, numbers));
    EXPECT_TRUE(driver.dataAreas.isEmpty());
}
}  // namespace
