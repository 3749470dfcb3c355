// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host that reads, writes and queues from inside the value-change callback while a reply is
// being handled. Growing the lists moves them in memory: nothing may hold on to them.

#include "tests/support/driver_fixture.h"

namespace {
class ReentrantCallback : public DriverTest
{
protected:
    ReentrantCallback()
    {
        setUpDriver("1#0#0#1#32");
        QList<KEY_ADDRESS> keys;
        keys << watch("D", 100, 4) << watch("32CV", 200, 4);
        intf_addrMerge(keys);
        driver.readList.clear();
    }
    void poll(const char* registerType, int start, int count, const std::string& text)
    {
        driver.readList.clear();
        driver.readList << request(registerType, start, count);
        ASSERT_NE("", nextFrame());
        ASSERT_EQ(1, reply(text));
    }
};

TEST_F(ReentrantCallback, MutexIsFreeInEveryCall)
{
    int busy = 0;
    onCall = [this, &busy](QString&, int) { busy += mutexIsFree() ? 0 : 1; };
    poll("D", 100, 2, "<STX>12345678<ETX>A7");
    write("D", 101, {1, 2}, 1);
    nextFrame();
    acknowledge();
    KEY_ADDRESS key = watch("D", 100, 1);
    intf_addConditionRead(key, 0);
    nextFrame();
    reply("");
    driver.recipeVars << recipeEntry("D", 100, 1, 0);
    requestUpload();
    nextFrame();
    reply("<STX>1234<ETX>CD");
    EXPECT_LE(5U, calls.size());
    EXPECT_EQ(0, busy);
}

TEST_F(ReentrantCallback, HostReadsTheNewValueOfAPolledWord)
{
    Bytes seen;
    onCall = [this, &seen](QString&, int number) { seen = values("D", number, 1, 2); };
    poll("D", 100, 1, "<STX>1234<ETX>CD");
    EXPECT_EQ((Bytes{0x12, 0x34}), seen);
}

TEST_F(ReentrantCallback, WriteFromInsideAPollStaysPending)
{
    onCall = [this](QString&, int number) {
        onCall = nullptr;
        write("D", number, {9, 9}, 1);
    };
    poll("D", 100, 1, "<STX>1234<ETX>CD");
    EXPECT_EQ((Bytes{9, 9}), values("D", 100, 1, 2));
    EXPECT_EQ("1#D100/1", textOf(driver.writeList));
}

TEST_F(ReentrantCallback, WriteFromInsideItsOwnCompletionIsSentNext)
{
    write("D", 100, {1, 0}, 1);
    nextFrame();
    onCall = [this](QString&, int) {
        onCall = nullptr;
        write("D", 100, {2, 0}, 1);
    };
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ((Bytes{2, 0}), values("D", 100, 1, 2));
    ASSERT_EQ("1#D100/1", textOf(driver.writeList));
    EXPECT_EQ(2, driver.writeList.at(0).data[0]);
    EXPECT_EQ("1#D100/1", nextRequest());
}

TEST_F(ReentrantCallback, WriteFromInsideItsOwnFailureIsSentNext)
{
    write("D", 100, {1, 0}, 1);
    nextFrame();
    onCall = [this](QString&, int) {
        onCall = nullptr;
        write("D", 100, {2, 0}, 1);
    };
    EXPECT_EQ(2, reply("<NAK>"));
    ASSERT_EQ("1#D100/1", textOf(driver.writeList));
    EXPECT_EQ(2, driver.writeList.at(0).data[0]);
    EXPECT_EQ((Bytes{2, 0}), values("D", 100, 1, 2));
}

TEST_F(ReentrantCallback, OneOffReadQueuedFromItsOwnEndIsServedNext)
{
    KEY_ADDRESS key = watch("D", 100, 1);
    intf_addConditionRead(key, 1);
    nextFrame();
    onCall = [](QString& text, int) {
        if (text != QString::fromLatin1("-1"))
            return;
        onCall = nullptr;
        KEY_ADDRESS again = watch("D", 100, 1);
        intf_addConditionRead(again, 2);
    };
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    ASSERT_EQ("1#D100/1", textOf(driver.conditionReadList));
    EXPECT_EQ(2, driver.conditionReadList.at(0).tag);
}

TEST_F(ReentrantCallback, HundredsOfWritesFromInsideAPollFillTheQueueAndNoMore)
{
    onCall = [this](QString&, int) {
        onCall = nullptr;
        write("M", 0, Bytes(600, 1), 600);
    };
    poll("D", 100, 1, "<STX>1234<ETX>CD");
    EXPECT_EQ(513, driver.writeList.size());
    EXPECT_EQ((Bytes{0x12, 0x34}), values("D", 100, 1, 2));
}

TEST_F(ReentrantCallback, HostMayReuseItsReplyBufferAtOnce)
{
    driver.readList << request("D", 100, 2);
    nextFrame();
    QByteArray bytes = wireBytes("<STX>12345678<ETX>A7");
    QString error;
    onCall = [&bytes](QString&, int) { bytes.fill('?'); };
    EXPECT_EQ(1, intf_dealRcvFrame(bytes, error));
    EXPECT_EQ((Bytes{0x12, 0x34, 0x56, 0x78}), values("D", 100, 2, 4));
    EXPECT_EQ("1#D100(2)(12)", plain(error));
}

// Against the rules of the interface, but no reason to fall over.
TEST_F(ReentrantCallback, HostThatSetsUpAnewFromInsideIsLeftWithAFreshConnection)
{
    onCall = [this](QString&, int) {
        onCall = nullptr;
        setUpDriver();
    };
    driver.readList << request("D", 100, 2);
    nextFrame();
    reply("<STX>12345678<ETX>A7");
    EXPECT_TRUE(driver.frames.isEmpty());
    EXPECT_EQ("", nextFrame());

    KEY_ADDRESS key = watch("D", 100, 1);
    intf_addConditionRead(key, 0);
    onCall = [this](QString&, int) {
        onCall = nullptr;
        setUpDriver();
    };
    nextFrame();
    reply("<STX>1234<ETX>CD");
    EXPECT_TRUE(driver.conditionReadList.isEmpty());
    EXPECT_EQ("", nextFrame());
}
}  // namespace
