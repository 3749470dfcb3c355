// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Calls out of order: everything before the first set-up, and a set-up in the middle of everything.

#include "tests/model/driver_properties.h"
#include "tests/support/driver_fixture.h"

namespace {

class AnyTime : public DriverTest
{
protected:
    void useEverything()
    {
        merge({watch("D", 10, 2), watch("M", 0, 9), watch("32CV", 200, 1)});
        readOnce(watch("D", 10, 5), 1);
        write("M", 3, {1, 1}, 2);
        write("D", 10, Bytes(8, 9), 4);
        setRecipe({recipeEntry("D", 0, 3, 0, driver.linkNo)});
        EXPECT_EQ("", brokenState());
    }

    static void expectIdle()
    {
        EXPECT_TRUE(driver.readList.isEmpty() && driver.writeList.isEmpty());
        EXPECT_TRUE(driver.conditionReadList.isEmpty() && driver.dataAreas.isEmpty());
        EXPECT_TRUE(driver.frames.isEmpty());
        EXPECT_EQ(0, driver.operationKind);
        EXPECT_EQ(0, driver.failCount);
    }
};

}  // namespace

// Limits are 0 and there is no host memory yet: words go out one at a time, bits eight, and the
// first rejection is a failure.
TEST_F(AnyTime, EverythingWorksBeforeTheFirstSetUp)
{
    EXPECT_EQ("", nextRequest());
    useEverything();
    EXPECT_EQ("1#M0/1 1#M8/1 1#D10/1 1#D11/1 1#32CV200/1", textOf(driver.readList));
    EXPECT_EQ(Bytes(8, 9), values("D", 10, 4, 8));
    EXPECT_EQ("1#M3/1", nextRequest());
    EXPECT_EQ(2, reply("<NAK>"));
    EXPECT_EQ("1#M4/1", nextRequest());
    EXPECT_EQ(1, reply("<ACK>"));
    EXPECT_EQ("1#D10/1", nextRequest());
    EXPECT_EQ("", brokenState());
    EXPECT_EQ("", brokenCache());
}

TEST_F(AnyTime, SetUpForgetsAnOpenWrite)
{
    setUpDriver();
    useEverything();
    EXPECT_EQ("1#M3/1", nextRequest());
    setUpDriver();
    expectIdle();
    EXPECT_EQ(0, reply("<ACK>"));
    EXPECT_EQ("", nextRequest());
}

TEST_F(AnyTime, SetUpForgetsAReadThatWasRejected)
{
    setUpDriver();
    merge({watch("D", 10, 5)});
    EXPECT_EQ("1#D10/5", nextRequest());
    EXPECT_EQ(8, reply(""));
    EXPECT_EQ(8, reply(""));
    setUpDriver();
    expectIdle();
    merge({watch("D", 10, 5)});
    nextRequest();
    EXPECT_EQ(8, reply(""));  // counted from the beginning
}

TEST_F(AnyTime, SetUpLetsATransferGoOnWhereItStood)
{
    setUpDriver();
    setRecipe({recipeEntry("D", 0, 1, 0), recipeEntry("D", 50, 1, 1)});
    requestDownload();
    EXPECT_EQ("1#D0/1", nextRequest());
    EXPECT_EQ(1, reply("<ACK>"));
    EXPECT_EQ("1#D50/1", nextRequest());
    setUpDriver();
    expectIdle();
    EXPECT_EQ("1#D50/1", nextRequest());
    EXPECT_EQ(1, reply("<ACK>"));
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);
}

// The host's memory goes away between two words of an upload.
TEST_F(AnyTime, SetUpWithoutHostMemoryEndsRecipeRequests)
{
    setUpDriver();
    setRecipe({recipeEntry("D", 0, 2, 0)});
    requestUpload();
    EXPECT_EQ("1#D0/2", nextRequest());
    EXPECT_EQ(1, intf_initProperty(nullptr, 0, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ("", nextRequest());
}

TEST_F(AnyTime, MergeInMidExchangeLeavesTheFrameAlone)
{
    setUpDriver();
    merge({watch("D", 10, 1), watch("D", 100, 1)});
    EXPECT_EQ("1#D10/1", nextRequest());
    merge({watch("TV", 0, 1)});
    EXPECT_EQ("1#D10/1", nextRequest());
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    EXPECT_EQ("1#TV0/1", nextRequest());
    EXPECT_EQ((Bytes{0x12, 0x34}), values("D", 10, 1, 2));
}
