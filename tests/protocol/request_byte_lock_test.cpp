// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The two request bytes are the host's: without its mutex no exchange looks at them and none clears
// them. The driver runs with a mutex of the test's own, under which alone the bytes are true: to an
// access without it each looks like the other of 0 and 1, and what it writes is lost.

#include "driver/intf.h"
#include "tests/protocol/host_mutex/QMutex"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

struct RequestBytes
{
    unsigned char download = 0;
    unsigned char upload = 0;
};

std::vector<unsigned char> hostMemory(fxHostMemoryBytes);
RequestBytes requests;
bool isSwapped = false;  // by the host, each time that the mutex is free
bool isHeld = false;

void putIntoMemory(RequestBytes bytes)
{
    hostMemory[fxDownloadRequestByte] = bytes.download;
    hostMemory[fxUploadRequestByte] = bytes.upload;
}

void hideRequests()
{
    putIntoMemory({static_cast<unsigned char>(1 - requests.download),
                   static_cast<unsigned char>(1 - requests.upload)});
}

class RequestByteLock : public ::testing::Test
{
protected:
    RequestByteLock()
    {
        int status = 0;
        intf_initProperty(hostMemory.data(), 0, recipeWords, &status, "1#0#0#1#32", &mutex);
        _RCP_VAR_PRO entry;
        entry.linkNo = 1;
        entry.registerType = QLatin1String("D");
        entry.count = 1;
        QVector<_RCP_VAR_PRO> list{entry};
        intf_setRcpAddress(list);
        isSwapped = false;
    }
    static void request(unsigned char download, unsigned char upload)
    {
        requests = {download, upload};
        hideRequests();
    }
    // The command of the next frame, or a blank.
    static char nextCommand()
    {
        FRAME_PRO frame;
        return intf_getSendFrame(&frame) == fxFrameToSend ? static_cast<char>(frame.frame[1]) : ' ';
    }
    static int reply(const char* bytes)
    {
        QByteArray reply(bytes);
        QString errorText;
        return intf_dealRcvFrame(reply, errorText);
    }

    QMutex mutex;
    unsigned short recipeWords[1] = {};
};

TEST_F(RequestByteLock, NoRequestIsSeenBesideTheMutex)
{
    request(0, 0);
    EXPECT_EQ(' ', nextCommand());
}

TEST_F(RequestByteLock, DownloadByteIsReadAndClearedWithTheMutexHeld)
{
    request(1, 0);
    EXPECT_EQ('1', nextCommand());
    EXPECT_EQ(fxReplyAccepted, reply("\x06"));
    EXPECT_EQ(0, requests.download);
}

TEST_F(RequestByteLock, UploadByteIsReadAndClearedWithTheMutexHeld)
{
    request(0, 1);
    EXPECT_EQ('0', nextCommand());
    EXPECT_EQ(fxReplyAccepted, reply("\x02"
                                     "1234"
                                     "\x03"
                                     "CD"));
    EXPECT_EQ(0, requests.upload);
}

// Read one after the other they would both have been seen as 0.
TEST_F(RequestByteLock, BytesThatTheHostSwapsAreReadTogether)
{
    request(0, 1);
    isSwapped = true;
    EXPECT_EQ('0', nextCommand());
}

}  // namespace

void QMutex::lock()
{
    EXPECT_FALSE(isHeld);
    isHeld = true;
    putIntoMemory(requests);
}

void QMutex::unlock()
{
    EXPECT_TRUE(isHeld);
    isHeld = false;
    requests = {hostMemory[fxDownloadRequestByte], hostMemory[fxUploadRequestByte]};
    if (isSwapped)
        std::swap(requests.download, requests.upload);
    hideRequests();
}
