// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Ends that nobody planned: fxhost is interrupted in the middle of its work, or killed. It tells
// how far it came where it still can, and whoever comes next finds a usable line. Stopped, it goes
// on where it was.

#include "tests/tools/support/programs.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

using namespace tool_tests;

class UnplannedEnd : public testing::TestWithParam<Road>
{
protected:
    RunningSimulator plc{GetParam(), {"--baud", "9600", "--program", "none"}};
};

INSTANTIATE_TEST_SUITE_P(Roads, UnplannedEnd, testing::Values(Road::PseudoTerminal, Road::Tcp),
                         [](const auto& row) { return testing::PrintToString(row.param); });

TEST_P(UnplannedEnd, TwoSignalsAtOnceAreOneInterrupt)
{
    RunningHost watch({"--link", plc.link(), "watch", "D0:64", "--csv", "-l", "0"});
    ASSERT_TRUE(watch.hasPrinted());
    watch.send(SIGINT);
    watch.send(SIGINT);
    watch.send(SIGTERM);
    EXPECT_EQ(watch.end().code, 130);
}

TEST_P(UnplannedEnd, AnInterruptedWriteTellsWhatArrived)
{
    QStringList values;
    for (int value = 0; value < 600; ++value)
        values += QString::number(value);
    // The first assignment is reported in CSV while the long one is on its way.
    RunningHost write({"--link", plc.link(), "write", "M0=1", "D0:600=" + values.join(','),
                       "--no-verify", "--csv", "-q"});
    ASSERT_TRUE(write.hasPrinted());
    write.send(SIGINT);
    const Ended ended = write.end();
    EXPECT_EQ(ended.code, 130);
    EXPECT_TRUE(holds(ended.out, " of 19 frames written: interrupted")) << ended.out;
}

TEST_P(UnplannedEnd, AnInterruptedDumpIsResumed)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("plc.csv");
    RunningHost dump({"--link", plc.link(), "dump", file, "D0:8000", "--json"});
    while (contentOf(file).count('\n') < 40)
        QThread::msleep(1);
    dump.send(SIGINT);
    const Ended ended = dump.end();
    EXPECT_EQ(ended.code, 130);
    EXPECT_TRUE(holds(ended.err, "interrupted: ")) << ended.err;
    EXPECT_TRUE(holds(ended.err, "continue with --resume")) << ended.err;
    const int before = contentOf(file).count('\n') - 1;
    const QString range = QStringLiteral("D0:%1").arg(before + 5);
    EXPECT_EQ(fxhost({"--link", plc.link(), "dump", file, range, "--resume", "-q"}).code, 0);
    EXPECT_EQ(contentOf(file).count('\n') - 1, before + 5);
}

TEST(InterruptedDemo, SaysHowFarItCame)
{
    RunningHost demo({"demo"});
    ASSERT_TRUE(demo.hasPrinted());
    demo.send(SIGINT);
    const Ended ended = demo.end();
    EXPECT_EQ(ended.code, 130);
    EXPECT_TRUE(holds(ended.out, "Interrupted after ")) << ended.out;
    EXPECT_TRUE(holds(ended.out, " of 13 checks.")) << ended.out;
    EXPECT_FALSE(holds(ended.out, "passed")) << ended.out;
}

TEST_P(UnplannedEnd, AnInterruptNeedNotWaitForALongTimeout)
{
    const RunningSimulator silent(GetParam(), {"--baud", "0", "--faults", "silence@2-"});
    // The time-out is longer than the patience of this test.
    RunningHost watch({"--link", silent.link(), "-o", "60s", "watch", "D0", "--csv", "-l", "0"});
    ASSERT_TRUE(watch.hasPrinted());
    watch.send(SIGINT);
    EXPECT_EQ(watch.end().code, 130);
}

TEST_P(UnplannedEnd, AKilledProgramLeavesAUsableLine)
{
    RunningHost watch({"--link", plc.link(), "watch", "D0:64", "--csv", "-l", "0"});
    ASSERT_TRUE(watch.hasPrinted());
    watch.send(SIGKILL);
    EXPECT_EQ(watch.end().code, -1);
    const Ended next = fxhost({"--link", plc.link(), "read", "D0", "--csv", "-q"});
    EXPECT_EQ(next.out, "D0,0,\n") << testing::PrintToString(next);
}

// A wait that the going on cut short was taken for a silent PLC.
TEST_P(UnplannedEnd, AStopCostsNoExchange)
{
    RunningHost stats({"--link", plc.link(), "-o", "20s", "stats", "D0:64", "-n", "4", "--json"});
    for (int stop = 0; stop < 30; ++stop) {
        stats.send(SIGSTOP);
        stats.send(SIGCONT);
        QThread::msleep(20);
    }
    const Ended ended = stats.end();
    EXPECT_EQ(ended.code, 0) << ended.err;
    const QJsonObject counted = QJsonDocument::fromJson(ended.out.c_str()).object();
    EXPECT_EQ(counted["exchanges"].toObject()["cyclicRead"].toObject()["good"].toInt(), 8);
    for (const QJsonValue& rejected : counted["rejected"].toObject())
        EXPECT_EQ(rejected.toInt(-1), 0) << ended.out;
}
