// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the driver says about itself, with or without a connection, and the registration of the
// host's callback.

#include "tests/support/driver_fixture.h"

#include <QStringList>

namespace {
using Parameters = DriverTest;

int otherCallback(int, int, QString&, int)
{
    return 0;
}

TEST_F(Parameters, DefaultIsTheFixedTextOf22Fields)
{
    QString text = QString::fromLatin1("before");
    intf_getDriverParameter(text);
    EXPECT_EQ("0,9600,7,EVEN,1,1,2,192.168.0.10,8888,mitsubishi_fx2n,"
              "X,Y,M,D,SM,SD,T,C,TV,S,CV,32CV",
              plain(text));
    EXPECT_EQ(22, text.split(QLatin1Char(',')).size());
}

TEST_F(Parameters, PropertyPageIsZeroZero)
{
    QString text = QString::fromLatin1("before");
    intf_getDriverPropertyPage(text);
    EXPECT_EQ("0_0", plain(text));
}

TEST_F(Parameters, SetPropertyPageEmptiesTheText)
{
    QString text = QString::fromLatin1("5#4#3#2#1");
    intf_SetDriverPropertyPage(text);
    EXPECT_EQ("", plain(text));
    EXPECT_EQ(0, driver.linkNo);
    EXPECT_EQ(0, driver.frameWordLimit);
}

TEST_F(Parameters, ProtocolTypeIsAlwaysZero)
{
    for (const int before : {-1, 0, 1, 2147483647}) {
        int type = before;
        intf_getProtocolType(&type);
        EXPECT_EQ(0, type);
    }
}

TEST_F(Parameters, NullProtocolTypeIsSkipped)
{
    intf_getProtocolType(nullptr);
    EXPECT_EQ(0, driver.propertyInitialised);
}

TEST_F(Parameters, LaterCallbackReplacesTheEarlier)
{
    intf_setAddrValueChangeCallBack(&otherCallback);
    EXPECT_EQ(&otherCallback, driver.valueChangeCallback);
}

TEST_F(Parameters, NullCallbackIsStoredToo)
{
    intf_setAddrValueChangeCallBack(nullptr);
    EXPECT_EQ(nullptr, driver.valueChangeCallback);
}
}  // namespace
