// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The two request bytes are the host's: while it holds its mutex, no exchange looks at them and
// none clears them.

#include "tests/support/driver_fixture.h"

#include <atomic>
#include <thread>

namespace {
constexpr int turnsToGive = 20000;  // to a driver that does not wait; one that does takes none

class RequestByteLock : public DriverTest
{
protected:
    RequestByteLock()
    {
        setUpDriver();
        QVector<_RCP_VAR_PRO> list{recipeEntry("D", 100, 1, 0)};
        intf_setRcpAddress(list);
    }

    // Calls the driver from a second thread while this one holds the mutex, and changes the bytes
    // before it lets go: the call must not end before, and must see what was changed.
    template <class Call, class Change>
    void callWhileHeld(Call call, Change change)
    {
        std::atomic<bool> isRunning{false};
        std::atomic<bool> isDone{false};
        hostMutex.lock();
        std::thread other([&] {
            isRunning = true;
            call();
            isDone = true;
        });
        while (!isRunning)
            std::this_thread::yield();
        for (int turn = 0; turn < turnsToGive && !isDone; ++turn)
            std::this_thread::yield();
        EXPECT_FALSE(isDone) << "the driver did not wait for the mutex";
        change();
        hostMutex.unlock();
        other.join();
        EXPECT_TRUE(mutexIsFree());
    }
};

TEST_F(RequestByteLock, BytesAreReadWithTheMutexHeld)
{
    std::string sent;
    callWhileHeld([&] { sent = nextRequest(); }, [this] { requestDownload(); });
    EXPECT_EQ("1#D100/1", sent);
}

TEST_F(RequestByteLock, DownloadByteIsClearedWithTheMutexHeld)
{
    requestDownload();
    ASSERT_EQ("1#D100/1", nextRequest());
    callWhileHeld([this] { acknowledge(); },
                  [this] { EXPECT_EQ(1, hostMemory[fxDownloadRequestByte]); });
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);
}

TEST_F(RequestByteLock, UploadByteIsClearedWithTheMutexHeld)
{
    requestUpload();
    ASSERT_EQ("1#D100/1", nextRequest());
    callWhileHeld([this] { reply("<STX>1234<ETX>CD"); },
                  [this] { EXPECT_EQ(1, hostMemory[fxUploadRequestByte]); });
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
}
}  // namespace
