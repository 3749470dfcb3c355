// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which entries of the host's recipe list this link takes over.

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
    QVector<_RCP_VAR_PRO> first = listOf({3, 3, 3});
    QVector<_RCP_VAR_PRO> second = listOf({0, 3});
    EXPECT_EQ(3, intf_setRcpAddress(first));
    EXPECT_EQ(1, intf_setRcpAddress(second));
    EXPECT_EQ((std::vector<int>{1}), keptNumbers());
}

TEST_F(RecipeList, EmptyListEmptiesTheOld)
{
    QVector<_RCP_VAR_PRO> first = listOf({3, 3, 3});
    QVector<_RCP_VAR_PRO> none;
    intf_setRcpAddress(first);
    EXPECT_EQ(0, intf_setRcpAddress(none));
    EXPECT_TRUE(driver.recipeVars.isEmpty());
}

TEST_F(RecipeList, IndexIsNotTouched)
{
    driver.recipeIndex = 2;
    QVector<_RCP_VAR_PRO> list = listOf({3});
    intf_setRcpAddress(list);
    EXPECT_EQ(2, driver.recipeIndex);
}

TEST_F(RecipeList, EveryFieldIsCopied)
{
    _RCP_VAR_PRO entry = recipeEntry("32CV", 200, 4, 77, 3);
    entry.stationNo = 9;
    entry.hostValue = 1234;
    QVector<_RCP_VAR_PRO> list;
    list << entry;
    ASSERT_EQ(1, intf_setRcpAddress(list));
    const _RCP_VAR_PRO& kept = driver.recipeVars.at(0);
    EXPECT_EQ(3, kept.linkNo);
    EXPECT_EQ(9, kept.stationNo);
    EXPECT_EQ("32CV", plain(kept.registerType));
    EXPECT_EQ(200, kept.addressIndex);
    EXPECT_EQ(4, kept.count);
    EXPECT_EQ(77, kept.recipeWordOffset);
    EXPECT_EQ(1234, kept.hostValue);
}

TEST_F(RecipeList, EntriesAreKeptWhateverElseTheyHold)
{
    QVector<_RCP_VAR_PRO> list;
    list << recipeEntry("", -1, -1, -1, 3) << recipeEntry("Z", 2147483647, 2147483647, 0, 3);
    EXPECT_EQ(2, intf_setRcpAddress(list));
}
}  // namespace
