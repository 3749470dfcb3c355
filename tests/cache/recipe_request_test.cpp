// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One recipe entry turned into a request, with or without the words of recipe memory.

#include "cache/recipe_words.h"
#include "tests/support/driver_fixture.h"

namespace {
class RecipeRequest : public DriverTest
{
protected:
    RecipeRequest()
    {
        setUpDriver();
        unsigned char* bytes = reinterpret_cast<unsigned char*>(recipeWords.data());
        for (int i = 0; i < 2 * recipeWordCount; ++i)
            bytes[i] = static_cast<unsigned char>(i % 251 + 1);
        for (unsigned char& byte : m_var.data)
            byte = 0xEE;
    }
    // The request made of an entry, over one that was full of other data.
    const VARIABLE& made(const _RCP_VAR_PRO& entry, int withData)
    {
        rcpAddrToVar(entry, m_var, withData);
        return m_var;
    }

private:
    VARIABLE m_var;
};

TEST_F(RecipeRequest, TakesOverTheFieldsOfTheEntry)
{
    _RCP_VAR_PRO entry = recipeEntry("TV", 12, 3, 5);
    entry.stationNo = 8;
    EXPECT_EQ("8#TV12/3", textOf(made(entry, 0)));
}

TEST_F(RecipeRequest, WithoutDataIsAllZero)
{
    EXPECT_EQ(Bytes(1024, 0), firstBytes(made(recipeEntry("D", 1, 3, 5), 0).data, 1024));
}

TEST_F(RecipeRequest, WithDataCopiesTwoBytesAWordAndZeroesTheRest)
{
    Bytes wanted(1024, 0);
    const Bytes copied = {11, 12, 13, 14, 15, 16};
    std::copy(copied.begin(), copied.end(), wanted.begin());
    EXPECT_EQ(wanted, firstBytes(made(recipeEntry("D", 1, 3, 5), 1).data, 1024));
}

TEST_F(RecipeRequest, AnyNonzeroNumberMeansWithData)
{
    EXPECT_EQ((Bytes{1, 2, 0}), firstBytes(made(recipeEntry("D", 1, 1, 0), -1).data, 3));
}

// The guard words lie right behind the request in memory.
TEST_F(RecipeRequest, CountBeyondTheRecordOverrunsNothing)
{
    struct Guarded
    {
        VARIABLE var;
        int guard = 0x5A5A5A5A;
    };
    for (const int count : {513, 1000}) {
        Guarded guarded;
        rcpAddrToVar(recipeEntry("D", 1, count, 0), guarded.var, 1);
        EXPECT_EQ(0x5A5A5A5A, guarded.guard) << count;
        EXPECT_EQ(count, guarded.var.count);
        EXPECT_EQ(1023 % 251 + 1, guarded.var.data[1023]);
    }
}

TEST_F(RecipeRequest, NegativeCountCopiesNothing)
{
    for (const int count : {-1, -2147483647 - 1}) {
        EXPECT_EQ(Bytes(1024, 0), firstBytes(made(recipeEntry("D", 1, count, 0), 1).data, 1024));
    }
}

TEST_F(RecipeRequest, WithoutRecipeMemoryTheDataAreZero)
{
    driver.recipeWords = nullptr;
    EXPECT_EQ(Bytes(1024, 0), firstBytes(made(recipeEntry("D", 1, 3, 5), 1).data, 1024));
}

TEST_F(RecipeRequest, NegativeOffsetReadsNothingBeforeTheMemory)
{
    EXPECT_EQ(Bytes(1024, 0), firstBytes(made(recipeEntry("D", 1, 3, -5), 1).data, 1024));
}
}  // namespace
