// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/support/loaded_driver.h"
#include "tools/exchange/polling.h"
#include "tools/simulated/make_link.h"

#include <QDate>

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

TEST(SimulatedPlc, ShowsTheDateInItsClockRegisters)
{
    DriverSession session(driver(), {});
    const MadeLink plc = makeLink(SimulatedSettings());
    plc.link->open();
    ExchangeLoop loop(session, *plc.link);
    const RegisterRange dayMonthYear = range("SD8016:3");
    const QDate before = QDate::currentDate();
    EXPECT_EQ(readBack(loop, dayMonthYear), ReplyVerdict::Good);
    const QVector<quint32> shown = session.values(dayMonthYear);
    const QDate date(2000 + int(shown[2]), int(shown[1]), int(shown[0]));
    EXPECT_TRUE(before <= date && date <= QDate::currentDate()) << date.toString().toStdString();
}
