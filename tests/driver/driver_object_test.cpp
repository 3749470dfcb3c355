// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The object that holds all state, as loading the library constructs it.

#include "driver/mitsubishi_fx1s.h"

#include <gtest/gtest.h>

namespace {
TEST(DriverObject, BeginsWithoutHost)
{
    const Mitsubishi_fx1s fresh;
    EXPECT_EQ(nullptr, fresh.valueChangeCallback);
    EXPECT_EQ(nullptr, fresh.hostMemory);
    EXPECT_EQ(nullptr, fresh.recipeWords);
    EXPECT_EQ(nullptr, fresh.hostMutex);
    EXPECT_EQ(0U, fresh.hostContext);
}

TEST(DriverObject, BeginsWithAllNumbersZero)
{
    const Mitsubishi_fx1s fresh;
    EXPECT_EQ(0, fresh.linkNo);
    EXPECT_EQ(0, fresh.cacheOnlyWrites);
    EXPECT_EQ(0, fresh.propertyField2);
    EXPECT_EQ(0, fresh.failLimit);
    EXPECT_EQ(0, fresh.frameWordLimit);
    EXPECT_EQ(0, fresh.propertyField5);
    EXPECT_EQ(0, fresh.operationKind);
    EXPECT_EQ(0, fresh.burstCount);
    EXPECT_EQ(0, fresh.spareCounter0);
    EXPECT_EQ(0, fresh.failCount);
    EXPECT_EQ(0, fresh.maxBitsPerFrame);
    EXPECT_EQ(0, fresh.maxWordsPerFrame);
    EXPECT_EQ(0, fresh.lastExchangeFailed);
    EXPECT_EQ(0, fresh.spareCounter1);
    EXPECT_EQ(0, fresh.propertyInitialised);
    EXPECT_EQ(0, fresh.recipeIndex);
}
}  // namespace
