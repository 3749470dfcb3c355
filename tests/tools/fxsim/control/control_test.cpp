// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Control commands, one line in and some out.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/control/control.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

struct ControlTest : testing::Test
{
    QByteArray run(const QByteArray& line) { return control.run(QString::fromUtf8(line)); }

    static Settings settings()
    {
        Settings settings;
        settings.model = &findModel("any");
        return settings;
    }

    void expectAnswers(std::initializer_list<std::pair<const char*, const char*>> rows)
    {
        for (const auto& row : rows)
            EXPECT_EQ(run(row.first), row.second) << row.first;
    }

    Simulator plc{settings(), nullptr, 0};
    int quits = 0;
    int droppedMs = -1;
    Control control{plc,
                    {[this] { ++quits; }, [this](int forMs) { droppedMs = forMs; },
                     [] { return static_cast<qint64>(0); }}};
};

}  // namespace

TEST_F(ControlTest, AnswersEachCommand)
{
    expectAnswers({
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
        {"peek 0x10000",
         "error: invalid address '0x10000': expected a device, as in D100, or 0x0000 to 0xFFFF\n"},
        {"peek 0xFFFF 2", "error: invalid number of bytes '2': expected 1\n"},
        {"power-cycle soon", "error: invalid time in ms 'soon': expected 0 to 600000\n"},
        {"drop-link -1", "error: invalid time in ms '-1': expected 0 to 600000\n"},
        {"load /nonexistent", "error: /nonexistent: No such file or directory\n"},
        {"", ""},
        {"power-cicle",
         "error: unknown command 'power-cicle' (did you mean power-cycle?); 'help' lists all "
         "commands\n"},
        {"jump", "error: unknown command 'jump'; 'help' lists all commands\n"},
        {"peek", "error: usage: peek PLACE [COUNT]\n"},
        {"quit now", "error: usage: quit\n"},
    });
    EXPECT_TRUE(run("faults help").contains("  wrong-sum "));
    EXPECT_TRUE(run("stats").startsWith("  clients "));
    EXPECT_TRUE(run("stats").endsWith("\nok\n"));
}

TEST_F(ControlTest, KnowsTheNamesOfDevices)
{
    expectAnswers({
        {"poke D100 -2 65535 0x10", "ok\n"},
        {"peek D100 3", "D100: -2 -1 16\nok\n"},
        {"peek 0x10C8 6", "10C8: FE FF FF FF 10 00\nok\n"},
        {"peek D100.15", "1\nok\n"},
        {"poke d101.3 0", "ok\n"},
        {"peek D101", "D101: -9\nok\n"},
        {"poke 32CV200 70000", "ok\n"},
        {"peek 32CV200 2", "32CV200: 70000 0\nok\n"},
        {"poke X6 1 1 1", "ok\n"},
        {"peek X0 9", "X0: 0 0 0 0 0 0 1 1\nX10: 1\nok\n"},
        {"poke D100 70000", "error: invalid value '70000': expected -32768 to 65535\n"},
        {"poke D7999 1 2", "error: too many values: there is room for 1\n"},
        {"poke M0 2", "error: invalid value '2': expected 0 to 1\n"},
        {"peek D0.1 2", "error: a bit of a byte or word is shown alone\n"},
        {"peek M1600", "error: invalid device 'M1600': expected M0 to M1535 or M2048 to M3071 or "
                       "M8000 to M8255\n"},
        {"switch x3 on", "ok\n"},
        {"poke X0 0 0 0 0", "ok\n"},
        {"stop", "ok\n"},
        {"peek X3", "X3: 1\nok\n"},
        {"switch X3 auto", "ok\n"},
        {"peek X3", "X3: 0\nok\n"},
        {"switch Y3 on", "error: invalid input 'Y3': expected an input, as in X5\n"},
        {"switch X3 open", "error: invalid position 'open': expected on, off or auto\n"},
        {"peek M8000 2", "M8000: 0 1\nok\n"},
        {"run", "ok\n"},
        {"peek M8000 2", "M8000: 1 0\nok\n"},
    });
}

TEST_F(ControlTest, BadPokeChangesNothing)
{
    const QByteArray before = plc.memory().image();
    expectAnswers({
        {"poke 0x1000 1 2 256", "error: invalid value '256': expected 0 to 255\n"},
        {"poke 0xFFFF 1 2", "error: too many values: there is room for 1\n"},
        {"poke 0x0100.3 2", "error: invalid value '2': expected 0 to 1\n"},
        {"poke 0x0100.3 1 1", "error: too many values: there is room for 1\n"},
        {"poke X8 1", "error: invalid device 'X8': expected X0 to X377, in octal\n"},
    });
    EXPECT_TRUE(plc.memory().image() == before);
}

// It showed zeros, and took values that no host could ever read.
TEST_F(ControlTest, MemoryThatThePlcDoesNotHaveIsAnError)
{
    plc.memory().setPresent({{0x1000, 0x10FF}});
    plc.memory().setMissing({{0x1010, 0x1011}});
    for (const char* line : {"peek 0x9000", "poke 0x0FFF 1", "peek D7 2", "poke D7 1 2",
                             "poke 0x1100 1", "peek M0", "poke M0 1", "peek 0x1011.3"})
        EXPECT_EQ(run(line), "error: this PLC does not have all of that memory\n") << line;
    EXPECT_EQ(run("poke D9 1"), "ok\n");
}

TEST_F(ControlTest, CyclesThePowerDropsTheLinksAndQuits)
{
    run("poke 0x1000 1");
    expectAnswers({{"power-cycle 250", "ok\n"}, {"drop-link", "ok\n"}, {"quit", "ok\n"}});
    EXPECT_EQ(plc.memory().byte(0x1000), 0);
    EXPECT_TRUE(plc.isOff(249999));
    EXPECT_FALSE(plc.isOff(250000));
    EXPECT_EQ(droppedMs, 1000);
    EXPECT_EQ(quits, 1);
    run("drop-link 20");
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

TEST_F(ControlTest, HelpNamesEveryCommand)
{
    for (const char* name : {"peek", "poke", "switch", "run", "stop", "faults", "stats",
                             "power-cycle", "drop-link", "save", "load", "help", "quit"})
        EXPECT_TRUE(run("help").contains(QByteArray("  ") + name + ' ')) << name;
}
