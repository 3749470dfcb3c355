// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What becomes of an exchange when a reply arrives: accepted, to be repeated, or failed.

#include "tests/support/driver_fixture.h"

namespace {
class ReplyHandling : public DriverTest
{
protected:
    ReplyHandling() { setUpDriver(); }
};

TEST_F(ReplyHandling, ReplyWithoutAFrameInFlightIsIgnored)
{
    driver.readList << request("D", 100, 2);
    driver.failCount = 2;
    driver.lastExchangeFailed = 1;
    driver.operationKind = 4;
    EXPECT_EQ(0, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ("", errorText);
    EXPECT_TRUE(driver.dataAreas.isEmpty());
    EXPECT_EQ(2, driver.failCount);
    EXPECT_EQ(1, driver.lastExchangeFailed);
    EXPECT_EQ(4, driver.operationKind);
}

TEST_F(ReplyHandling, GoodReadEndsTheExchange)
{
    driver.readList << request("D", 100, 2) << request("M", 0, 1);
    nextFrame();
    EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
    EXPECT_TRUE(driver.frames.isEmpty());
    EXPECT_EQ(0, driver.lastExchangeFailed);
    EXPECT_EQ("1#M0/1 1#D100/2", textOf(driver.readList));
    EXPECT_EQ(4, driver.operationKind);
    EXPECT_EQ("<STX>0010001<ETX>55", nextFrame());
}

TEST_F(ReplyHandling, ErrorTextDescribesTheFrameInFlightWhateverTheOutcome)
{
    driver.readList << request("D", 100, 2);
    nextFrame();
    EXPECT_EQ(8, reply(""));
    EXPECT_EQ("1#D100(2)(0)", errorText);
    EXPECT_EQ(8, reply("<NAK>"));
    EXPECT_EQ("1#D100(2)(1)", errorText);
    EXPECT_EQ(2, reply("<STX>12345678<ETX>A8"));
    EXPECT_EQ("1#D100(2)(12)", errorText);
    nextFrame();
    EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ("1#D100(2)(12)", errorText);
    EXPECT_EQ(0, reply("<NAK>"));
    EXPECT_EQ("", errorText);
}

TEST_F(ReplyHandling, RejectedReplyKeepsTheFrameAndEverythingElse)
{
    driver.readList << request("D", 100, 2) << request("D", 0, 1);
    const std::string sent = nextFrame();
    EXPECT_EQ(8, reply("<NAK>"));
    EXPECT_EQ(1, driver.failCount);
    EXPECT_EQ(0, driver.lastExchangeFailed);
    EXPECT_EQ("1#D100/2 1#D0/1", textOf(driver.readList));
    EXPECT_TRUE(driver.dataAreas.isEmpty());
    EXPECT_EQ(sent, nextFrame());
}

TEST_F(ReplyHandling, ThirdRejectionFailsTheExchange)
{
    driver.readList << request("D", 100, 2) << request("D", 0, 1);
    nextFrame();
    EXPECT_EQ(8, reply("<STX>12345678<ETX>A8"));
    EXPECT_EQ(8, reply("<STX>12345678<ETX>A8"));
    EXPECT_EQ(2, reply("<STX>12345678<ETX>A8"));
    EXPECT_TRUE(driver.frames.isEmpty());
    EXPECT_EQ(0, driver.failCount);
    EXPECT_EQ(1, driver.lastExchangeFailed);
    EXPECT_EQ("1#D0/1 1#D100/2", textOf(driver.readList));
}

TEST_F(ReplyHandling, AcceptedReplyForgetsEarlierRejections)
{
    driver.readList << request("D", 100, 2);
    for (int round = 0; round < 3; ++round) {
        nextFrame();
        EXPECT_EQ(8, reply("<NAK>"));
        EXPECT_EQ(8, reply("<NAK>"));
        EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
        EXPECT_EQ(0, driver.failCount);
    }
}

TEST_F(ReplyHandling, AcknowledgedWriteForgetsEarlierRejections)
{
    driver.writeList << request("D", 1, 1);
    nextFrame();
    EXPECT_EQ(8, reply("<NAK>"));
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ(0, driver.failCount);
}

TEST_F(ReplyHandling, GoodReadCountsAsSuccessBeforeItsValuesAreReported)
{
    merge({watch("D", 100, 2)});
    driver.lastExchangeFailed = 1;
    Bytes seen;
    onCall = [&seen](QString&, int) { seen.push_back(driver.lastExchangeFailed); };
    nextFrame();
    EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ((Bytes{0, 0}), seen);
}

struct HandlingRow
{
    const char* name;
    const char* propertyString;
    std::vector<int> results;
};

class FailLimit : public DriverTest, public ::testing::WithParamInterface<HandlingRow>
{};

TEST_P(FailLimit, CountsRejectionsInARow)
{
    setUpDriver(GetParam().propertyString);
    driver.readList << request("D", 100, 2);
    nextFrame();
    std::vector<int> results;
    while (!driver.frames.isEmpty() && results.size() < 20)
        results.push_back(reply("<NAK>"));
    EXPECT_EQ(GetParam().results, results);
}

const HandlingRow limits[] = {
    {"One", "1#0#0#1#32", {2}},       {"Zero", "1#0#0#0#32", {2}},
    {"Negative", "1#0#0#-5#32", {2}}, {"Smallest", "1#0#0#-2147483648#32", {2}},
    {"Two", "1#0#0#2#32", {8, 2}},    {"Five", "1#0#0#5#32", {8, 8, 8, 8, 2}},
};

INSTANTIATE_TEST_SUITE_P(Limits, FailLimit, ::testing::ValuesIn(limits), nameOf<HandlingRow>);

class WriteReply : public DriverTest
{
protected:
    WriteReply()
    {
        setUpDriver("1#0#0#2#32");
        mark("D", 0, 1);
        write("D", 0, {0x34, 0x12}, 1);
        calls.clear();
        EXPECT_EQ("<STX>11000023412<ETX>21", nextFrame());
    }
};

TEST_F(WriteReply, AckConfirmsTheWrite)
{
    EXPECT_EQ(1, acknowledge());
    EXPECT_TRUE(driver.writeList.isEmpty());
    EXPECT_EQ(0, area("D", 0).bufferSelect);
    EXPECT_EQ((Bytes{0x34, 0x12}), values("D", 0, 1, 2));
    EXPECT_EQ((Texts{"1,1,D,0"}), calls);
    EXPECT_EQ(0, area("D", 0).flag0);
}

TEST_F(WriteReply, AnythingElseIsToBeRepeated)
{
    for (const char* rejected : {"<NAK>", "<STX>1234<ETX>CD"}) {
        driver.failCount = 0;
        EXPECT_EQ(8, reply(rejected));
    }
    EXPECT_EQ("1#D0/1", textOf(driver.writeList));
    EXPECT_EQ(1, area("D", 0).bufferSelect);
    EXPECT_EQ(Texts(), calls);
    EXPECT_EQ("<STX>11000023412<ETX>21", nextFrame());
}

TEST_F(WriteReply, LastNakUndoesTheWriteAndDropsIt)
{
    EXPECT_EQ(8, reply("<NAK>"));
    EXPECT_EQ(2, reply("<NAK>"));
    EXPECT_TRUE(driver.writeList.isEmpty());
    EXPECT_EQ((Bytes{0, 0}), values("D", 0, 1, 2));
    EXPECT_EQ((Texts{"1,1,D,0"}), calls);
    EXPECT_EQ("1#D0", textOf(driver.dataAreas));
    EXPECT_EQ(0, area("D", 0).flag0);  // marks are for failed reads
}

TEST_F(WriteReply, RecipeDownloadChangesNothingInTheCacheHoweverItEnds)
{
    acknowledge();
    write("D", 0, {0x78, 0x56}, 1);
    driver.writeList.clear();
    calls.clear();
    driver.recipeVars << recipeEntry("D", 0, 1, 0);
    for (const char* end : {"<ACK>", "<NAK>"}) {
        requestDownload();
        ASSERT_EQ("1#D0/1", nextRequest());
        while (reply(end) == 8)
            EXPECT_STREQ("<NAK>", end);
        EXPECT_EQ(1, area("D", 0).bufferSelect);
        EXPECT_EQ(Texts(), calls);
    }
}

TEST_F(WriteReply, ReadOfCountZeroIsAcceptedByAnAck)
{
    acknowledge();
    calls.clear();
    readOnce(watch("D", 5, 0));
    EXPECT_EQ("<STX>0100A00<ETX>65", nextFrame());
    EXPECT_EQ(8, reply("<STX><ETX>03"));
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ((Texts{"-1,-1,-1,0"}), calls);
    EXPECT_TRUE(driver.conditionReadList.isEmpty());
}
}  // namespace
