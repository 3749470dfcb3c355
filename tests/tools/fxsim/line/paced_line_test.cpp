// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Characters and scans as a matter of time, without a clock: the tests say what time it is.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/line/paced_line.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

QByteArray dueAt(PacedLine& line, qint64 nowUs)
{
    QVector<PacedLine::Sent> whole;
    return line.takeDue(nowUs, whole);
}

}  // namespace

TEST(LineTiming, CharacterIsTenBits)
{
    EXPECT_EQ((LineTiming{9600, 0}.characterTimeUs()), 1041);
    EXPECT_EQ((LineTiming{19200, 0}.characterTimeUs()), 520);
    EXPECT_EQ((LineTiming{0, 0}.characterTimeUs()), 0);
}

TEST(LineTiming, ScanEndsAtItsMultiples)
{
    const LineTiming timing{0, 10};
    EXPECT_EQ(timing.scanEndUs(0), 0);
    EXPECT_EQ(timing.scanEndUs(1), 10000);
    EXPECT_EQ(timing.scanEndUs(10000), 10000);
    EXPECT_EQ(timing.scanEndUs(10001), 20000);
    EXPECT_EQ((LineTiming{0, 0}.scanEndUs(10001)), 10001);
}

TEST(PacedLine, UnpacedSendsAtOnce)
{
    PacedLine line({0, 0});
    EXPECT_EQ(line.nextDueUs(), nothingDue);
    line.send("abc", "", 500);
    EXPECT_EQ(line.nextDueUs(), 500);
    EXPECT_EQ(dueAt(line, 499), "");
    EXPECT_EQ(dueAt(line, 500), "abc");
    EXPECT_EQ(line.nextDueUs(), nothingDue);
}

TEST(PacedLine, CharactersLeaveOneByOne)
{
    PacedLine line({10000, 0});  // a millisecond each
    line.send("abcd", "", 5000);
    EXPECT_EQ(line.nextDueUs(), 6000);
    EXPECT_EQ(dueAt(line, 5999), "");
    EXPECT_EQ(dueAt(line, 6000), "a");
    EXPECT_EQ(line.nextDueUs(), 7000);
    EXPECT_EQ(dueAt(line, 8500), "bc");
    EXPECT_EQ(dueAt(line, 20000), "d");
}

TEST(PacedLine, PiecesWaitForEachOther)
{
    PacedLine line({10000, 0});
    line.send("ab", "first", 5000);
    line.send("cd", "second", 0);
    EXPECT_EQ(line.queuedUntilUs(), 9000);
    QVector<PacedLine::Sent> whole;
    EXPECT_EQ(line.takeDue(8000, whole), "abc");
    ASSERT_EQ(whole.size(), 1) << "the other is not yet";
    EXPECT_EQ(whole[0].bytes, "ab");
    EXPECT_EQ(whole[0].note, "first");
    EXPECT_EQ(dueAt(line, 9000), "d");
}

TEST(PacedLine, ArrivingCharactersTakeTheirTimeToo)
{
    PacedLine line({10000, 0});
    EXPECT_EQ(line.arrivalUs(11, 1000), 12000);
    EXPECT_EQ(line.arrivalUs(1, 2000), 13000) << "behind those that are still on the way";
    EXPECT_EQ(line.arrivalUs(1, 50000), 51000);
}

TEST(PacedLine, ClearForgetsWhatWasQueued)
{
    PacedLine line({0, 0});
    line.send("late", "", 9000);
    line.clear();
    EXPECT_EQ(line.nextDueUs(), nothingDue);
    line.send("x", "", 100);
    EXPECT_EQ(dueAt(line, 100), "x");
}

TEST(PacedLine, QueueHasAnEnd)
{
    PacedLine line({0, 0});
    for (int piece = 0; piece < 1000; ++piece)
        EXPECT_TRUE(line.send("x", "", 0));
    EXPECT_FALSE(line.send("x", "", 0));
    EXPECT_TRUE(line.send("", "", 0)) << "silence has always room";
    EXPECT_EQ(dueAt(line, 0).size(), 1000);
}
