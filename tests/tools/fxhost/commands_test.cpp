// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the commands of fxhost do beyond their plain use, which tests/end_to_end shows: against a
// simulated PLC on a real pseudo-terminal and over TCP.

#include "tests/tools/support/programs.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace tool_tests;

class Commands : public testing::TestWithParam<Road>
{
protected:
    // A PLC whose memory only the host changes.
    RunningSimulator plc{GetParam(), quickPlc};

    Ended run(const QStringList& arguments)
    {
        return fxhost(QStringList{"--link", plc.link()} + arguments);
    }
};

INSTANTIATE_TEST_SUITE_P(Roads, Commands, testing::Values(Road::PseudoTerminal, Road::Tcp),
                         [](const auto& row) { return testing::PrintToString(row.param); });

TEST_P(Commands, WriteTakesTheFormatItIsTold)
{
    EXPECT_EQ(run({"write", "D0:4=5,-2", "--as", "long", "-q"}).code, 0);
    EXPECT_EQ(plc.command("peek 0x1000 8"), "1000: 05 00 00 00 FE FF FF FF\n");
    EXPECT_EQ(run({"write", "D4=2", "--as", "float", "-q"}).code, 0);
    EXPECT_EQ(plc.command("peek 0x1008 4"), "1008: 00 00 00 40\n");
    EXPECT_EQ(run({"write", "D6=ff", "--as", "hex", "-q"}).code, 0);
    EXPECT_EQ(plc.command("peek 0x100C 2"), "100C: FF 00\n");
    EXPECT_EQ(run({"write", "-t", "M", "-r", "8", "-c", "3", "1", "0", "on", "-q"}).code, 0);
    EXPECT_EQ(plc.command("peek 0x0101"), "0101: 05\n");
}

TEST_P(Commands, TimestampsStandInFront)
{
    const QRegularExpression line(
        "^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}[+-]\\d\\d:\\d\\d,D0,0,$",
        QRegularExpression::MultilineOption);
    const Ended ended = run({"read", "D0", "--csv", "-q", "--timestamps"});
    EXPECT_TRUE(line.match(QString::fromStdString(ended.out)).hasMatch()) << ended.out;
}

TEST_P(Commands, ATimeoutMayBeInSeconds)
{
    EXPECT_EQ(run({"read", "D0", "-o", "0.5s", "-q"}).code, 0);
    EXPECT_EQ(run({"read", "D0", "-o", "500ms", "-q"}).code, 0);
}

TEST_P(Commands, WriteOfManyBitsLosesNone)
{
    const QString ones = QStringList(QVector<QString>(600, "1").toList()).join(',');
    EXPECT_EQ(run({"write", "M0:600=" + ones}).code, 0);
}

TEST_P(Commands, RestoreNamesWhatTheProgramOfThePlcWrites)
{
    // Keeps its seconds in D0, and is slow enough to do so between a write and a read.
    RunningSimulator counting(GetParam(), {"--baud", "9600"});
    const QTemporaryDir folder;
    const QString file = newFile(folder, "values.csv", "address,value\nD0,65535\nD100,7\n");
    const Ended ended = fxhost({"--link", counting.link(), "restore", file, "--yes", "-q"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.err,
              "fxhost: written, but read back with another value: D0; does the program in "
              "the PLC write there?\n");
    EXPECT_EQ(counting.command("peek 0x10C8 2"), "10C8: 07 00\n");
}

TEST_P(Commands, ReplayNamesTheLineThatDiffers)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("session.jsonl");
    EXPECT_EQ(run({"record", file, "D0:64", "X0:8", "-n", "2"}).code, 0);
    QByteArray changed = contentOf(file);
    changed.replace("1#D32(32)", "1#D33(32)");
    const Ended differs = fxhost({"replay", newFile(folder, "changed.jsonl", changed)});
    EXPECT_EQ(differs.code, 1);
    EXPECT_TRUE(holds(differs.err, "line 4: the driver returns"));
}

TEST_P(Commands, StatsShowTheHistogramBesideTheTimeout)
{
    const Ended ended = run({"stats", "D0:64", "-n", "5", "--json"});
    const QJsonObject stats = QJsonDocument::fromJson(ended.out.c_str()).object();
    int answers = 0;
    for (const auto bar : stats["responseHistogram"].toArray())
        answers += bar.toObject()["answers"].toInt();
    EXPECT_EQ(answers, 10);
    EXPECT_GE(stats["timeoutMs"].toInt(), stats["timeoutFloorMs"].toInt());
    EXPECT_LE(stats["timeoutMs"].toInt(), stats["timeoutCeilingMs"].toInt());
    const Ended forPeople = run({"stats", "D0:64", "-n", "5"});
    EXPECT_TRUE(holds(forPeople.out, "  response times (time-out: ")) << forPeople.out;
    EXPECT_TRUE(holds(forPeople.out, "█")) << forPeople.out;
    EXPECT_TRUE(
        holds(run({"stats", "D0", "-n", "5", "--csv"}).out, "\nexchanges.cyclicRead.good,5\n"));
}

TEST_P(Commands, StatsSayWhatEachBlockCosts)
{
    const QStringList command = {"stats", "D0:64", "D140", "-n", "5"};
    const Ended forPeople = run(command);
    EXPECT_TRUE(holds(forPeople.out, "  without D140: ")) << forPeople.out;
    EXPECT_FALSE(holds(forPeople.out, "without D0:64")) << "it takes two blocks";
    EXPECT_TRUE(holds(forPeople.out, "    0 %")) << forPeople.out;
    const QJsonObject stats =
        QJsonDocument::fromJson(run(command + QStringList("--json")).out.c_str()).object();
    const QJsonArray blocks = stats["blocks"].toArray();
    ASSERT_EQ(blocks.size(), 3);
    EXPECT_EQ(blocks[0].toObject()["block"].toString(), "D0 … D31");
    const double ms = blocks[0].toObject()["ms"].toDouble();
    EXPECT_GT(ms, 0);
    EXPECT_NEAR(blocks[0].toObject()["msPerRegister"].toDouble(), ms / 32, 0.001);
    EXPECT_TRUE(stats.contains("link"));
    EXPECT_EQ(stats["errorPercent"].toDouble(-1), 0);
}

// 20 ms, and 11 characters of request, 4 of frame and 4 of value, of 10 bits each.
TEST_P(Commands, PlanSaysWhatAnAddressCosts)
{
    const Ended ended = run({"plan", "D100:10", "D105:20", "D140"});
    EXPECT_TRUE(holds(ended.out, "  without D140: 40 ms a cycle less at 9600 baud\n")) << ended.out;
    EXPECT_TRUE(holds(run({"plan", "D100:10", "D105:20", "M5", "--json"}).out,
                      "\"msLessWithout\": {\n        \"D105:20\": "));
}

TEST_P(Commands, PlanHasBothPlansForPrograms)
{
    const Ended ended = run({"plan", "D0", "D30", "M5", "--turnaround", "10", "--json"});
    const QJsonObject plan = QJsonDocument::fromJson(ended.out.c_str()).object();
    const QJsonObject given = plan["given"].toObject();
    const QJsonObject shortest = plan["shortest"].toObject();
    // 11 characters of request each; 4 of frame and 2 a byte of answer.
    EXPECT_EQ(given["characters"].toInt(), 15 + 2 * 1 + 15 + 2 * 62);
    EXPECT_EQ(shortest["characters"].toInt(), 15 + 2 * 1 + 2 * (15 + 2 * 2));
    EXPECT_EQ(given["cycleMs"].toObject()["9600"].toDouble(), 182.5);
    EXPECT_EQ(shortest["cycleMs"].toObject()["9600"].toDouble(), 87.292);
    EXPECT_EQ(shortest["cycleMs"].toObject()["19200"].toDouble(), 58.646);
    const QJsonObject bits = given["blocks"].toArray()[0].toObject();
    EXPECT_EQ(bits["which"].toArray(), QJsonArray({"M0 … M4", "M6 … M7"}));
    const QJsonObject last = shortest["blocks"].toArray()[2].toObject();
    EXPECT_EQ(last["type"].toString(), "D");
    EXPECT_EQ(last["first"].toString(), "D30");
    EXPECT_EQ(last["last"].toString(), "D30");
    EXPECT_EQ(last["bytes"].toInt(), 2);
    EXPECT_EQ(last["characters"].toInt(), 19);
}

// At 115200 baud an exchange costs more than any frame's registers; the blocks are those at 9600.
TEST_P(Commands, PlanKnowsTheShortestCycleOfEachSpeed)
{
    const auto cycleMs = [this](const char* plan, const char* baud, const QStringList& options) {
        const Ended ended = run(QStringList{"plan", "D0", "D30", "--json"} + options);
        return QJsonDocument::fromJson(ended.out.c_str())
            .object()[plan]
            .toObject()["cycleMs"]
            .toObject()[baud]
            .toDouble();
    };
    EXPECT_EQ(cycleMs("shortest", "115200", {}), cycleMs("given", "115200", {}));
    EXPECT_LT(cycleMs("shortest", "9600", {}), cycleMs("given", "9600", {}));
    EXPECT_EQ(cycleMs("given", "57600", {"--baud", "57600", "--turnaround", "0"}), 24.132);
}

TEST_P(Commands, PlanDrawsTheMemory)
{
    const Ended ended = run({"plan", "D0:3", "D20", "M9"});
    EXPECT_TRUE(holds(ended.out, "\n  D0       given    ███░░░░░░░░░░░░░░░░░█▁▁▁")) << ended.out;
    EXPECT_TRUE(holds(ended.out, "\n           shortest ███▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▆▁▁▁")) << ended.out;
    const QTemporaryDir folder;
    const QString file = folder.filePath("plan.svg");
    EXPECT_EQ(run({"plan", "D0:3", "D20", "--svg", file}).code, 0);
    EXPECT_EQ(run({"plan", "D0:3", "D20", "--svg", file}).code, 7);
    EXPECT_EQ(run({"plan", "D0:3", "D20", "--svg", file, "--force"}).code, 0);
    QFile drawing(file);
    ASSERT_TRUE(drawing.open(QIODevice::ReadOnly));
    const QByteArray svg = drawing.readAll();
    EXPECT_EQ(svg.count("class=\"block\""), 1 + 2);
    EXPECT_EQ(svg, QByteArray(run({"plan", "D0:3", "D20", "--svg", "-"}).out.c_str()));
}

TEST_P(Commands, OutputForProgramsIsNothingElse)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("plc.csv");
    const auto parsed = [this](const QStringList& arguments) {
        const Ended ended = run(QStringList{"--json"} + arguments);
        return QJsonDocument::fromJson(ended.out.c_str()).array()[0].toObject();
    };
    EXPECT_EQ(parsed({"dump", file, "D0:64"})["read"].toInt(), 64);
    EXPECT_EQ(parsed({"restore", file})["written"].toInt(), 0);
    EXPECT_EQ(parsed({"recipe", "download", file})["registers"].toInt(), 64);
    EXPECT_TRUE(parsed({"doctor"})["meaning"].toString().contains("All is well"));
}
