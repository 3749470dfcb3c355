// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Damaged and missing replies: repeated, given up, and recovered from.

#include "tests/end_to_end/session_fixture.h"

namespace {
class Failure : public Session
{
protected:
    Failure() { connect(); }

    const QByteArray silence;
    const QByteArray nak = QByteArray("\x15", 1);
    const QByteArray damaged = QByteArray("\x02"
                                          "0500\x03"
                                          "00",
                                          8);
};

TEST_F(Failure, SameFrameIsSentUntilAReplyIsGood)
{
    monitor(QList<KEY_ADDRESS>() << range("D", 100, 1) << range("D", 500, 1));
    plc.put(0x10C8, {5, 0});
    FRAME_PRO first;
    FRAME_PRO second;
    ASSERT_EQ(1, driver.getSendFrame(&first));
    EXPECT_EQ(8, exchangeAnswered(damaged));
    EXPECT_EQ("1#D100(1)(8)", errorText);
    EXPECT_EQ(8, exchangeAnswered(silence));
    EXPECT_EQ("1#D100(1)(0)", errorText);
    ASSERT_EQ(1, driver.getSendFrame(&second));
    EXPECT_EQ(QByteArray(reinterpret_cast<char*>(first.frame), 11),
              QByteArray(reinterpret_cast<char*>(second.frame), 11));
    EXPECT_EQ(1, exchange());
    EXPECT_EQ((Bytes{5, 0}), values("D", 100, 1, 2));
}

TEST_F(Failure, RefusedWriteIsUndoneAndReported)
{
    monitor(QList<KEY_ADDRESS>() << range("D", 100, 1));
    plc.put(0x10C8, {5, 0});
    EXPECT_EQ(1, exchange());
    write("D", 100, {9, 9}, 1);
    calls.clear();
    EXPECT_EQ(8, exchangeAnswered(nak));
    EXPECT_EQ((Bytes{9, 9}), values("D", 100, 1, 2));
    EXPECT_EQ(8, exchangeAnswered(nak));
    EXPECT_EQ(2, exchangeAnswered(nak));
    EXPECT_EQ((Bytes{5, 0}), values("D", 100, 1, 2));
    EXPECT_EQ((Texts{"1,1,D,100"}), calls);
    EXPECT_EQ((Bytes{5, 0}), plc.at(0x10C8, 2));
}
}  // namespace
