// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipe entries that no frame can carry end the transfer as a failed exchange does, and a list
// that is replaced under a transfer does no harm.

#include "tests/support/driver_fixture.h"

namespace {
struct RecipeRow
{
    const char* name;
    const char* registerType;
    int wordCount;
    int recipeWordOffset;
    bool goesDown;
    bool goesUp;
};

class RecipeLimits : public DriverTest, public ::testing::WithParamInterface<RecipeRow>
{
protected:
    RecipeLimits()
    {
        setUpDriver();
        driver.recipeVars << recipeEntry("D", 7000, 1, 0)
                          << recipeEntry(GetParam().registerType, 200, GetParam().wordCount,
                                         GetParam().recipeWordOffset)
                          << recipeEntry("D", 7001, 1, 0);
        driver.recipeIndex = 1;
    }
    void expectCarriedOrEnded(bool carried, int requestByte)
    {
        nextRequest();
        EXPECT_TRUE(mutexIsFree());
        if (carried) {
            ASSERT_EQ(1, driver.frames.size());
            EXPECT_EQ(GetParam().wordCount, driver.frames.at(0).variable.count);
            EXPECT_EQ(1, hostMemory[static_cast<std::size_t>(requestByte)]);
            return;
        }
        EXPECT_EQ(0, hostMemory[static_cast<std::size_t>(requestByte)]);
        EXPECT_EQ(0, driver.recipeIndex);
        EXPECT_EQ("", nextRequest());
    }
};

TEST_P(RecipeLimits, DownloadIsCarriedOrEnded)
{
    requestDownload();
    expectCarriedOrEnded(GetParam().goesDown, fxDownloadRequestByte);
}

TEST_P(RecipeLimits, UploadIsCarriedOrEnded)
{
    requestUpload();
    expectCarriedOrEnded(GetParam().goesUp, fxUploadRequestByte);
}

const RecipeRow recipes[] = {
    {"NoWords", "D", 0, 0, true, true},
    {"LongestDownload", "D", 253, 0, true, true},
    {"TooLongForADownload", "D", 254, 0, false, true},
    {"LongestUpload", "D", 512, 0, false, true},
    {"TooLongForAnUpload", "D", 513, 0, false, false},
    {"LargestCount", "D", 2147483647, 0, false, false},
    {"NegativeCount", "D", -1, 0, false, false},
    {"SmallestCount", "D", -2147483647 - 1, 0, false, false},
    {"NegativeOffset", "D", 1, -1, false, false},
    {"SmallestOffset", "D", 1, -2147483647 - 1, false, false},
    {"LongestDownloadOfCounters", "32CV", 253, 0, true, true},
    {"BitWithoutWords", "Y", 0, 0, true, true},
    {"BitWithTheWordsOfARecord", "Y", 512, 0, true, true},
    {"BitWithMoreWordsThanARecord", "Y", 513, 0, true, false},
    {"BitWithTheLargestCount", "Y", 2147483647, 0, true, false},
    {"BitWithANegativeCount", "Y", -1, 0, false, false},
    {"UnknownTypeCountsAsWords", "Z", 254, 0, false, true},
    {"LastWordsOfTheMemory", "D", 8, 2040, true, true},
};

INSTANTIATE_TEST_SUITE_P(Entries, RecipeLimits, ::testing::ValuesIn(recipes), nameOf<RecipeRow>);

class RecipeWithoutMemory : public DriverTest
{
protected:
    RecipeWithoutMemory()
    {
        setUpDriver();
        driver.recipeWords = nullptr;
        driver.recipeVars << recipeEntry("D", 100, 1, 0);
    }
};

TEST_F(RecipeWithoutMemory, EndsATransfer)
{
    driver.readList << request("D", 1, 1);
    for (unsigned char* const request :
         {&hostMemory[fxDownloadRequestByte], &hostMemory[fxUploadRequestByte]}) {
        *request = 1;
        nextRequest();
        EXPECT_EQ(0, *request);
        EXPECT_EQ("1#D1/1", nextRequest());
        reply("<STX>0000<ETX>C3");
    }
}

TEST_F(RecipeWithoutMemory, TakenAwayUnderAnUploadLosesTheWordsOnly)
{
    driver.recipeWords = recipeWords.data();
    requestUpload();
    nextRequest();
    driver.recipeWords = nullptr;
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
}

class RecipeListReplaced : public DriverTest
{
protected:
    RecipeListReplaced()
    {
        setUpDriver();
        driver.recipeVars << recipeEntry("D", 100, 1, 10) << recipeEntry("D", 101, 1, 11);
        driver.recipeIndex = 1;
    }
    Bytes recipeBytes()
    {
        return firstBytes(reinterpret_cast<unsigned char*>(recipeWords.data()),
                          2 * recipeWordCount);
    }
};

TEST_F(RecipeListReplaced, UploadUnderAShorterListStoresNothingAndEnds)
{
    requestUpload();
    ASSERT_EQ("1#D101/1", nextRequest());
    driver.recipeVars.clear();
    driver.recipeVars << recipeEntry("D", 200, 1, 20);
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    EXPECT_EQ(Bytes(2 * recipeWordCount, 0), recipeBytes());
    EXPECT_EQ(Texts(), callsWith("RWI"));
    EXPECT_EQ(0, driver.recipeIndex);
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
}

TEST_F(RecipeListReplaced, DownloadUnderAShorterListEnds)
{
    requestDownload();
    nextRequest();
    driver.recipeVars.clear();
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ(0, driver.recipeIndex);
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);
}

TEST_F(RecipeListReplaced, EntryWithANegativeOffsetUnderAnUploadStoresNothingBeforeTheMemory)
{
    requestUpload();
    nextRequest();
    driver.recipeVars[1].recipeWordOffset = -5;
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    EXPECT_EQ(Bytes(2 * recipeWordCount, 0), recipeBytes());
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
}

TEST_F(RecipeListReplaced, HostMemoryTakenAwayUnderATransferIsNotWrittenTo)
{
    requestDownload();
    nextRequest();
    driver.hostMemory = nullptr;
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ(1, hostMemory[fxDownloadRequestByte]);
}

TEST_F(RecipeListReplaced, MutexTakenAwayUnderATransferLeavesTheByteAlone)
{
    requestUpload();
    nextRequest();
    driver.hostMutex = nullptr;
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    EXPECT_EQ(0, driver.recipeIndex);
    EXPECT_EQ(1, hostMemory[fxUploadRequestByte]);
}
}  // namespace
