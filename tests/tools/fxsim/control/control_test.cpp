// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Control commands, one line in and some out.

#include "tests/tools/fxsim/printing.h"
#include "tools/fxsim/control/control.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

struct ControlTest : testing::Test
{
    QByteArray run(const QByteArray& line) { return control.run(QString::fromUtf8(line)); }

    Simulator plc{Settings(), nullptr, 0};
    int quits = 0;
    int droppedMs = -1;
    Control control{plc,
                    {[this] { ++quits; }, [this](int forMs) { droppedMs = forMs; },
                     [] { return static_cast<qint64>(0); }}};
};

}  // namespace

TEST_F(ControlTest, AnswersEachCommand)
{
    const struct
    {
        const char* line;
        const char* answer;
    } rows[] = {
        {"poke 0x1000 1 0xFF 16", "ok\n"},
        {"peek 0x1000 4", "1000: 01 FF 10 00\nok\n"},
        {"  peek   4096 ", "1000: 01\nok\n"},
        {"peek 0x0FFF 18",
         "0FFF: 00 01 FF 10 00 00 00 00 00 00 00 00 00 00 00 00\n100F: 00 00\nok\n"},
        {"poke 0x0100.3 1", "ok\n"},
        {"peek 0x0100.3", "1\nok\n"},
        {"peek 0x0100", "0100: 08\nok\n"},
        {"poke 0x0100.3 0", "ok\n"},
        {"peek 0x0100.3", "0\nok\n"},
        {"faults", "none\nok\n"},
        {"faults silence=0.1,nak@3", "ok\n"},
        {"faults", "silence=0.1,nak@3\nok\n"},
        {"faults loud",
         "error: fault 'loud': unknown fault; 'help' in place of the plan lists all faults\n"},
        {"faults", "silence=0.1,nak@3\nok\n"},
        {"faults none", "ok\n"},
        {"faults", "none\nok\n"},
        {"peek 0x10000", "error: invalid byte address '0x10000': expected 0x0000 to 0xFFFF\n"},
        {"peek 0xFFFF 2", "error: invalid number of bytes '2': expected 1\n"},
        {"power-cycle soon", "error: invalid time in ms 'soon': expected 0 to 600000\n"},
        {"drop-link -1", "error: invalid time in ms '-1': expected 0 to 600000\n"},
        {"load /nonexistent", "error: /nonexistent: No such file or directory\n"},
        {"", ""},
        {"jump", "error: unknown command 'jump'; 'help' lists all commands\n"},
        {"peek", "error: usage: peek ADDRESS[.BIT] [BYTES]\n"},
        {"quit now", "error: usage: quit\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run(row.line), row.answer) << row.line;
    EXPECT_TRUE(run("faults help").contains("  wrong-sum "));
    EXPECT_TRUE(run("stats").startsWith("  clients "));
    EXPECT_TRUE(run("stats").endsWith("\nok\n"));
}

TEST_F(ControlTest, BadPokeChangesNothing)
{
    EXPECT_EQ(run("poke 0x1000 1 2 256"), "error: invalid value '256': expected 0 to 255\n");
    EXPECT_EQ(run("poke 0xFFFF 1 2"), "error: too many values: there is room for 1\n");
    EXPECT_EQ(run("poke 0x0100.3 2"), "error: invalid value '2': expected 0 to 1\n");
    EXPECT_EQ(run("poke 0x0100.3 1 1"), "error: too many values: there is room for 1\n");
    EXPECT_EQ(run("poke D5 1"), "error: invalid byte address 'D5': expected 0x0000 to 0xFFFF\n");
    EXPECT_EQ(plc.memory().image(), QByteArray(65536, '\0'));
}

TEST_F(ControlTest, CyclesThePower)
{
    run("poke 0x1000 1");
    EXPECT_EQ(run("power-cycle 250"), "ok\n");
    EXPECT_EQ(plc.memory().byte(0x1000), 0);
    EXPECT_TRUE(plc.isOff(249999));
    EXPECT_FALSE(plc.isOff(250000));
}

TEST_F(ControlTest, DropsTheLinks)
{
    EXPECT_EQ(run("drop-link"), "ok\n");
    EXPECT_EQ(droppedMs, 1000);
    EXPECT_EQ(run("drop-link 20"), "ok\n");
    EXPECT_EQ(droppedMs, 20);
}

TEST_F(ControlTest, SavesAndLoads)
{
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath("plc.hex").toUtf8();
    run("poke 0x1000 77");
    EXPECT_EQ(run("save " + path), "ok\n");
    run("poke 0x1000 0");
    EXPECT_EQ(run("load " + path), "ok\n");
    EXPECT_EQ(run("peek 0x1000"), "1000: 4D\nok\n");
}

TEST_F(ControlTest, Quits)
{
    EXPECT_EQ(run("quit"), "ok\n");
    EXPECT_EQ(quits, 1);
}

TEST_F(ControlTest, HelpNamesEveryCommand)
{
    for (const char* name : {"peek", "poke", "faults", "stats", "power-cycle", "drop-link", "save",
                             "load", "help", "quit"})
        EXPECT_TRUE(run("help").contains(QByteArray("  ") + name + ' ')) << name;
}
