// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The front of the PLC as text, in terminals of every size.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/plc/devices.h"
#include "tools/fxsim/view/panel.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

struct PanelTest : testing::Test
{
    PanelTest()
    {
        settings.model = &findModel("fx1s");
        plc = std::make_unique<Simulator>(settings, nullptr, 0);
        state.links = "/dev/pts/1";
        state.message = "ok";
    }

    Settings settings;
    std::unique_ptr<Simulator> plc;
    PanelState state;
};

}  // namespace

TEST_F(PanelTest, ShowsInputsOutputsAndWords)
{
    plc->switchInput(1, true);
    plc->switchInput(2, false);
    plc->memory().setByte(0x0080, 0x83);
    plc->memory().setByte(0x00A1, 0x01);
    plc->memory().setValue(0x1002, 2, 65535);
    state.columns = 42;
    state.rows = 11;
    state.selected = 15;
    const Panel panel = makePanel(state, *plc);
    EXPECT_EQ(panel.lines.join('\n'), "fxsim  RUN   exchanges 0  faults none\n"
                                      "/dev/pts/1\n"
                                      "inputs          outputs         \n"
                                      "X0   ●■□○○○○●   Y0   ○○○○○○○○   \n"
                                      "X10  ○○○○○○○○   Y10  ●○○○○○○○   \n"
                                      "\n"
                                      "D0         0 D1        -1 D2         0 \n"
                                      "D3         0 D4         0 D5         0 \n"
                                      "D6         0 D7         0 D8         0 \n"
                                      "ok\n"
                                      "space switch  s stop  : command  q quit");
    EXPECT_EQ(panel.selectedLine, 4);
    EXPECT_EQ(panel.selectedColumn, 12);
    state.isUtf8 = false;
    EXPECT_EQ(makePanel(state, *plc).lines[3], "X0   *#-....*   Y0   ........   ");
    plc->releaseInputs();
    EXPECT_EQ(makePanel(state, *plc).lines[3], "X0   *......*   Y0   ........   ");
}

TEST_F(PanelTest, ShowsWhatThePlcHas)
{
    state.selected = 255;
    state.firstWord = 250;
    const QString text = makePanel(state, *plc).lines.join('\n');
    EXPECT_FALSE(text.contains("X3")) << "it has X0 to X17";
    EXPECT_TRUE(text.contains("D255"));
    EXPECT_FALSE(text.contains("D256"));
}

TEST_F(PanelTest, FitsEveryTerminal)
{
    state.links = QString(300, 'x');
    state.answer = QStringList{QString(300, 'y'), "z"};
    for (const auto& size : {std::pair(120, 40), std::pair(80, 24), std::pair(40, 15),
                             std::pair(20, 5), std::pair(3, 3), std::pair(1, 1)}) {
        state.columns = size.first;
        state.rows = size.second;
        for (const char* prompt :
             {"", ":a command that is longer than some of these terminals are wide"}) {
            state.prompt = prompt;
            const Panel panel = makePanel(state, *plc);
            EXPECT_EQ(panel.lines.size(), size.second);
            for (const QString& line : panel.lines)
                EXPECT_LE(line.size(), size.first) << line.toStdString();
            EXPECT_LT(panel.selectedLine, size.second);
            EXPECT_TRUE(panel.selectedLine < 0 || panel.selectedColumn < size.first);
        }
    }
}
