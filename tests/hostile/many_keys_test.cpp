// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Lists far longer than any screen has. There is no assertion on time but the limit of the test;
// FX_HOSTILE_KEYS=1000000 runs them with a million keys, at a kilobyte each.

#include "tests/model/driver_properties.h"
#include "tests/support/driver_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <random>

namespace {

int keyCount()
{
    const char* const text = std::getenv("FX_HOSTILE_KEYS");
    return text ? std::atoi(text) : 100000;
}

class ManyKeys : public DriverTest
{
protected:
    ManyKeys() { setUpDriver("1#0#0#3#32"); }

    void expectARequestAndAnAreaForEach(QList<KEY_ADDRESS>& list)
    {
        EXPECT_EQ(keyCount(), intf_addrMerge(list));
        EXPECT_EQ(keyCount(), driver.dataAreas.size());
        EXPECT_EQ("", brokenState());
    }
};

QList<KEY_ADDRESS> keys(const char* registerType, int spacing)
{
    QList<KEY_ADDRESS> list;
    for (int i = keyCount() - 1; i >= 0; --i)  // from the last one down, so that there is to sort
        list.append(watch(registerType, i * spacing, 1, 1 + i % 3));
    return list;
}

}  // namespace

TEST_F(ManyKeys, ScatteredKeysArePlannedOneByOne)
{
    QList<KEY_ADDRESS> list = keys("D", 50);
    expectARequestAndAnAreaForEach(list);
}

TEST_F(ManyKeys, KeysInAnyOrderFindTheirAreas)
{
    QList<KEY_ADDRESS> list = keys("D", 50);
    intf_addrMerge(list);
    std::shuffle(list.begin(), list.end(), std::mt19937(1));
    expectARequestAndAnAreaForEach(list);
}

TEST_F(ManyKeys, DenseKeysShareRequests)
{
    QList<KEY_ADDRESS> list = keys("M", 1);
    // Stations 1 to 3 have every third bit each: 256 bits a request.
    const int perStation = (keyCount() + 255) / 256;
    EXPECT_NEAR(3 * perStation, intf_addrMerge(list), 3);
    EXPECT_EQ("", brokenState());
}

TEST_F(ManyKeys, OneAddressOverAndOverIsPolledOnce)
{
    QList<KEY_ADDRESS> list;
    const KEY_ADDRESS same = watch("TV", 7, 3);
    for (int i = 0; i < keyCount(); ++i)
        list.append(same);
    EXPECT_EQ(1, intf_addrMerge(list));
    EXPECT_EQ(3, driver.dataAreas.size());
}

TEST_F(ManyKeys, AMillionRecipeEntriesAreKept)
{
    QVector<_RCP_VAR_PRO> list(1000000, recipeEntry("D", 0, 1, 0));
    EXPECT_EQ(1000000, intf_setRcpAddress(list));
}
