// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// intf_initProperty: the one reset of a connection: what it stores, empties, zeroes and keeps.

#include "cache/data_areas.h"
#include "tests/support/driver_fixture.h"

namespace {
using SetUpOfAConnection = DriverTest;

TEST_F(SetUpOfAConnection, AnswersOneAndStatusZero)
{
    int status = 77;
    EXPECT_EQ(1, intf_initProperty(hostMemory.data(), 0, recipeWords.data(), &status, "nonsense",
                                   &hostMutex));
    EXPECT_EQ(0, status);
}

TEST_F(SetUpOfAConnection, StoresThePointersOfTheHost)
{
    int status = 0;
    intf_initProperty(hostMemory.data(), 0xFFFFFFFFU, recipeWords.data(), &status, "1#0#0#0#32",
                      &hostMutex);
    EXPECT_EQ(hostMemory.data(), driver.hostMemory);
    EXPECT_EQ(0xFFFFFFFFU, driver.hostContext);
    EXPECT_EQ(recipeWords.data(), driver.recipeWords);
    EXPECT_EQ(&hostMutex, driver.hostMutex);
}

TEST_F(SetUpOfAConnection, ShortPropertyStringStillStoresPointersAndEmptiesLists)
{
    driver.readList << request("D", 0, 1);
    setUpDriver("1#2#3#4");
    EXPECT_EQ(hostMemory.data(), driver.hostMemory);
    EXPECT_EQ(&hostMutex, driver.hostMutex);
    EXPECT_TRUE(driver.readList.isEmpty());
}

TEST_F(SetUpOfAConnection, EmptiesPlanQueuesCacheAndFrames)
{
    driver.readList << request("D", 0, 1);
    driver.writeList << request("D", 1, 1);
    driver.conditionReadList << request("D", 2, 1);
    driver.dataAreas << _DATA_();
    driver.frames << FRAME_PRO();
    setUpDriver();
    EXPECT_TRUE(driver.readList.isEmpty());
    EXPECT_TRUE(driver.writeList.isEmpty());
    EXPECT_TRUE(driver.conditionReadList.isEmpty());
    EXPECT_TRUE(driver.dataAreas.isEmpty());
    EXPECT_TRUE(driver.frames.isEmpty());
}

// The text of an area tells whether anything still holds the area.
TEST_F(SetUpOfAConnection, HoldsOnToNoAreaThatItForgets)
{
    setUpDriver();
    const QString text = QString::fromLatin1("a text of its own");
    getIndexOfDataArea(1, text, 0, driver.dataAreas);
    EXPECT_FALSE(text.isDetached());
    setUpDriver();
    EXPECT_TRUE(text.isDetached());
}

TEST_F(SetUpOfAConnection, ZeroesTheStateOfTheExchange)
{
    driver.operationKind = driver.burstCount = driver.spareCounter0 = 5;
    driver.failCount = driver.lastExchangeFailed = driver.spareCounter1 = 5;
    setUpDriver();
    EXPECT_EQ(0, driver.operationKind);
    EXPECT_EQ(0, driver.burstCount);
    EXPECT_EQ(0, driver.spareCounter0);
    EXPECT_EQ(0, driver.failCount);
    EXPECT_EQ(0, driver.lastExchangeFailed);
    EXPECT_EQ(0, driver.spareCounter1);
    EXPECT_EQ(1, driver.propertyInitialised);
}

TEST_F(SetUpOfAConnection, KeepsRecipeRequestsAndCallback)
{
    driver.recipeVars << recipeEntry("D", 0, 1, 0) << recipeEntry("D", 1, 1, 1);
    driver.recipeIndex = 1;
    driver.lastConditionRead = request("D", 3, 1);
    driver.current = request("D", 4, 1);
    const FxValueChangeCallback callback = driver.valueChangeCallback;
    setUpDriver();
    setUpDriver();
    EXPECT_EQ(2, driver.recipeVars.size());
    EXPECT_EQ(1, driver.recipeIndex);
    EXPECT_EQ("1#D3/1", textOf(driver.lastConditionRead));
    EXPECT_EQ("1#D4/1", textOf(driver.current));
    EXPECT_EQ(callback, driver.valueChangeCallback);
}

TEST_F(SetUpOfAConnection, TakesTheMutexNotAtAll)
{
    hostMutex.lock();
    setUpDriver();  // would wait for ever if it took the lock
    hostMutex.unlock();
    EXPECT_EQ(1, driver.propertyInitialised);
}

TEST_F(SetUpOfAConnection, NullStatusIsSkipped)
{
    EXPECT_EQ(1, intf_initProperty(hostMemory.data(), 0, recipeWords.data(), nullptr, "3#0#0#0#32",
                                   &hostMutex));
    EXPECT_EQ(3, driver.linkNo);
}

TEST_F(SetUpOfAConnection, AllPointersMayBeNull)
{
    setUpDriver();
    EXPECT_EQ(1, intf_initProperty(nullptr, 0, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(nullptr, driver.hostMemory);
    EXPECT_EQ(nullptr, driver.recipeWords);
    EXPECT_EQ(nullptr, driver.hostMutex);
    EXPECT_EQ("", nextFrame());
}
}  // namespace
