// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost in trouble: a PLC that misbehaves, where what can be read is read and the rest is named;
// and ends that nobody planned. Interrupted or killed, it tells how far it came where it still can,
// and whoever comes next finds a usable line. Stopped, it goes on where it was.

#include "tests/tools/support/programs.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

using namespace tool_tests;

namespace {

Ended run(const RunningSimulator& plc, const QStringList& arguments)
{
    return fxhost(QStringList{"--link", plc.link()} + arguments);
}

}  // namespace

class Misbehaving : public testing::TestWithParam<Road>
{};

INSTANTIATE_TEST_SUITE_P(Roads, Misbehaving, testing::Values(Road::PseudoTerminal, Road::Tcp),
                         [](const auto& row) { return testing::PrintToString(row.param); });

TEST_P(Misbehaving, ABadRegisterDoesNotTakeItsNeighboursAlong)
{
    // D5 is not there: bytes 0x100A and 0x100B.
    const RunningSimulator plc(GetParam(), quickPlc + QStringList{"--holes", "0x100A-0x100B"});
    const Ended ended = run(plc, {"read", "D0:8", "--csv", "-q"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.out, "D0,0,\nD1,0,\nD2,0,\nD3,0,\nD4,0,\nD5,,refused by the PLC (NAK)\nD6,0,\n"
                         "D7,0,\n");
}

TEST_P(Misbehaving, SomeBadRepliesAreRepeatedAway)
{
    const RunningSimulator plc(
        GetParam(), {"--baud", "0", "--faults", "wrong-sum=0.1,truncated=0.05,junk-before=0.05"});
    const Ended ended = run(plc, {"--retries", "9", "stats", "D0:320", "-n", "20", "--json"});
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
    const QJsonObject stats = QJsonDocument::fromJson(ended.out.c_str()).object();
    const QJsonObject reads = stats["exchanges"].toObject()["cyclicRead"].toObject();
    EXPECT_EQ(reads["good"].toInt(), 200) << ended.out;
    EXPECT_EQ(reads["givenUp"].toInt(), 0) << ended.out;
    for (const char* reason : {"wrongSum", "incomplete", "highBits"})
        EXPECT_GT(stats["rejected"].toObject()[reason].toInt(), 0) << reason << ended.out;
}

// Each write is read, write, read back: the second exchange is the write itself.
TEST_P(Misbehaving, AWriteIsSettledOrReported)
{
    struct Row
    {
        const char* plc;
        const char* command;
        int code;
        const char* says;
    };
    const Row rows[] = {
        {"--faults nak=1", "write D0=1 M0=1 --no-verify", 5,
         "D0,,1,not written: refused by the PLC (NAK)\n"
         "M0,,1,not written: refused by the PLC (NAK)\n"},
        {"--faults nak=1", "write D0=1", 5,
         "D0,,1,\"not written: refused by the PLC (NAK); could not be read back: refused by the "
         "PLC "
         "(NAK)\"\n"},
        // What is written to D2 shows at D0 too.
        {"--mirror 0x1004:0x1000:2", "write D0:3=5,6,7", 1,
         "D0:3,\"0,0,0\",\"5,6,7\",\"acknowledged, but the PLC holds D0=7\"\n"},
        {"--faults silence@2", "write D0=7", 0,
         "D0,0,7,\"verified, although not acknowledged: no reply\"\n"},
        {"--faults nak@2", "write D0=7", 5,
         "D0,0,7,\"not written: refused by the PLC (NAK); the PLC holds 0\"\n"},
        {"--faults silence@1", "write D0=7", 4,
         "D0,,7,\"not written, because it could not be read before: no reply\"\n"},
        {"--faults silence=1", "write D0=1 --no-verify", 4,
         "D0,,1,\"no reply; D0 may have been written\"\n"},
    };
    for (const Row& row : rows) {
        const RunningSimulator plc(GetParam(), quickPlc + QString(row.plc).split(' '));
        const Ended ended = run(plc, QStringList{"-o", "50", "--retries", "0", "--csv", "-q"} +
                                         QString(row.command).split(' '));
        EXPECT_EQ(ended.code, row.code) << row.plc;
        EXPECT_EQ(ended.out, row.says) << row.plc;
    }
}

TEST_P(Misbehaving, WatchGoesOnWhenTheLinkIsBack)
{
    const RunningSimulator plc(GetParam(), quickPlc + QStringList{"--faults", "link-drop:200@5"});
    const Ended ended = run(plc, {"watch", "D0", "-n", "10", "-l", "1", "--csv", "-q"});
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
    EXPECT_EQ(times(ended.err, "the link was lost"), 1) << ended.err;
    EXPECT_EQ(times(ended.err, "the link is back"), 1) << ended.err;
}

TEST_P(Misbehaving, ADumpKeepsAGoodFileWhenThePlcIsSilent)
{
    const RunningSimulator plc(GetParam(), {"--baud", "0", "--faults", "silence=1"});
    const QTemporaryDir folder;
    const QString file = newFile(folder, "plc.csv", "address,value\nD0,7\n");
    const Ended ended = run(plc, {"-o", "50", "dump", file, "D0:64", "--force", "-q"});
    EXPECT_EQ(ended.code, 4);
    EXPECT_EQ(ended.err,
              "fxhost: no reply: nothing was read, " + file.toStdString() + " was not written\n");
    EXPECT_EQ(contentOf(file), "address,value\nD0,7\n");
    const QString other = folder.filePath("new.csv");
    EXPECT_EQ(run(plc, {"-o", "50", "dump", other, "D0:64"}).code, 4);
    EXPECT_FALSE(QFile::exists(other));
}

// Nothing is to be measured there, with or without periods.
TEST_P(Misbehaving, StatsEndWithTheFirstCycleOfSilence)
{
    const RunningSimulator plc(GetParam(), {"--baud", "0", "--faults", "silence=1"});
    for (const char* const period : {"D0=0", "D0=20"}) {
        const Ended ended = run(plc, {"-o", "20", "--retries", "0", "stats", "D0", "D90",
                                      "--period", period, "-n", "50", "--json"});
        EXPECT_EQ(ended.code, 4);
        const QJsonObject stats =
            QJsonDocument::fromJson(QByteArray::fromStdString(ended.out)).object();
        EXPECT_EQ(stats["exchanges"].toObject()["cyclicRead"].toObject()["frames"].toInt(), 2);
    }
}

TEST_P(Misbehaving, ARecordingOfSilenceIsToldAsSuch)
{
    const RunningSimulator plc(GetParam(), {"--baud", "0", "--faults", "silence=1"});
    const QTemporaryDir folder;
    const QString file = folder.filePath("session.jsonl");
    const Ended ended = run(plc, {"-o", "50", "--retries", "1", "record", file, "D0"});
    EXPECT_EQ(ended.code, 4);
    EXPECT_EQ(ended.out, "  " + file.toStdString() + ": 2 exchanges saved, 0 good\n");
    EXPECT_EQ(ended.err, "fxhost: no valid reply; to find out why, run fxhost doctor --link '" +
                             plc.link().toStdString() + "'\n");
}

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

TEST_P(UnplannedEnd, StatsWithoutEndReportWhenTheyAreInterrupted)
{
    const std::string untouched = plc.command("stats").toStdString();
    RunningHost stats({"--link", plc.link(), "stats", "D0", "-n", "0", "--csv"});
    while (plc.command("stats").toStdString() == untouched)
        QThread::msleep(1);
    stats.send(SIGINT);
    const Ended ended = stats.end();
    EXPECT_EQ(ended.code, 130);
    EXPECT_TRUE(holds(ended.out, "\nexchanges.cyclicRead.good,")) << ended.out;
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

// A terminal that was closed, or a connection over the network that broke, is no reason to forget
// what was read.
TEST_P(UnplannedEnd, ADumpWhoseTerminalIsGoneIsResumed)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("plc.csv");
    RunningHost dump({"--link", plc.link(), "dump", file, "D0:8000", "--json"});
    while (contentOf(file).count('\n') < 2)
        QThread::msleep(1);
    dump.send(SIGHUP);
    const Ended ended = dump.end();
    EXPECT_EQ(ended.code, 130);
    EXPECT_TRUE(holds(ended.err, "continue with --resume")) << ended.err;
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
