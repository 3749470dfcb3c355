// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim as the job of a shell on a terminal, in the foreground and in the background, with commands
// and with the live view.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/support.h"
#include "tests/tools/support/terminal.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <csignal>

namespace {

constexpr char ctrlZ = 0x1A;
constexpr char ctrlS = 0x13;  // holds up the output of a terminal
const char* const arrowRight = "\x1b[C";

struct Shell : tool_tests::Terminal
{
    Shell(int columns, int rows, const QStringList& options)
        : Terminal(QStringList{JOB_SHELL_FILE, FXSIM_FILE, "--tcp", "0", "--baud", "0", "--program",
                               "none"} +
                       options,
                   columns, rows, {"LC_ALL=C.UTF-8"})
    {}

    void type(const QByteArray& keys)
    {
        for (const char key : keys)
            press(key);
    }

    QString find(const char* pattern)  // in all that was ever shown
    {
        const QRegularExpression form(pattern);
        waitFor([&](const auto&) { return form.match(QString::fromUtf8(written())).hasMatch(); });
        return form.match(QString::fromUtf8(written())).captured(1);
    }

    QString linkName() { return find("ready on (tcp:[0-9.]+:[0-9]+)\\s"); }
    pid_t processId() { return static_cast<pid_t>(find("pid ([0-9]+)\\.").toInt()); }

    // The cursor is shown, and the screen the one that was there before.
    bool isLeft()
    {
        return screen().cursorIsShown() &&
               written().count("\x1b[?1049h") == written().count("\x1b[?1049l");
    }
};

}  // namespace

// What was typed for another program made it read no more commands ever.
TEST(FxsimTerminal, CommandsAreReadAgainInTheForeground)
{
    Shell shell(80, 24, {});
    TcpEnd host(shell.linkName());
    shell.type("poke D0 7\n");
    EXPECT_TRUE(shell.waitForText("\nok"));
    shell.press(ctrlZ);
    EXPECT_TRUE(shell.waitForText("stopped."));
    shell.send(SIGUSR2);
    shell.type("stats\n");
    EXPECT_EQ(host.ask(frame("0100002", "56"), 8), frame("0700", "CA"))
        << "it has seen by now that there is input";
    shell.send(SIGUSR1);
    shell.type("peek D0\n");
    EXPECT_TRUE(shell.waitForText("D0: 7"));
}

struct ViewCase
{
    const char* name;
    int columns;
    int rows;
    int signal;  // 0: the key q
};

class FxsimView : public testing::TestWithParam<ViewCase>
{};

TEST_P(FxsimView, ShowsThePlcTakesKeysAndLeavesTheTerminalAsItWas)
{
    Shell shell(GetParam().columns, GetParam().rows, {"--view"});
    TcpEnd host(shell.linkName());
    EXPECT_TRUE(shell.waitForText("X0   ○○○○○○○○   Y0   ○○○○○○○○"));
    EXPECT_TRUE(shell.waitForText("q quit"));
    shell.press(ctrlS);
    shell.type(arrowRight);
    shell.type(" 3");
    EXPECT_TRUE(shell.waitForText("X0   ○■○■○○○○"));
    EXPECT_EQ(host.ask(frame("0008001", "5C"), 6), frame("0A", "74"));
    shell.type(":poke Y1 1\n");
    EXPECT_TRUE(shell.waitForText("Y0   ○●○○○○○○"));
    shell.type("s");
    EXPECT_TRUE(shell.waitForText("STOP"));
    EXPECT_TRUE(shell.waitForText("Y0   ○○○○○○○○"));
    shell.press(ctrlZ);
    EXPECT_FALSE(shell.find("(stopped\\.)").isEmpty());
    EXPECT_TRUE(shell.isLeft());
    shell.send(SIGUSR1);
    EXPECT_FALSE(shell.find("stopped(?s:.*)(X0   ○■○)").isEmpty());
    if (GetParam().signal == 0)
        shell.type("q");
    else
        ::kill(shell.processId(), GetParam().signal);
    EXPECT_FALSE(shell.find("(restored\\.)").isEmpty());
    EXPECT_TRUE(shell.isLeft());
}

INSTANTIATE_TEST_SUITE_P(Sizes, FxsimView,
                         testing::Values(ViewCase{"At80x24", 80, 24, 0},
                                         ViewCase{"At40x15", 40, 15, SIGTERM},
                                         ViewCase{"At120x40", 120, 40, SIGHUP}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FxsimTerminal, ViewNeedsOneForItself)
{
    EXPECT_EQ(failureOf({"--view"}), "2 fxsim: --view needs a terminal\n");
    Shell shell(80, 24, {"--view", "--trace"});
    EXPECT_TRUE(shell.waitForText("--view and --trace both need the terminal"));
}
