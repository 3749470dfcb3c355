// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host that reads, writes and queues from inside its callback, in every place where a callback is
// made. Most times it creates enough areas and requests that every list moves in memory: nothing
// may hold on to them.

#include "tests/model/driver_properties.h"
#include "tests/support/driver_fixture.h"

namespace {

class ReentrantHost : public DriverTest
{
protected:
    ReentrantHost() { setUpDriver("1#0#0#1#32"); }
    ~ReentrantHost() override
    {
        EXPECT_EQ("", brokenState());
        EXPECT_EQ("", brokenCache());
        EXPECT_TRUE(mutexIsFree());
    }

    // In the first callback only, or two words would answer each other for ever.
    void onFirstCall(const std::function<void()>& act)
    {
        onCall = [this, act](QString&, int) {
            if (called++ == 0)
                act();
        };
    }

    // Moves the cache and both queues to other places in memory.
    void growEverything()
    {
        std::vector<unsigned char> bytes(2000, 5);
        intf_getData(9, QLatin1String("D"), 0, 700, bytes.data());
        intf_setData(9, QLatin1String("M"), 0, 600, bytes.data(), 0);
        for (int i = 0; i < 600; ++i)
            readOnce(watch("TV", i, 1, 9));
    }

    int called = 0;
};

}  // namespace

// The write that was under way is the newer one: its store follows the callback.
TEST_F(ReentrantHost, AWriteOfTheSameWordInsideIsOverwritten)
{
    mark("D", 0, 1);
    onFirstCall([this] { write("D", 0, {7, 7}, 1); });
    write("D", 0, {1, 2}, 1);
    EXPECT_EQ((Bytes{1, 2}), values("D", 0, 1, 2));
    EXPECT_EQ((Texts{"1,1,D,0", "1,1,D,0"}), calls);
}

TEST_F(ReentrantHost, AWriteOfANeighbourBitInsideStays)
{
    mark("M", 0, 8);
    onFirstCall([this] { write("M", 1, {1}, 1); });
    write("M", 0, {1}, 1);
    EXPECT_EQ((Bytes{1, 1, 0}), values("M", 0, 3, 3));
    EXPECT_EQ("1#M0/1 1#M1/1", textOf(driver.writeList));
}

TEST_F(ReentrantHost, WhileAWriteIsConfirmed)
{
    write("D", 0, {1, 2, 3, 4}, 2);
    mark("D", 0, 2);
    EXPECT_EQ("1#D0/2", nextRequest());
    onFirstCall([this] {
        growEverything();
        write("D", 1, {9, 9}, 1);
    });
    EXPECT_EQ(1, acknowledge());
    // D1 is confirmed after the callback for D0, with what was written inside it.
    EXPECT_EQ((Bytes{1, 2, 9, 9}), values("D", 0, 2, 4));
    EXPECT_EQ(0, area("D", 1).bufferSelect);
}

TEST_F(ReentrantHost, WhileAWriteIsUndone)
{
    write("M", 5, {1}, 1);
    mark("M", 5, 1);
    EXPECT_EQ("1#M5/1", nextRequest());
    onFirstCall([this] {
        growEverything();
        write("M", 5, {1}, 1);
    });
    EXPECT_EQ(2, reply("<NAK>"));
    EXPECT_EQ((Bytes{1}), values("M", 5, 1, 1));  // written again, and waiting
    EXPECT_EQ(1, area("M", 0).bufferSelect);
}

TEST_F(ReentrantHost, AWriteInsideItsOwnEndIsSentNext)
{
    for (const char* end : {"<ACK>", "<NAK>"}) {
        setUpDriver("1#0#0#1#32");
        called = 0;
        onCall = nullptr;
        write("D", 100, {1, 0}, 1);
        mark("D", 100, 1);
        nextFrame();
        onFirstCall([this] { write("D", 100, {2, 0}, 1); });
        reply(end);
        EXPECT_EQ((Bytes{2, 0}), values("D", 100, 1, 2)) << end;
        EXPECT_EQ("<STX>110C8020200<ETX>34", nextFrame()) << end;
    }
}

// A write of what was just stored stays; what is stored next replaces a write.
TEST_F(ReentrantHost, WhileAReadIsDecoded)
{
    merge({watch("D", 100, 2)});
    EXPECT_EQ("1#D100/2", nextRequest());
    onFirstCall([this] {
        EXPECT_EQ((Bytes{0x12, 0x34}), values("D", 100, 1, 2));
        write("D", 100, {9, 9}, 1);
        write("D", 101, {1, 1}, 1);
        growEverything();
    });
    EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ((Bytes{9, 9, 0x56, 0x78}), values("D", 100, 2, 4));
    EXPECT_EQ(0, area("D", 101).bufferSelect);
    EXPECT_EQ("1#D100/1", nextRequest());
}

TEST_F(ReentrantHost, WhileACounterIsDecoded)
{
    merge({watch("32CV", 200, 2)});
    EXPECT_EQ("1#32CV200/2", nextRequest());
    onFirstCall([this] { growEverything(); });
    EXPECT_EQ(1, reply("<STX>1122334455667788<ETX>4B"));
    EXPECT_EQ((Texts{"1,1,32CV,200"}), callsWith("32CV"));
    EXPECT_EQ((Bytes{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}), values("32CV", 200, 4, 8));
}

TEST_F(ReentrantHost, WhileAOneOffReadEndsWell)
{
    readOnce(watch("D", 100, 2));
    EXPECT_EQ("1#D100/2", nextRequest());
    onFirstCall([this] { growEverything(); });
    EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ((Texts{"-1,-1,-1,0"}), calls);
    EXPECT_EQ("9#M0/1", nextRequest());  // writes go first
    EXPECT_EQ("9#TV0/1", textOf(driver.conditionReadList.at(0)));
}

TEST_F(ReentrantHost, AOneOffReadQueuedAtItsOwnEndIsServedNext)
{
    readOnce(watch("D", 100, 1), 1);
    nextFrame();
    onFirstCall([] { readOnce(watch("D", 100, 1), 2); });
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    ASSERT_EQ("1#D100/1", textOf(driver.conditionReadList));
    EXPECT_EQ(2, driver.conditionReadList.at(0).tag);
}

// What the host queues while it is told of the failure goes with the rest of the queue.
TEST_F(ReentrantHost, WhileAOneOffReadFails)
{
    readOnce(watch("D", 100, 2));
    EXPECT_EQ("1#D100/2", nextRequest());
    onFirstCall([this] { growEverything(); });
    EXPECT_EQ(2, reply("<NAK>"));
    EXPECT_EQ((Texts{"-1,-1,-1,-1"}), calls);
    EXPECT_TRUE(driver.conditionReadList.isEmpty());
}

TEST_F(ReentrantHost, WhileAnUploadStoresWords)
{
    setRecipe({recipeEntry("D", 100, 2, 10)});
    requestUpload();
    EXPECT_EQ("1#D100/2", nextRequest());
    onFirstCall([this] {
        growEverything();
        write("D", 101, {1, 1}, 1);
    });
    EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ((Texts{"0,-1,RWI,10", "0,-1,RWI,11"}), calls);
    EXPECT_EQ(0x3412, recipeWords[10]);
    EXPECT_EQ(0x7856, recipeWords[11]);
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
}

// The text belongs to the call: a host that writes into it changes nothing in the driver.
TEST_F(ReentrantHost, ATextChangedInsideChangesNothing)
{
    mark("D", 0, 3);
    onCall = [](QString& text, int) { text = QLatin1String("scribbled"); };
    write("D", 0, {1, 2, 3, 4, 5, 6}, 3);
    EXPECT_EQ("1#D0/3", nextRequest());
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ(6U, calls.size());
    EXPECT_EQ("1,1,D,2", calls.back());
    EXPECT_EQ(-1, areaOf("scribbled", 0));
}

TEST_F(ReentrantHost, AReplyBufferMayBeUsedAgainAtOnce)
{
    merge({watch("D", 100, 2)});
    nextFrame();
    QByteArray bytes = wireBytes("<STX>12345678<ETX>A7");
    QString error;
    onCall = [&bytes](QString&, int) { bytes.fill('?'); };
    EXPECT_EQ(1, intf_dealRcvFrame(bytes, error));
    EXPECT_EQ((Bytes{0x12, 0x34, 0x56, 0x78}), values("D", 100, 2, 4));
    EXPECT_EQ("1#D100(2)(12)", plain(error));
}
