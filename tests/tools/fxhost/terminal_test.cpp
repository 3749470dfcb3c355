// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What people see: the table of watch, the bars of long transfers and the demo's redrawing, on
// terminals of several sizes, and what is left there when the program ends.

#include "tests/tools/fxhost/host_terminal.h"
#include "tests/tools/support/programs.h"

#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <optional>

using namespace tool_tests;

namespace {

int linesWith(const Screen& screen, const QString& text)
{
    const QStringList lines = screen.lines();
    return static_cast<int>(std::count_if(
        lines.begin(), lines.end(), [&text](const QString& line) { return line.contains(text); }));
}

void expectPlainScreen(const Terminal& terminal)
{
    EXPECT_TRUE(terminal.screen().cursorIsShown());
    EXPECT_TRUE(terminal.screen().isPlain());
    EXPECT_EQ(terminal.screen().cursorColumn(), 0);
    EXPECT_EQ(terminal.screen().unknown(), QStringList());
}

// What every program must leave behind, whether it ends by itself or with Ctrl-C.
void expectCleanEnd(Terminal& terminal, std::optional<char> key = {})
{
    if (key)
        terminal.press(*key);
    EXPECT_EQ(terminal.waitForEnd(), key ? 130 : 0);
    expectPlainScreen(terminal);
}

}  // namespace

class TerminalViews : public testing::Test
{
protected:
    RunningSimulator plc{Road::PseudoTerminal, quickPlc};
    QTemporaryDir folder;

    QStringList linked(const QStringList& arguments) const
    {
        return QStringList{"--link", plc.link()} + arguments;
    }
};

TEST_F(TerminalViews, WatchDrawsOverItsTable)
{
    HostTerminal terminal(linked({"watch", "D0:2", "X0:8", "-l", "20"}));
    ASSERT_TRUE(terminal.waitForText("cycle 3:"));
    plc.command("poke 0x1002 0x39 0x30");
    ASSERT_TRUE(terminal.waitForText("D1    12345"));
    const QStringList lines = terminal.screen().lines();
    EXPECT_TRUE(lines[0].startsWith("  " + plc.link() + "  cycle "));
    EXPECT_TRUE(lines[1].startsWith("  D0        0")) << "with an age";
    EXPECT_TRUE(lines[3].startsWith("  X0:8  ○○○○○○○○")) << lines[3].toStdString();
    EXPECT_EQ(lines[4], "  q quit  p pause  s sort  w write");
    EXPECT_EQ(lines.size(), 5);
    EXPECT_TRUE(terminal.written().contains("\x1b[1;33m12345\x1b[0m")) << "a change is marked";
    expectCleanEnd(terminal, ctrlC);
}

TEST_F(TerminalViews, WatchFollowsTheSizeOfItsTerminal)
{
    HostTerminal terminal(linked({"watch", "D0:30", "-l", "20"}), 40, 15);
    ASSERT_TRUE(terminal.waitForText("1-12 of 30"));
    ASSERT_TRUE(terminal.waitFor([](const Screen& screen) { return screen.lines().size() == 14; }))
        << "and the cursor below them";
    terminal.resize(40, 12);
    ASSERT_TRUE(terminal.waitForText("1-9 of 30"));
    terminal.resize(120, 40);
    ASSERT_TRUE(terminal.waitFor([](const Screen& screen) {
        return screen.text().contains("D29 ") && linesWith(screen, "q quit") == 1;
    }));
    EXPECT_EQ(linesWith(terminal.screen(), "cycle "), 1);
    EXPECT_EQ(terminal.screen().lines().size(), 32);
}

// After Ctrl-Z and fg the table was drawn over the last lines of the shell.
TEST_F(TerminalViews, WatchBeginsANewTableWhenItGoesOn)
{
    HostTerminal terminal(linked({"watch", "D0:2", "-l", "20"}));
    ASSERT_TRUE(terminal.waitForText("cycle 3:"));
    terminal.send(SIGSTOP);
    terminal.send(SIGCONT);
    EXPECT_TRUE(
        terminal.waitFor([](const Screen& screen) { return linesWith(screen, "q quit") == 2; }));
    EXPECT_EQ(terminal.screen().lines().size(), 8);
    expectCleanEnd(terminal, ctrlC);
}

TEST_F(TerminalViews, WatchShowsWhatIsRefusedWithItsReason)
{
    const RunningSimulator holed(Road::PseudoTerminal, quickPlc + QStringList{"--holes", "0x1002"});
    HostTerminal terminal({"--link", holed.link(), "watch", "D0:3", "-n", "3", "-l", "20"});
    EXPECT_EQ(terminal.waitForEnd(), 1);
    const QStringList lines = terminal.screen().lines();
    EXPECT_TRUE(lines[0].endsWith("; 1 of 3 not read")) << lines[0].toStdString();
    EXPECT_EQ(lines[2], "  D1      -  refused   !never");
    EXPECT_TRUE(lines[3].startsWith("  D2      0"));
    EXPECT_EQ(lines.size(), 4) << "there are no keys any more";
}

TEST_F(TerminalViews, OneTableStaysWhileALinkIsLost)
{
    HostTerminal terminal(linked({"watch", "D0", "-l", "20"}));
    ASSERT_TRUE(terminal.waitForText("cycle 3:"));
    plc.command("drop-link 100");
    ASSERT_TRUE(terminal.waitForText("the link was lost"));
    ASSERT_TRUE(terminal.waitForText("D0      0  link lost")) << "old, and dimmed";
    plc.command("poke 0x1000 77");
    ASSERT_TRUE(terminal.waitForText("D0     77"));
    ASSERT_TRUE(terminal.waitForText("  cycle "));
    EXPECT_EQ(linesWith(terminal.screen(), "D0 "), 1);
    EXPECT_EQ(terminal.screen().lines().size(), 3);
    expectCleanEnd(terminal, ctrlC);
}

TEST_F(TerminalViews, WatchNamesWhatItShowsAsItWasAskedFor)
{
    HostTerminal terminal(linked({"watch", "D8000", "M8000:24", "D0.3", "K2X0", "-n", "1"}));
    EXPECT_EQ(terminal.waitForEnd(), 0);
    QStringList names;
    for (const QString& line : terminal.screen().lines().mid(1))
        names += line.simplified().section(' ', 0, 0);
    EXPECT_EQ(names.join(' '), "D8000 M8000:16 M8016:8 D0.3 K2X0");
}

// Each key does its work while the program waits for the next cycle, for a day.
TEST_F(TerminalViews, KeysDoNotWaitForTheNextCycle)
{
    HostTerminal terminal(linked({"watch", "D1", "D0", "-l", "1d"}));
    ASSERT_TRUE(terminal.waitForText("cycle 1:"));
    terminal.press('s');
    ASSERT_TRUE(terminal.waitForText("sorted by address"));
    ASSERT_TRUE(terminal.waitFor(
        [](const Screen& screen) { return screen.lines().value(1).startsWith("  D0"); }));
    terminal.press('p');
    ASSERT_TRUE(terminal.waitForText("paused; cycle 1:"));
    terminal.press('q');
    EXPECT_EQ(terminal.waitForEnd(), 0);
    expectPlainScreen(terminal);
}

TEST_F(TerminalViews, WatchWritesAfterAYes)
{
    HostTerminal terminal(linked({"watch", "D0", "-l", "1d"}));
    ASSERT_TRUE(terminal.waitForText("cycle 1:"));
    for (const char key : QByteArray("wD0=5\r"))
        terminal.press(key);
    ASSERT_TRUE(terminal.waitForText("write D0=5 (now 0)? y/n"));
    terminal.press('y');
    ASSERT_TRUE(terminal.waitForText("D0=5 written and read back"));
    EXPECT_EQ(plc.command("peek 0x1000"), "1000: 05\n");
    for (const char key : QByteArray("wX0=1\r"))
        terminal.press(key);
    ASSERT_TRUE(terminal.waitForText("read-only"));
    expectCleanEnd(terminal, ctrlC);
}

TEST_F(TerminalViews, WatchWritesAlsoWhereNoCycleWaits)
{
    HostTerminal terminal(linked({"watch", "D0", "-l", "0"}));
    ASSERT_TRUE(terminal.waitForText("cycle "));
    for (const char key : QByteArray("wD0=5\ry"))
        terminal.press(key);
    ASSERT_TRUE(terminal.waitForText("D0=5 written and read back"));
    expectCleanEnd(terminal, ctrlC);
}

TEST_F(TerminalViews, WatchShowsWhatTheLineCannotKeep)
{
    HostTerminal terminal(linked({"watch", "D0", "--period", "D0=100", "--turnaround", "1000"}));
    ASSERT_TRUE(terminal.waitForText("line load 1020 %: D0 every "));
    expectCleanEnd(terminal, ctrlC);
}

TEST_F(TerminalViews, WatchMarksAlarms)
{
    const QString alarms =
        newFile(folder, "alarms.csv", "name,address,unit,alarm_high\nwater,D0,bar,90\n");
    plc.command("poke D0 91");
    HostTerminal terminal(linked({"--tags", alarms, "watch", "water", "-l", "20"}));
    ASSERT_TRUE(terminal.waitForText("water  91 bar high"));
    EXPECT_TRUE(terminal.written().contains("\x1b[1;31m91 bar high\x1b[0m"));
    expectCleanEnd(terminal, ctrlC);
}

TEST_F(TerminalViews, TheTerminalGetsItsSettingsBack)
{
    HostTerminal terminal(linked({"watch", "D0", "-l", "20"}));
    ASSERT_TRUE(terminal.waitForText("cycle 3:"));
    terminal.press('w');
    ASSERT_TRUE(terminal.waitForText("write, such as"));
    EXPECT_FALSE(terminal.echoes());
    expectCleanEnd(terminal, ctrlC);
    EXPECT_TRUE(terminal.echoes());
}

TEST_F(TerminalViews, AShellGetsTheTerminalWhileTheProgramIsStopped)
{
    HostTerminal terminal(linked({"watch", "D0", "-l", "20"}));
    ASSERT_TRUE(terminal.waitForText("cycle 3:"));
    EXPECT_FALSE(terminal.echoes());
    terminal.send(SIGTSTP);
    while (!terminal.echoes())
        QThread::msleep(1);
    terminal.send(SIGCONT);
    ASSERT_TRUE(terminal.waitFor([&terminal](const Screen&) { return !terminal.echoes(); }));
    terminal.press('q');
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_TRUE(terminal.echoes());
}

TEST_F(TerminalViews, AsciiStandsForTheRestWhereTheLocaleIsNotUtf8)
{
    HostTerminal terminal(linked({"watch", "X0:8", "-l", "20", "-n", "2"}), 80, 24, {"LC_ALL=C"});
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_TRUE(terminal.screen().lines()[1].startsWith("  X0:8  ........"));
    for (const char byte : terminal.written())
        EXPECT_GE(byte, 0);
}

TEST_F(TerminalViews, LogHasALineForEachChangeHereToo)
{
    HostTerminal terminal(linked({"watch", "D0", "--log", "-l", "20"}));
    ASSERT_TRUE(terminal.waitForText("D0  0"));
    plc.command("poke 0x1000 5");
    ASSERT_TRUE(terminal.waitForText("D0  5"));
    EXPECT_EQ(terminal.screen().lines(), QStringList({"D0  0", "D0  5"}));
    EXPECT_FALSE(terminal.written().contains('\x1b'));
}

TEST_F(TerminalViews, ADeadbandPassesOverSmallChanges)
{
    HostTerminal terminal(linked({"watch", "D0", "D1", "--log", "--deadband", "10", "-l", "20"}));
    ASSERT_TRUE(terminal.waitForText("D1  0"));
    plc.command("poke 0x1000 10");
    plc.command("poke 0x1002 11");
    ASSERT_TRUE(terminal.waitForText("D1  11"));
    plc.command("poke 0x1000 11");
    ASSERT_TRUE(terminal.waitForText("D0  11"));
    EXPECT_EQ(terminal.screen().lines(), QStringList({"D0  0", "D1  0", "D1  11", "D0  11"}));
}

TEST_F(TerminalViews, NoColorLeavesOnlyTheDrawing)
{
    HostTerminal terminal(linked({"watch", "D0", "-l", "20", "-n", "3"}), 80, 24, {"NO_COLOR=1"});
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_EQ(terminal.screen().lines().size(), 2);
    EXPECT_EQ(terminal.screen().lines()[1], "  D0      0            now");
    EXPECT_FALSE(terminal.written().contains("\x1b[2m"));
    EXPECT_FALSE(terminal.written().contains("\x1b[0m"));
}

TEST_F(TerminalViews, ADumbTerminalGetsLines)
{
    HostTerminal terminal(linked({"watch", "D0", "-n", "2", "-l", "20"}), 80, 24, {"TERM=dumb"});
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_FALSE(terminal.written().contains('\x1b'));
    EXPECT_EQ(terminal.screen().lines(), QStringList({"D0  0"}));
}

TEST_F(TerminalViews, ABarGrowsInItsLine)
{
    const QString file = folder.filePath("plc.csv");
    HostTerminal terminal(linked({"dump", file, "D0:320"}));
    expectCleanEnd(terminal);
    EXPECT_EQ(terminal.screen().lines()[0], "  dump ████████████████████████████████ 10/10");
    EXPECT_TRUE(terminal.screen().lines()[1].endsWith(": 320 registers read"));
    EXPECT_EQ(terminal.screen().lines().size(), 2);
    EXPECT_TRUE(terminal.written().contains(
        QString("\r  dump ████████████████░░░░░░░░░░░░░░░░ 5/10").toUtf8()));
}

TEST_F(TerminalViews, ABarFitsANarrowTerminal)
{
    const QString file = newFile(folder, "plc.csv", "D0,1\nD100,2\nD200,3\n");
    HostTerminal restore(linked({"restore", file, "--yes"}), 30, 10);
    EXPECT_EQ(restore.waitForEnd(), 0);
    EXPECT_TRUE(restore.screen().lines().contains("  restore ███████████████ 3/3"));
    HostTerminal recipe(linked({"recipe", "download", file}), 20, 10);
    EXPECT_EQ(recipe.waitForEnd(), 0);
    EXPECT_EQ(recipe.screen().lines()[0], "  download 3/3") << "there is no room for a bar";
}

TEST_F(TerminalViews, RecipesHaveTheirBars)
{
    const QString file = folder.filePath("recipe.csv");
    HostTerminal upload(linked({"recipe", "upload", file, "D0:64"}));
    EXPECT_EQ(upload.waitForEnd(), 0);
    EXPECT_EQ(upload.screen().lines(), QStringList({"  upload ████████████████████████████████ 2/2",
                                                    "  64 registers read from the PLC"}));
}

TEST_F(TerminalViews, AnInterruptedBarLeavesItsLine)
{
    const RunningSimulator slow(Road::PseudoTerminal, {"--baud", "9600", "--program", "none"});
    HostTerminal terminal({"--link", slow.link(), "dump", folder.filePath("plc.csv"), "D0:8000"});
    ASSERT_TRUE(terminal.waitForText(" 2/250"));
    expectCleanEnd(terminal, ctrlC);
    EXPECT_EQ(linesWith(terminal.screen(), "fxhost: interrupted: "), 1);
    EXPECT_TRUE(terminal.screen().lines()[1].startsWith("fxhost: interrupted: "));
}

TEST_F(TerminalViews, ALongMeasurementShowsHowFarItIs)
{
    const RunningSimulator slow(Road::PseudoTerminal, {"--baud", "9600", "--program", "none"});
    HostTerminal terminal({"--link", slow.link(), "stats", "D0:320"});
    ASSERT_TRUE(terminal.waitForText("  stats ░"));
    expectCleanEnd(terminal, ctrlC);
    HostTerminal quick(linked({"stats", "D0", "-n", "2"}));
    expectCleanEnd(quick);
    EXPECT_FALSE(quick.written().contains("stats ░")) << "within a second";
}

TEST_F(TerminalViews, TheDemoRedrawsItsLiveValues)
{
    HostTerminal terminal({"--link", "sim:", "demo"}, 100, 60);
    ASSERT_TRUE(terminal.waitForText("Live values"));
    ASSERT_TRUE(terminal.waitForText("triangle"));
    const QString first = terminal.screen().text();
    ASSERT_TRUE(terminal.waitFor([&first](const Screen& screen) {
        return screen.text() != first && linesWith(screen, "the driver reported") == 1;
    }));
    EXPECT_EQ(linesWith(terminal.screen(), "triangle"), 1) << "one table, drawn over";
    expectCleanEnd(terminal, ctrlC);
}

TEST_F(TerminalViews, WhatIsNoTerminalGetsNoEscapes)
{
    const QString file = folder.filePath("plc.csv");
    for (const QStringList& arguments :
         {QStringList{"watch", "D0", "-n", "2", "-l", "1"}, QStringList{"dump", file, "D0:64"},
          QStringList{"restore", file}, QStringList{"stats", "D0", "-n", "2"},
          QStringList{"doctor"}}) {
        const Ended ended = fxhost(linked(arguments));
        EXPECT_EQ(ended.code, 0) << arguments[0].toStdString();
        EXPECT_FALSE(holds(ended.out + ended.err, "\x1b")) << arguments[0].toStdString();
        EXPECT_FALSE(holds(ended.out + ended.err, "\r")) << arguments[0].toStdString();
    }
}

TEST(TerminalLines, BeginBelowWhatCtrlCShows)
{
    HostTerminal terminal({"--link", "sim:", "stats", "D0:64", "-n", "1000000000"}, 80, 40);
    ASSERT_TRUE(terminal.waitForText("simulated PLC"));
    expectCleanEnd(terminal, ctrlC);
    EXPECT_TRUE(terminal.screen().lines().contains("^C")) << terminal.screen().text().toStdString();
}

TEST(TerminalLines, OfARemarkReplaceABar)
{
    const QTemporaryDir folder;
    HostTerminal terminal({"--link", "sim:", "dump", folder.filePath("plc.csv"), "D0:64"});
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_EQ(terminal.screen().lines()[0],
              "fxhost: this is a simulated PLC; name a real one with --link");
    EXPECT_EQ(linesWith(terminal.screen(), "  dump "), 1);
}
