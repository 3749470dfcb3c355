// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The three forms in which a change is reported: a word, one bit, the bits of a whole byte.

#include "cache/data_areas.h"
#include "cache/notification.h"
#include "tests/support/driver_fixture.h"

namespace {
class Notification : public DriverTest
{
protected:
    Notification() { setUpDriver("4#0#0#3#32"); }

    static void notify(const char* registerType, int address, int isBitType, int newBits = 0,
                       int oldBits = 0, int wholeByte = 0, int stationNo = 1)
    {
        _OnlyOneDataTypeDataChange(stationNo, QString::fromLatin1(registerType), address, isBitType,
                                   static_cast<unsigned char>(newBits),
                                   static_cast<unsigned char>(oldBits), wholeByte);
    }
};

TEST_F(Notification, MonitoredWordIsReported)
{
    mark("D", 100, 1);
    notify("D", 100, 0);
    EXPECT_EQ((Texts{"4,1,D,100"}), calls);
}

TEST_F(Notification, UnmonitoredElementIsNotReportedButCreated)
{
    notify("D", 100, 0);
    notify("M", 13, 1);
    notify("M", 16, 1, 0xFF, 0, 1);
    EXPECT_EQ(Texts(), calls);
    EXPECT_EQ("1#D100 1#M8 1#M16", textOf(driver.dataAreas));
}

TEST_F(Notification, OtherStationIsNotReported)
{
    mark("D", 100, 1);
    notify("D", 100, 0, 0, 0, 0, 2);
    EXPECT_EQ(Texts(), calls);
}

TEST_F(Notification, WordLooksAtBitZeroOfItsOwnFlagsOnly)
{
    mark("D", 100, 1);
    area("D", 100).monitorFlags = -2;
    area("D", 100).changeFlags = -1;
    notify("D", 100, 0);
    EXPECT_EQ(Texts(), calls);
    area("D", 100).monitorFlags = 3;
    notify("D", 100, 0);
    EXPECT_EQ((Texts{"4,1,D,100"}), calls);
}

TEST_F(Notification, OneBitComparesNothing)
{
    mark("M", 13, 1);
    notify("M", 13, 1, 0xFF, 0xFF);
    EXPECT_EQ((Texts{"4,1,M,13"}), calls);
}

TEST_F(Notification, NeighbouringBitIsNotReported)
{
    mark("M", 13, 1);
    notify("M", 12, 1);
    notify("M", 14, 1);
    EXPECT_EQ(Texts(), calls);
}

TEST_F(Notification, AnyNonzeroNumbersMeanBitAndWholeByte)
{
    mark("M", 8, 1);
    notify("M", 8, -7);
    notify("M", 8, 2, 1, 0, -1);
    EXPECT_EQ((Texts{"4,1,M,8", "4,1,M,8"}), calls);
}

TEST_F(Notification, WholeByteReportsMarkedBitsInAscendingOrder)
{
    mark("M", 16, 1);
    mark("M", 23, 1);
    notify("M", 16, 1, 0xFF, 0x00, 1);
    EXPECT_EQ((Texts{"4,1,M,16", "4,1,M,23"}), calls);
}

TEST_F(Notification, WholeByteReportsAtMostEightBits)
{
    mark("M", 0, 24);
    notify("M", 8, 1, 0x00, 0xFF, 1);
    EXPECT_EQ((Texts{"4,1,M,8", "4,1,M,9", "4,1,M,10", "4,1,M,11", "4,1,M,12", "4,1,M,13",
                     "4,1,M,14", "4,1,M,15"}),
              calls);
}

struct NotificationRow
{
    const char* name;
    int newBits;
    int oldBits;
    Texts reported;
};

class WholeByte : public DriverTest, public ::testing::WithParamInterface<NotificationRow>
{};

TEST_P(WholeByte, ReportsTheBitsThatDiffer)
{
    setUpDriver();
    mark("M", 0, 8);
    _OnlyOneDataTypeDataChange(1, QString::fromLatin1("M"), 0, 1,
                               static_cast<unsigned char>(GetParam().newBits),
                               static_cast<unsigned char>(GetParam().oldBits), 1);
    EXPECT_EQ(GetParam().reported, calls);
}

const NotificationRow wholeBytes[] = {
    {"SameByteTwiceReportsNothing", 0x5A, 0x5A, {}},
    {"OneBitSet", 0x01, 0x00, {"1,1,M,0"}},
    {"OneBitCleared", 0x00, 0x80, {"1,1,M,7"}},
    {"TwoBitsTheOtherWayRound", 0x02, 0x04, {"1,1,M,1", "1,1,M,2"}},
};

INSTANTIATE_TEST_SUITE_P(Bytes, WholeByte, ::testing::ValuesIn(wholeBytes),
                         nameOf<NotificationRow>);

// Callers pass the start of an area; the bit numbers are added to whatever they pass.
TEST_F(Notification, WholeByteAddsBitNumbersToTheAddressAsGiven)
{
    mark("M", 8, 1);
    notify("M", 13, 1, 0x01, 0x00, 1);
    EXPECT_EQ((Texts{"4,1,M,13"}), calls);
}

TEST_F(Notification, NumbersPastTheLargestAreNotReported)
{
    constexpr int largest = 2147483647;
    mark("M", largest - 7, 8);
    notify("M", largest, 1, 0xFF, 0x00, 1);
    EXPECT_EQ((Texts{"4,1,M,2147483647"}), calls);
}

TEST_F(Notification, CallbackThatGrowsTheCacheGetsEveryBit)
{
    mark("M", 0, 8);
    int grown = 0;
    onCall = [this, &grown](QString&, int) { values("TV", 3000 * grown++, 3000, 6000); };
    notify("M", 0, 1, 0xFF, 0x00, 1);
    EXPECT_EQ((Texts{"4,1,M,0", "4,1,M,1", "4,1,M,2", "4,1,M,3", "4,1,M,4", "4,1,M,5", "4,1,M,6",
                     "4,1,M,7"}),
              calls);
}

TEST_F(Notification, CallbackThatUnregistersItselfIsNotCalledAgain)
{
    mark("M", 0, 8);
    onCall = [](QString&, int) { driver.valueChangeCallback = nullptr; };
    notify("M", 0, 1, 0xFF, 0x00, 1);
    EXPECT_EQ((Texts{"4,1,M,0"}), calls);
}
}  // namespace
