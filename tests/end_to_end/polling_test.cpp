// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Polling: from the monitored ranges over the wire into the host's buffers.

#include "tests/end_to_end/session_fixture.h"

namespace {
using Polling = Session;

TEST_F(Polling, EveryRegisterTypeArrivesFromItsOwnMemory)
{
    connect();
    plc.put(0x0080, {0x81});                    // X0 to X7
    plc.put(0x00A0, {0x02});                    // Y0 to Y7
    plc.put(0x0100, {0x04});                    // M0 to M7
    plc.put(0x0000, {0x08});                    // S0 to S7
    plc.put(0x01E0, {0x10});                    // SM8000 to SM8007
    plc.put(0x00C0, {0x20});                    // T0 to T7
    plc.put(0x01C0, {0x40});                    // C0 to C7
    plc.put(0x10C8, {0x34, 0x12, 0x78, 0x56});  // D100, D101
    plc.put(0x0E00, {0x01, 0x02});              // SD8000
    plc.put(0x0802, {0x03, 0x04});              // TV1
    plc.put(0x0A02, {0x05, 0x06});              // CV1
    plc.put(0x0C04, {0x07, 0x08, 0x09, 0x0A});  // 32CV201
    const int planned = monitor(QList<KEY_ADDRESS>()
                                << range("X", 0, 8) << range("Y", 0, 8) << range("M", 0, 8)
                                << range("S", 0, 8) << range("SM", 8000, 8) << range("T", 0, 8)
                                << range("C", 0, 8) << range("D", 100, 2) << range("SD", 8000, 1)
                                << range("TV", 1, 1) << range("CV", 1, 1) << range("32CV", 201, 1));
    ASSERT_EQ(12, planned);
    EXPECT_EQ(12, exchanges(12));
    EXPECT_EQ((Bytes{1, 0, 0, 0, 0, 0, 0, 1}), values("X", 0, 8, 8));
    EXPECT_EQ((Bytes{0, 1}), values("Y", 0, 2, 2));
    EXPECT_EQ((Bytes{1}), values("M", 2, 1, 1));
    EXPECT_EQ((Bytes{1}), values("S", 3, 1, 1));
    EXPECT_EQ((Bytes{1}), values("SM", 8004, 1, 1));
    EXPECT_EQ((Bytes{1}), values("T", 5, 1, 1));
    EXPECT_EQ((Bytes{1}), values("C", 6, 1, 1));
    EXPECT_EQ((Bytes{0x34, 0x12, 0x78, 0x56}), values("D", 100, 2, 4));
    EXPECT_EQ((Bytes{1, 2}), values("SD", 8000, 1, 2));
    EXPECT_EQ((Bytes{3, 4}), values("TV", 1, 1, 2));
    EXPECT_EQ((Bytes{5, 6}), values("CV", 1, 1, 2));
    EXPECT_EQ((Bytes{7, 8, 9, 10}), values("32CV", 201, 2, 4));
}

TEST_F(Polling, ChangesOfMonitoredWordsAreReportedOnce)
{
    connect();
    ASSERT_EQ(1, monitor(QList<KEY_ADDRESS>() << range("D", 100, 2)));
    plc.put(0x10C8, {5, 0});
    EXPECT_EQ(1, exchange());
    EXPECT_EQ(1, exchange());
    EXPECT_EQ((Texts{"1,1,D,100"}), calls);
    plc.put(0x10CA, {6, 0});
    EXPECT_EQ(1, exchange());
    EXPECT_EQ((Texts{"1,1,D,100", "1,1,D,101"}), calls);
}

TEST_F(Polling, OneOffReadArrivesOnceAndReportsItsEnd)
{
    connect();
    plc.put(0x1190, {1, 2, 3, 4});
    KEY_ADDRESS key = range("D", 200, 40);
    EXPECT_EQ(1, driver.addConditionRead(key, 5));
    EXPECT_EQ(1, exchange());
    EXPECT_EQ(Texts(), calls);
    EXPECT_EQ(1, exchange());
    EXPECT_EQ((Texts{"-1,-1,-1,0"}), calls);
    EXPECT_EQ((Bytes{1, 2, 3, 4}), values("D", 200, 2, 4));
    EXPECT_EQ(nothingToSend, exchange());
}
}  // namespace
