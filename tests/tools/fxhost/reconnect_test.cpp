// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The link goes away in the middle of every command, and comes back: under the same stable path on
// another pseudo-terminal, or as a new TCP connection. Nothing is lost on the way; and when it
// does not come back, what was done until then is told.

#include "tests/tools/support/programs.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace tool_tests;

namespace {

// The third exchange loses the link; it is back after 200 ms.
const QStringList comesBack = quickPlc + QStringList{"--faults", "link-drop:200@3"};
const QStringList staysAway = quickPlc + QStringList{"--faults", "link-drop:60000@3"};

// Values from 1000 on for so many registers.
QString values(int registers)
{
    QStringList texts;
    for (int value = 0; value < registers; ++value)
        texts += QString::number(1000 + value);
    return texts.join(',');
}

QByteArray registerFile(int registers)
{
    QByteArray text = "address,value\n";
    for (int number = 0; number < registers; ++number)
        text += "D" + QByteArray::number(number) + ',' + QByteArray::number(1000 + number) + '\n';
    return text;
}

void expectLostAndBack(const Ended& ended)
{
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
    EXPECT_EQ(times(ended.err, "the link was lost"), 1) << ended.err;
    EXPECT_EQ(times(ended.err, "the link is back"), 1) << ended.err;
    EXPECT_EQ(times(ended.err, "\n"), 2) << ended.err;
}

}  // namespace

class LinkLost : public testing::TestWithParam<Road>
{
protected:
    Ended run(const RunningSimulator& plc, const QStringList& arguments)
    {
        return fxhost(QStringList{"--link", plc.link()} + arguments);
    }

    QTemporaryDir folder;
};

INSTANTIATE_TEST_SUITE_P(Roads, LinkLost, testing::Values(Road::PseudoTerminal, Road::Tcp),
                         [](const auto& row) { return testing::PrintToString(row.param); });

TEST_P(LinkLost, ReadGoesOn)
{
    const RunningSimulator plc(GetParam(), comesBack);
    const Ended ended = run(plc, {"read", "D0:200", "--csv", "-q"});
    expectLostAndBack(ended);
    EXPECT_EQ(times(ended.out, "\n"), 200);
}

TEST_P(LinkLost, QueuedWritesGoOutWhenItIsBack)
{
    const RunningSimulator plc(GetParam(), comesBack);
    const Ended ended = run(plc, {"write", "D0:200=" + values(200), "--csv", "-q"});
    expectLostAndBack(ended);
    EXPECT_TRUE(holds(ended.out, "verified"));
}

TEST_P(LinkLost, DumpIsWhole)
{
    const RunningSimulator plc(GetParam(), comesBack);
    const QString file = folder.filePath("dump.csv");
    expectLostAndBack(run(plc, {"dump", file, "D0:200", "-q"}));
    EXPECT_EQ(contentOf(file).count('\n'), 201);
}

TEST_P(LinkLost, RestoreReadsBackAll)
{
    const RunningSimulator plc(GetParam(), comesBack);
    const QString file = newFile(folder, "plc.csv", registerFile(100));
    expectLostAndBack(run(plc, {"restore", file, "--yes", "-q"}));
    EXPECT_EQ(run(plc, {"read", "D0", "D99", "--csv", "-q"}).out, "D0,1000,\nD99,1099,\n");
}

TEST_P(LinkLost, RecipesArriveBothWays)
{
    const QString file = newFile(folder, "recipe.csv", registerFile(100));
    const RunningSimulator down(GetParam(), comesBack);
    expectLostAndBack(run(down, {"recipe", "download", file, "-q"}));
    const QString back = folder.filePath("back.csv");
    EXPECT_EQ(run(down, {"recipe", "upload", back, "D0:100", "-q"}).code, 0);
    EXPECT_EQ(contentOf(back), registerFile(100));

    const RunningSimulator up(GetParam(), comesBack);
    expectLostAndBack(run(up, {"recipe", "upload", back, "D0:100", "--force", "-q"}));
    EXPECT_EQ(contentOf(back).count('\n'), 101);
}

TEST_P(LinkLost, ForGoodIsTold)
{
    const QString file = newFile(folder, "recipe.csv", registerFile(100));
    struct Row
    {
        const char* fault;
        QStringList command;
        int code;
        const char* says;
    };
    const Row rows[] = {
        {"link-drop:60000@3",
         {"1", "read", "D0:100", "--csv", "-q"},
         1,
         "the link did not come back within 1 s"},
        {"link-drop:60000@1", {"0", "read", "D0:4"}, 3, "the link was lost"},
        {"link-drop:50=1", {"1", "read", "D0:4"}, 3, "the link did not come back within 1 s"},
        {"link-drop:60000@3",
         {"0", "recipe", "download", file, "-q"},
         3,
         "D32:16: the link was lost; 2 of 7 entries transferred, up to D16:16; D32:16 possibly "
         "written"},
    };
    for (const auto& [fault, command, code, says] : rows) {
        const RunningSimulator plc(GetParam(), quickPlc + QStringList{"--faults", fault});
        const Ended ended = run(plc, QStringList("--reconnect-s") + command);
        EXPECT_EQ(ended.code, code) << testing::PrintToString(ended);
        EXPECT_TRUE(holds(ended.err, says)) << ended.err;
        EXPECT_EQ(times(ended.out, ",the link was lost\n"), code == 1 ? 100 - 64 : 0) << ended.out;
    }
}

TEST_P(LinkLost, ForGoodIsToldByTheWriterFrameByFrame)
{
    const RunningSimulator plc(GetParam(), staysAway);
    const Ended ended = run(plc, {"--reconnect-s", "0", "write", "D0:200=" + values(200), "M0=1",
                                  "--no-verify", "--json"});
    EXPECT_EQ(ended.code, 3) << testing::PrintToString(ended);
    EXPECT_TRUE(holds(ended.out, "\"2 of 7 frames written: the link was lost; D0 … D63 written, "
                                 "D64 … D95 possibly written, nothing else\""))
        << ended.out;
    EXPECT_TRUE(holds(ended.out, "\"not written\"")) << ended.out;
}

TEST_P(LinkLost, ForGoodLetsDumpBeResumed)
{
    const RunningSimulator plc(GetParam(), staysAway);
    const QString file = folder.filePath("dump.csv");
    const Ended ended = run(plc, {"--reconnect-s", "0", "dump", file, "D0:100", "-q"});
    EXPECT_EQ(ended.code, 3);
    EXPECT_TRUE(holds(ended.err, "the link was lost: " + file.toStdString() +
                                     " holds the values read before D64; continue with --resume"))
        << ended.err;
    EXPECT_EQ(contentOf(file).count('\n'), 1 + 64);
}

TEST_P(LinkLost, ForGoodLetsRestoreGoOnLater)
{
    // Seven frames are read first; then each is written and read back.
    const RunningSimulator plc(GetParam(),
                               quickPlc + QStringList{"--faults", "link-drop:60000@10"});
    const QString file = newFile(folder, "plc.csv", registerFile(100));
    const Ended ended = run(plc, {"--reconnect-s", "0", "restore", file, "--yes", "-q"});
    EXPECT_EQ(ended.code, 3);
    EXPECT_TRUE(holds(ended.err, "continue with --from D16\n")) << ended.err;
    const RunningSimulator back(GetParam(), quickPlc);
    EXPECT_EQ(run(back, {"restore", file, "--from", "D16", "--yes", "-q"}).code, 0);
    EXPECT_EQ(run(back, {"read", "D15", "D16", "D99", "--csv", "-q"}).out,
              "D15,0,\nD16,1016,\nD99,1099,\n");
}

// fxhost is started first, the PLC after it.
TEST(LinkNotThereYet, IsAwaitedWhenTheUserSaysSo)
{
    const QTemporaryDir folder;
    const QString terminal = folder.filePath("plc");
    RunningHost watch({"--link", "pty:" + terminal, "--reconnect-s", "60", "watch", "D0", "-1"});
    ASSERT_TRUE(watch.hasComplained());
    const RunningSimulator plc(Road::PseudoTerminal, {"--program", "none"});
    QFile::link(plc.link().section(':', 1), terminal);
    const Ended ended = watch.end();
    EXPECT_EQ(ended.code, 0);
    EXPECT_EQ(ended.out, "D0  0\n");
    const std::string name = "fxhost: pty:" + terminal.toStdString();
    EXPECT_EQ(ended.err, name + ": cannot open " + terminal.toStdString() +
                             ": No such file or directory; retrying\n" + name +
                             ": the link is open\n");
}

TEST(LinkNotThereYet, IsAwaitedNoLongerThanTheUserSays)
{
    const Ended ended = fxhost({"--link", "tcp:127.0.0.1:1", "--reconnect-s", "1", "read", "D0"});
    EXPECT_EQ(ended.code, 3);
    EXPECT_EQ(ended.err, "fxhost: tcp:127.0.0.1:1: cannot connect to 127.0.0.1 port 1: Connection "
                         "refused; retrying\n"
                         "fxhost: tcp:127.0.0.1:1: could not open the link within 1 s\n");
}

TEST(LinkNotThereYet, WaitingIsInterruptedBeforeAnyFileIsReplaced)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("recording");
    ASSERT_TRUE(QFile::copy(FXHOST_MANUAL, file));
    RunningHost record({"--link", "tcp:127.0.0.1:1", "--reconnect-s", "60", "record", file, "D0"});
    ASSERT_TRUE(record.hasComplained());
    record.send(SIGINT);
    EXPECT_EQ(record.end().code, 130);
    EXPECT_EQ(contentOf(file), contentOf(FXHOST_MANUAL));
}
