// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipe transfers from the host's request byte to its clearing: entry by entry, ahead of
// everything else, and what becomes of a transfer that cannot go on.

#include "tests/support/driver_fixture.h"

namespace {
class RecipeTransfer : public DriverTest
{
protected:
    RecipeTransfer() { setUpDriver(); }

    void setRecipeBytes(int word, const Bytes& bytes)
    {
        unsigned char* next = recipeBytes() + 2 * word;
        for (const int value : bytes)
            *next++ = static_cast<unsigned char>(value);
    }
    unsigned char* recipeBytes() { return reinterpret_cast<unsigned char*>(recipeWords.data()); }
    Bytes recipeAt(int word, int wordCount)
    {
        return firstBytes(recipeBytes() + 2 * word, 2 * wordCount);
    }
};

TEST_F(RecipeTransfer, DownloadWritesEveryEntryThenClearsItsByte)
{
    setRecipeBytes(0, {0x34, 0x12, 0x78, 0x56});
    setRecipeBytes(10, {0x01, 0x00});
    setRecipe({recipeEntry("D", 100, 2, 0), recipeEntry("D", 200, 1, 10)});
    requestDownload();
    EXPECT_EQ("<STX>110C80434127856<ETX>18", nextFrame());
    EXPECT_EQ(5, driver.operationKind);
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ(1, driver.recipeIndex);
    EXPECT_EQ(1, hostMemory[fxDownloadRequestByte]);
    EXPECT_EQ("<STX>11190020100<ETX>22", nextFrame());
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ(0, driver.recipeIndex);
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);
    EXPECT_EQ("", nextFrame());
    EXPECT_EQ(Texts(), calls);
    EXPECT_TRUE(driver.dataAreas.isEmpty());
}

TEST_F(RecipeTransfer, DownloadOfABitForcesIt)
{
    setRecipeBytes(3, {1, 0});
    setRecipe({recipeEntry("M", 5, 1, 3)});
    requestDownload();
    EXPECT_EQ("<STX>70508<ETX>07", nextFrame());
}

// A counter's entry counts words on the way down and counters on the way up.
TEST_F(RecipeTransfer, CountOfCountersGoesIntoTheFrameAsItStands)
{
    setRecipeBytes(0, {0x34, 0x12, 0x78, 0x56});
    setRecipe({recipeEntry("32CV", 200, 2, 0)});
    requestDownload();
    EXPECT_EQ("<STX>10C000434127856<ETX>0F", nextFrame());
    acknowledge();
    requestUpload();
    EXPECT_EQ("<STX>00C0008<ETX>6E", nextFrame());
}

TEST_F(RecipeTransfer, UploadStoresEveryEntryThenClearsItsByte)
{
    setRecipe({recipeEntry("D", 100, 2, 40), recipeEntry("TV", 0, 1, 0)});
    requestUpload();
    EXPECT_EQ("<STX>010C804<ETX>73", nextFrame());
    EXPECT_EQ(6, driver.operationKind);
    EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ((Bytes{0, 0, 0x12, 0x34, 0x56, 0x78, 0, 0}), recipeAt(39, 4));
    EXPECT_EQ((Texts{"0,-1,RWI,40", "0,-1,RWI,41"}), calls);
    EXPECT_EQ(1, driver.recipeIndex);
    EXPECT_EQ(1, hostMemory[fxUploadRequestByte]);
    EXPECT_EQ("<STX>0080002<ETX>5D", nextFrame());
    EXPECT_EQ(1, reply("<STX>ABCD<ETX>0D"));
    EXPECT_EQ((Bytes{0xAB, 0xCD, 0, 0}), recipeAt(0, 2));
    EXPECT_EQ(0, driver.recipeIndex);
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
}

// Of each element first its change, then its recipe words, which are all stored by then.
TEST_F(RecipeTransfer, UploadReportsElementByElement)
{
    mark("D", 100, 2);
    mark("32CV", 200, 2);
    std::vector<Bytes> stored;
    onCall = [&](QString&, int) { stored.push_back(recipeAt(10, 2)); };
    setRecipe({recipeEntry("D", 100, 2, 10), recipeEntry("32CV", 200, 1, 10)});
    requestUpload();
    nextFrame();
    EXPECT_EQ(1, reply("<STX>41424344<ETX>9D"));
    EXPECT_EQ((Texts{"1,1,D,100", "0,-1,RWI,10", "1,1,D,101", "0,-1,RWI,11"}), calls);
    EXPECT_EQ((Bytes{0x41, 0x42, 0x43, 0x44}), values("D", 100, 2, 4));
    EXPECT_EQ((std::vector<Bytes>{
                  {0, 0, 0, 0}, {0x41, 0x42, 0, 0}, {0x41, 0x42, 0, 0}, {0x41, 0x42, 0x43, 0x44}}),
              stored);
    calls.clear();
    stored.clear();
    nextFrame();
    EXPECT_EQ(1, reply("<STX>45464748<ETX>AD"));
    EXPECT_EQ((Texts{"1,1,32CV,200", "0,-1,RWI,10", "0,-1,RWI,11"}), calls);
    EXPECT_EQ((std::vector<Bytes>{
                  {0x41, 0x42, 0x43, 0x44}, {0x45, 0x46, 0x47, 0x48}, {0x45, 0x46, 0x47, 0x48}}),
              stored);
}

TEST_F(RecipeTransfer, UploadOfUnchangedWordsStillStoresAndReportsThem)
{
    setRecipe({recipeEntry("D", 100, 1, 10)});
    for (int round = 0; round < 2; ++round) {
        calls.clear();
        recipeWords[10] = 0xFFFF;
        requestUpload();
        nextFrame();
        reply("<STX>1234<ETX>CD");
        EXPECT_EQ((Texts{"0,-1,RWI,10"}), calls);
        EXPECT_EQ((Bytes{0x12, 0x34}), recipeAt(10, 1));
    }
}

TEST_F(RecipeTransfer, UploadOfBitsStaysOutOfRecipeMemory)
{
    setRecipe({recipeEntry("M", 8, 1, 10)});
    requestUpload();
    nextFrame();
    EXPECT_EQ(1, reply("<STX>FF<ETX>8F"));
    EXPECT_EQ((Bytes{0, 0}), recipeAt(10, 1));
    EXPECT_EQ(Texts(), calls);
    EXPECT_EQ(0xFF, area("M", 8).valueBuffer0[0]);
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
}

TEST_F(RecipeTransfer, ShortReplyUploadsZeros)
{
    recipeWords[10] = recipeWords[11] = 0xFFFF;
    setRecipe({recipeEntry("D", 100, 4, 10)});
    requestUpload();
    nextFrame();
    reply("<STX>12345678<ETX>A7");
    EXPECT_EQ((Bytes{0x12, 0x34, 0x56, 0x78}), recipeAt(10, 2));
    EXPECT_EQ((Texts{"0,-1,RWI,10", "0,-1,RWI,11", "0,-1,RWI,12", "0,-1,RWI,13"}), calls);
}

TEST_F(RecipeTransfer, DownloadGoesBeforeUpload)
{
    setRecipe({recipeEntry("D", 100, 1, 0), recipeEntry("D", 101, 1, 1)});
    requestDownload();
    requestUpload();
    for (int i = 0; i < 2; ++i) {
        nextRequest();
        EXPECT_EQ(5, driver.operationKind);
        acknowledge();
    }
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);
    EXPECT_EQ(1, hostMemory[fxUploadRequestByte]);
    EXPECT_EQ("1#D100/1", nextRequest());
    EXPECT_EQ(6, driver.operationKind);
}

TEST_F(RecipeTransfer, GoesBeforeWritesAndReads)
{
    driver.writeList << request("D", 1, 1);
    driver.conditionReadList << request("D", 2, 1);
    driver.readList << request("D", 3, 1);
    setRecipe({recipeEntry("D", 100, 1, 0)});
    requestDownload();
    EXPECT_EQ("1#D100/1", nextRequest());
    acknowledge();
    requestUpload();
    EXPECT_EQ("1#D100/1", nextRequest());
    reply("<STX>0000<ETX>C3");
    EXPECT_EQ("1#D1/1", nextRequest());
}

TEST_F(RecipeTransfer, OnlyEntriesOfThisLinkAreTransferred)
{
    setRecipe({recipeEntry("D", 1, 1, 0, 2), recipeEntry("D", 2, 1, 0),
               recipeEntry("D", 3, 1, 0, 0), recipeEntry("D", 4, 1, 0),
               recipeEntry("D", 5, 1, 0, 2)});
    requestDownload();
    EXPECT_EQ("1#D2/1", nextRequest());
    acknowledge();
    EXPECT_EQ("1#D4/1", nextRequest());
    acknowledge();
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);
}

TEST_F(RecipeTransfer, TagOfTheLastRequestStays)
{
    driver.current.tag = 77;
    setRecipe({recipeEntry("D", 100, 1, 0)});
    requestDownload();
    nextRequest();
    EXPECT_EQ(77, driver.frames.at(0).variable.tag);
}

TEST_F(RecipeTransfer, FailedDownloadAbandonsTheRest)
{
    setUpDriver("1#0#0#1#32");
    setRecipe(
        {recipeEntry("D", 100, 1, 0), recipeEntry("D", 101, 1, 0), recipeEntry("D", 102, 1, 0)});
    requestDownload();
    nextRequest();
    acknowledge();
    nextRequest();
    EXPECT_EQ(2, reply("<NAK>"));
    EXPECT_EQ(0, driver.recipeIndex);
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);
    EXPECT_EQ("", nextRequest());
    EXPECT_EQ(Texts(), calls);
}

TEST_F(RecipeTransfer, FailedUploadAbandonsTheRest)
{
    setUpDriver("1#0#0#1#32");
    setRecipe({recipeEntry("D", 100, 1, 7), recipeEntry("D", 101, 1, 0)});
    recipeWords[7] = 0x5555;
    requestUpload();
    nextRequest();
    EXPECT_EQ(2, reply(""));
    EXPECT_EQ(0, driver.recipeIndex);
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
    EXPECT_EQ(0x5555, recipeWords[7]);
    EXPECT_EQ(Texts(), calls);
}

TEST_F(RecipeTransfer, NewListWhileATransferRunsGoesOnAtTheSameIndex)
{
    setRecipe({recipeEntry("D", 100, 1, 0), recipeEntry("D", 101, 1, 0)});
    requestDownload();
    nextRequest();
    acknowledge();
    setRecipe({recipeEntry("D", 200, 1, 0), recipeEntry("D", 201, 1, 0)});
    EXPECT_EQ("1#D201/1", nextRequest());
}

TEST_F(RecipeTransfer, WithoutEntriesTheSameCyclicReadIsRepeated)
{
    driver.readList << request("D", 1, 1) << request("D", 2, 1);
    nextRequest();
    reply("<STX>0000<ETX>C3");
    driver.writeList << request("D", 3, 1);
    requestDownload();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ("1#D1/1", nextRequest());
        EXPECT_EQ(4, driver.operationKind);
        EXPECT_EQ(1, reply("<STX>0000<ETX>C3"));
    }
    EXPECT_EQ(1, hostMemory[fxDownloadRequestByte]);
    hostMemory[fxDownloadRequestByte] = 0;
    EXPECT_EQ("1#D3/1", nextRequest());
}

TEST_F(RecipeTransfer, WithoutEntriesARepeatedWriteEndsAndTakesTheNextFromTheQueue)
{
    VARIABLE queued = request("D", 100, 1);
    queued.data[0] = 0x34;
    queued.data[1] = 0x12;
    driver.writeList << queued << request("D", 2, 1);
    nextRequest();
    acknowledge();
    requestDownload();
    EXPECT_EQ("<STX>110C8023412<ETX>3C", nextFrame());
    EXPECT_EQ(2, driver.operationKind);
    EXPECT_EQ(1, driver.burstCount);
    EXPECT_EQ(1, acknowledge());
    EXPECT_TRUE(driver.writeList.isEmpty());
}

TEST_F(RecipeTransfer, RepeatedConditionalReadOfAnEmptyQueueEndsInSilence)
{
    readOnce(watch("D", 1, 1));
    nextRequest();
    reply("<STX>0000<ETX>C3");
    EXPECT_EQ((Texts{"-1,-1,-1,0"}), calls);
    calls.clear();
    requestUpload();
    EXPECT_EQ("1#D1/1", nextRequest());
    EXPECT_EQ(3, driver.operationKind);
    EXPECT_EQ(1, reply("<STX>0000<ETX>C3"));
    EXPECT_EQ(Texts(), calls);
}

TEST_F(RecipeTransfer, RepeatedDownloadIsAWriteAndRepeatedUploadARead)
{
    setRecipe({recipeEntry("D", 100, 1, 0)});
    requestDownload();
    nextRequest();
    acknowledge();
    setRecipe({});
    requestDownload();
    EXPECT_EQ("<STX>110C8020000<ETX>32", nextFrame());
    EXPECT_EQ(5, driver.operationKind);
    acknowledge();
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);

    setRecipe({recipeEntry("D", 100, 1, 0)});
    requestUpload();
    nextRequest();
    reply("<STX>0000<ETX>C3");
    setRecipe({});
    requestUpload();
    EXPECT_EQ("1#D100/1", nextRequest());
    EXPECT_EQ(6, driver.operationKind);
}

TEST_F(RecipeTransfer, WithoutEntriesAndNothingToRepeatThereIsNothingToSend)
{
    driver.readList << request("D", 1, 1);
    requestDownload();
    for (const int kind : {0, 1, 7, -1}) {
        driver.operationKind = kind;
        EXPECT_EQ("", nextRequest()) << kind;
        EXPECT_TRUE(driver.frames.isEmpty());
        EXPECT_EQ(kind, driver.operationKind);
    }
}
}  // namespace
