// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Logging over real links: a file that a spreadsheet opens, also when the cable was pulled, the
// disk is full, or the system stops the program.

#include "tests/tools/support/programs.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <csignal>

using namespace tool_tests;

namespace {

// The rows of a log without their times, which must look like times.
QStringList rowsOf(const QByteArray& log)
{
    static const QRegularExpression time(
        QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}[+-]\\d\\d:\\d\\d,"));
    QStringList rows;
    for (const QString& line : QString::fromUtf8(log).split('\n')) {
        if (!line.isEmpty())
            rows += QString(line).remove(time);
    }
    return rows;
}

}  // namespace

class Log : public testing::Test
{
protected:
    Ended log(const QStringList& arguments)
    {
        return fxhost(QStringList{"--link", plc.link(), "log"} + arguments);
    }

    RunningSimulator plc{Road::PseudoTerminal, quickPlc};
    QTemporaryDir folder;
    const QString file = folder.filePath("plc.csv");
};

TEST_F(Log, HasARowForEachCycle)
{
    const Ended ended = log({"D0:2", "X0", "-n", "2", "-l", "1"});
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
    EXPECT_EQ(rowsOf(ended.out.c_str()), QStringList({"time,D0,D1,X0,error", "0,0,0,", "0,0,0,"}));
}

// The rows do not wait for the day to end.
TEST_F(Log, HasARowForEachOfTheShortestPeriods)
{
    const Ended ended = log(
        {"D0", "D100:3", "--period", "D101=1", "X0", "-n", "3", "-l", "1d", "--period", "D0=2"});
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
    EXPECT_EQ(rowsOf(ended.out.c_str()).size(), 1 + 3);
}

// With a turnaround of a second, one word takes 1020 ms at 9600 baud.
TEST_F(Log, SaysWhichPeriodsTheLineCannotKeep)
{
    const Ended late = log(
        {"D0:2", "D100", "--period", "D0=100ms", "--turnaround", "1000", "-n", "1", "-l", "10s"});
    EXPECT_EQ(late.code, 0) << testing::PrintToString(late);
    EXPECT_EQ(late.err, "fxhost: line load 1040 %: D0 every 1045 ms instead of 100 ms; "
                        "D0:2, D100 every 81583 ms instead of 10000 ms\n");
    const Ended kept = log({"D0", "--period", "D0=10s", "--turnaround", "1000", "-n", "1"});
    EXPECT_EQ(kept.err, "");
}

TEST_F(Log, TakesTheLastOfSeveralPeriods)
{
    const Ended ended = log({"D0:9", "--period", "D0:2=2ms", "--period", "D0:9=1ms", "--turnaround",
                             "1000", "-n", "1"});
    EXPECT_TRUE(holds(ended.err, ": D0:9 every ")) << ended.err;
    EXPECT_FALSE(holds(ended.err, "D0:2")) << ended.err;
}

TEST_F(Log, RefusesPeriodsThatItCannotKeepTo)
{
    const Ended notAsked = log({"D0", "--period", "D1=100"});
    EXPECT_EQ(notAsked.code, 2);
    EXPECT_EQ(notAsked.err, "fxhost: --period D1: not among the addresses\n");
    EXPECT_EQ(log({"D0", "--period", "D0=soon"}).code, 2);
    const Ended given = log({"D0", "--period", "D0=100", "--plan", "given"});
    EXPECT_EQ(given.code, 2);
    EXPECT_EQ(given.err,
              "fxhost: --plan given reads everything in every cycle; values with periods "
              "of their own need --plan shortest\n");
}

TEST_F(Log, OfChangesHasARowForEachOfThem)
{
    RunningHost host({"--link", plc.link(), "log", "D0", "--changes", "-l", "1"});
    ASSERT_TRUE(host.hasPrinted());
    plc.command("poke 0x1000 5");
    ASSERT_TRUE(host.hasPrinted());
    host.send(SIGTERM);
    const Ended ended = host.end();
    EXPECT_EQ(ended.code, 0) << "stopped by the system";
    EXPECT_EQ(rowsOf(ended.out.c_str()), QStringList({"time,D0,error", "0,", "5,"}));
}

TEST_F(Log, InJsonNamesItsLink)
{
    const Ended ended = log({"D0", "-n", "1", "--json"});
    const QJsonObject row = QJsonDocument::fromJson(ended.out.c_str()).object();
    EXPECT_EQ(row["link"].toString(), plc.link());
    EXPECT_EQ(row["values"].toObject()["D0"].toInt(-1), 0);
}

TEST_F(Log, GoesOnBehindAGapWhenTheCableIsBack)
{
    const RunningSimulator loose(Road::PseudoTerminal,
                                 quickPlc + QStringList{"--faults", "link-drop:100@3"});
    const Ended ended = fxhost({"--link", loose.link(), "log", "D0", "-n", "3", "-l", "1"});
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
    EXPECT_EQ(rowsOf(ended.out.c_str()),
              QStringList({"time,D0,error", "0,", "0,", ",the link was lost", "0,"}));
}

TEST_F(Log, EndsAfterItsDuration)
{
    const Ended ended = log({"D0", "--duration", "50ms", "-l", "1d"});
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
    EXPECT_LE(rowsOf(ended.out.c_str()).size(), 2) << "the second row comes after a day";
}

TEST_F(Log, GoesIntoAFile)
{
    const Ended ended = log({"D0", "-n", "2", "-l", "1", "--output", file});
    EXPECT_EQ(ended.code, 0);
    EXPECT_EQ(ended.out, "  " + file.toStdString() + ": 2 rows written\n");
    EXPECT_EQ(rowsOf(contentOf(file)), QStringList({"time,D0,error", "0,", "0,"}));
    EXPECT_EQ(log({"D0", "-n", "1", "--output", file}).code, 7) << "it is there already";
    EXPECT_EQ(log({"D0", "-n", "1", "--output", file, "--append"}).code, 0);
    EXPECT_EQ(rowsOf(contentOf(file)).size(), 4);
    EXPECT_EQ(log({"D0", "-n", "1", "--output", "D100:4"}).code, 2) << "an address";
    EXPECT_EQ(log({"D0", "-n", "1", "--append"}).code, 2) << "to what?";
}

// With the settings of its own example, but for the link and the end.
TEST_F(Log, TheUnitOfThePackageRunsWithItsExample)
{
    static const QRegularExpression setting(QStringLiteral("^#   (\\w+)=(.*)$"),
                                            QRegularExpression::MultilineOption);
    const QString unit = contentOf(FXHOST_UNIT);
    QString shell = "fxhost() { " FXHOST_FILE " \"$@\"; }\n";
    auto settings = setting.globalMatch(unit);
    while (settings.hasNext()) {
        const QRegularExpressionMatch match = settings.next();
        shell += match.captured(1) + "='" + match.captured(2) + "'\n";
    }
    shell += QStringLiteral("FX_LINK=%1; OPTIONS=\"$OPTIONS -n 1\"; LOGS_DIRECTORY=%2\n"
                            "export FX_LINK FX_DRIVER=%3\n")
                 .arg(plc.link(), folder.path(), FX_DRIVER_FILE);
    shell += unit.section("ExecStart=", 1).section('\n', 0, 0);
    ChildProcess process;
    process.start("/bin/sh", {"-c", shell});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    EXPECT_EQ(rowsOf(contentOf(file)).value(0),
              "time,D0,D1,D2,D3,D4,D5,D6,D7,D8,D9,X0,X1,X2,X3,X4,X5,X6,X7,error");
}

TEST_F(Log, EndsWhereItCannotWrite)
{
    ChildProcess shell;
    const QString run = QStringLiteral("trap '' XFSZ; ulimit -f 1; FX_DRIVER=%1 %2 --link %3 log "
                                       "D0:9 -l 0 ")
                            .arg(FX_DRIVER_FILE, FXHOST_FILE, plc.link());
    for (const QString& output : {"--output " + file, QStringLiteral(">/dev/full")}) {
        shell.start("/bin/bash", {"-c", run + output});
        ASSERT_TRUE(shell.waitForFinished()) << output.toStdString();
        EXPECT_EQ(shell.exitCode(), 7) << output.toStdString();
        const QString error = shell.readAllStandardError();
        EXPECT_TRUE(error.contains(": File too large") || error.contains(": No space left"))
            << error.toStdString();
        EXPECT_EQ(error.count('\n'), 1) << error.toStdString();
    }
}
