// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which entries of the host's recipe list this link takes over, and one entry turned into a
// request, with or without the words of recipe memory.

#include "cache/recipe_words.h"
#include "tests/support/driver_fixture.h"

namespace {
class RecipeList : public DriverTest
{
protected:
    RecipeList() { setUpDriver("3#0#0#3#32"); }

    static QVector<_RCP_VAR_PRO> listOf(const std::vector<int>& linkNumbers)
    {
        QVector<_RCP_VAR_PRO> list;
        int number = 0;
        for (const int linkNo : linkNumbers)
            list << recipeEntry("D", number++, 1, 0, linkNo);
        return list;
    }
    static std::vector<int> keptNumbers()
    {
        std::vector<int> numbers;
        for (const _RCP_VAR_PRO& entry : driver.recipeVars)
            numbers.push_back(entry.addressIndex);
        return numbers;
    }
};

TEST_F(RecipeList, TwoOfFiveEntriesBelongToThisLink)
{
    QVector<_RCP_VAR_PRO> list = listOf({1, 3, 2, 3, -3});
    EXPECT_EQ(2, intf_setRcpAddress(list));
    EXPECT_EQ((std::vector<int>{1, 3}), keptNumbers());
    EXPECT_EQ(5, list.size());
}

TEST_F(RecipeList, NewListReplacesTheOld)
{
    EXPECT_EQ(3, setRecipe(listOf({3, 3, 3})));
    EXPECT_EQ(1, setRecipe(listOf({0, 3})));
    EXPECT_EQ((std::vector<int>{1}), keptNumbers());
    EXPECT_EQ(0, setRecipe({}));
    EXPECT_EQ(std::vector<int>(), keptNumbers());
}

TEST_F(RecipeList, IndexIsNotTouched)
{
    driver.recipeIndex = 2;
    setRecipe(listOf({3}));
    EXPECT_EQ(2, driver.recipeIndex);
}

TEST_F(RecipeList, EveryFieldIsCopied)
{
    _RCP_VAR_PRO entry = recipeEntry("32CV", 200, 4, 77, 3);
    entry.stationNo = 9;
    entry.hostValue = 1234;
    ASSERT_EQ(1, setRecipe({entry}));
    const _RCP_VAR_PRO& kept = driver.recipeVars.at(0);
    EXPECT_EQ(3, kept.linkNo);
    EXPECT_EQ(9, kept.stationNo);
    EXPECT_EQ("32CV", plain(kept.registerType));
    EXPECT_EQ(200, kept.addressIndex);
    EXPECT_EQ(4, kept.count);
    EXPECT_EQ(77, kept.recipeWordOffset);
    EXPECT_EQ(1234, kept.hostValue);
}

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

TEST_F(RecipeRequest, IsAllZeroWithoutDataToCopy)
{
    const Bytes zeros(1024, 0);
    EXPECT_EQ(zeros, firstBytes(made(recipeEntry("D", 1, 3, 5), 0).data, 1024));
    for (const int count : {-1, -2147483647 - 1})
        EXPECT_EQ(zeros, firstBytes(made(recipeEntry("D", 1, count, 0), 1).data, 1024));
    EXPECT_EQ(zeros, firstBytes(made(recipeEntry("D", 1, 3, -5), 1).data, 1024));
    driver.recipeWords = nullptr;
    EXPECT_EQ(zeros, firstBytes(made(recipeEntry("D", 1, 3, 5), 1).data, 1024));
}
}  // namespace
