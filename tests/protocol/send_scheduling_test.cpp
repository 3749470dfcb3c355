// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which request goes out next, and what is handed to the host with it.

#include "tests/support/driver_fixture.h"

namespace {
class SendScheduling : public DriverTest
{
protected:
    SendScheduling() { setUpDriver(); }
};

TEST_F(SendScheduling, NothingToDoAnswersZeroAndIdle)
{
    driver.operationKind = 4;
    FRAME_PRO out;
    out.frameLength = 1234;
    out.spare = 55;
    out.variable = request("D", 9, 9);
    EXPECT_EQ(0, intf_getSendFrame(&out));
    EXPECT_EQ(1234, out.frameLength);
    EXPECT_EQ(55, out.spare);
    EXPECT_EQ("1#D9/9", textOf(out.variable));
    EXPECT_EQ(0, driver.operationKind);
}

TEST_F(SendScheduling, CyclicReadIsHandedOutWhole)
{
    VARIABLE planned = request("D", 100, 2, 3);
    planned.tag = 4;
    planned.data[1023] = 0xEE;
    driver.readList << planned;
    driver.burstCount = 2;
    FRAME_PRO out;
    out.spare = 55;
    EXPECT_EQ(1, intf_getSendFrame(&out));
    EXPECT_EQ("<STX>010C804<ETX>73", wireText(out.frame, out.frameLength));
    EXPECT_EQ(12, out.replyLength);
    EXPECT_EQ(1, out.isRead);
    EXPECT_EQ(8, out.replyDataChars);
    EXPECT_EQ(0, out.spare);
    EXPECT_EQ("3#D100/2", textOf(out.variable));
    EXPECT_EQ(4, out.variable.tag);
    EXPECT_EQ(0xEE, out.variable.data[1023]);
    EXPECT_EQ("3#D100/2", textOf(driver.current));
    EXPECT_EQ(4, driver.operationKind);
    EXPECT_EQ(0, driver.burstCount);
    EXPECT_EQ("3#D100/2", textOf(driver.readList));
}

TEST_F(SendScheduling, WriteIsHandedOutAndStaysAtTheHead)
{
    VARIABLE queued = request("D", 100, 1);
    queued.data[0] = 0x34;
    queued.data[1] = 0x12;
    driver.writeList << queued;
    EXPECT_EQ("<STX>110C8023412<ETX>3C", nextFrame());
    EXPECT_EQ(2, driver.operationKind);
    EXPECT_EQ(1, driver.burstCount);
    EXPECT_EQ("1#D100/1", textOf(driver.writeList));
    EXPECT_EQ("1#D100/1", textOf(driver.current));
}

TEST_F(SendScheduling, ConditionalReadIsHandedOutAndStaysAtTheHead)
{
    driver.conditionReadList << request("D", 100, 2);
    EXPECT_EQ("<STX>010C804<ETX>73", nextFrame());
    EXPECT_EQ(3, driver.operationKind);
    EXPECT_EQ(1, driver.burstCount);
    EXPECT_EQ("1#D100/2", textOf(driver.conditionReadList));
    EXPECT_EQ("1#D100/2", textOf(driver.current));
}

TEST_F(SendScheduling, FrameInFlightIsRepeatedUnchanged)
{
    driver.writeList << request("D", 1, 1);
    const std::string first = nextFrame();
    driver.writeList.prepend(request("D", 9, 1));
    driver.readList << request("D", 2, 1);
    requestDownload();
    requestUpload();
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(first, nextFrame());
    EXPECT_EQ(1, driver.burstCount);
    EXPECT_EQ(2, driver.operationKind);
    EXPECT_EQ(1, driver.frames.size());
    EXPECT_EQ("1#D1/1", textOf(driver.current));
}

TEST_F(SendScheduling, FirstOfSeveralFramesIsInFlight)
{
    FRAME_PRO first;
    first.frameLength = 7;
    first.spare = 99;
    driver.frames << first << FRAME_PRO();
    FRAME_PRO out;
    EXPECT_EQ(1, intf_getSendFrame(&out));
    EXPECT_EQ(7, out.frameLength);
    EXPECT_EQ(99, out.spare);
}

TEST_F(SendScheduling, OtherValuesThanOneAreNoRecipeRequest)
{
    driver.readList << request("D", 3, 1);
    driver.recipeVars << recipeEntry("D", 100, 1, 0);
    for (const int value : {0, 2, 3, 128, 255}) {
        hostMemory[fxDownloadRequestByte] = hostMemory[fxUploadRequestByte] =
            static_cast<unsigned char>(value);
        EXPECT_EQ("1#D3/1", nextRequest()) << value;
        reply("<STX>0000<ETX>C3");
        EXPECT_EQ(value, hostMemory[fxDownloadRequestByte]);
        EXPECT_EQ(value, hostMemory[fxUploadRequestByte]);
    }
}

TEST_F(SendScheduling, NeighboursOfTheRequestBytesAreNoRequest)
{
    driver.recipeVars << recipeEntry("D", 100, 1, 0);
    hostMemory[60114] = 1;
    EXPECT_EQ("", nextRequest());
}

TEST_F(SendScheduling, FrameInFlightIsRepeatedWithoutTheMutex)
{
    driver.readList << request("D", 3, 1);
    nextRequest();
    hostMutex.lock();
    EXPECT_EQ("1#D3/1", nextRequest());  // would wait for ever if it took the lock
    hostMutex.unlock();
}

TEST_F(SendScheduling, WithoutHostMemoryEverythingElseIsServed)
{
    driver.hostMemory = nullptr;
    driver.recipeVars << recipeEntry("D", 100, 1, 0);
    driver.readList << request("D", 3, 1);
    driver.conditionReadList << request("D", 2, 1);
    driver.writeList << request("D", 1, 1);
    EXPECT_EQ("1#D1/1", nextRequest());
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ("1#D2/1", nextRequest());
    EXPECT_EQ(1, reply("<STX>0000<ETX>C3"));
    EXPECT_EQ("1#D3/1", nextRequest());
}

TEST_F(SendScheduling, WithoutAMutexThereIsNoRecipeRequest)
{
    driver.hostMutex = nullptr;
    driver.recipeVars << recipeEntry("D", 100, 1, 0);
    driver.readList << request("D", 3, 1);
    requestDownload();
    EXPECT_EQ("1#D3/1", nextRequest());
    EXPECT_EQ(1, hostMemory[fxDownloadRequestByte]);
}

TEST_F(SendScheduling, NullOutputAnswersZeroAndChangesNothing)
{
    driver.readList << request("D", 3, 1);
    driver.writeList << request("D", 1, 1);
    driver.operationKind = 4;
    EXPECT_EQ(0, intf_getSendFrame(nullptr));
    EXPECT_TRUE(driver.frames.isEmpty());
    EXPECT_EQ(4, driver.operationKind);
    EXPECT_EQ(0, driver.burstCount);
    EXPECT_EQ("1#D1/1", nextRequest());
    EXPECT_EQ(0, intf_getSendFrame(nullptr));
    EXPECT_EQ(1, driver.frames.size());
}
}  // namespace
