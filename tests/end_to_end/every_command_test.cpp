// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Every command of fxhost against a PLC simulated by fxsim, two processes on a pseudo-terminal and
// on TCP, as transcripts. The PLC itself is asked what arrived, by its own commands.

#include "tests/end_to_end/transcript.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>

using namespace fx_end_to_end;

namespace {

struct Command
{
    const char* name;
    const char* transcript;
    const char* program = "none";  // that runs in the PLC
};

void PrintTo(const Command& command, std::ostream* out)
{
    *out << command.name;
}

// D0 is at byte 0x1000, M0 at 0x0100, X0 at 0x0080, 32CV200 at 0x0C00.
const Command commands[] = {
    {"types", R"(fxhost> types --csv | grep -o (type|32CV).*
type,lowest,highest,base,width,writable
32CV,200,255,10,32 bits,true
)"},
    {"check", R"(fxhost> check X17 2#D5:3 X18 --csv -q
X17,true,"X17 of station 1, bit",0x0081,
2#D5:3,true,"D5:3 of station 2, 16 bits",0x100A,0x100A
X18,false,"'X18' has an invalid number; X is octal: after X17 comes X20"
[1]
)"},
    {"series", R"(fxhost> series X6 -n 3 --csv -q
1,X6
2,X7
3,X10
fxhost> series D7998 -n 3 --csv -q | grep -o .,D.*
1,D7998
2,D7999
3,D7999
[1]
)"},
    {"tags", R"(fxhost> dump plc.csv D0 -q
fxhost> tags check plc.csv --csv -q
1,value,warning,"unknown column 'value' is ignored; known: name, address, type, scale, offset, unit, deadband, period_ms, access, min, max, alarm_low, alarm_high, link, description"
1,,error,"no column 'name'; the first row names the columns: name,address and others"
[1]
)"},
    {"plan", R"(fxhost> plan D100:10 D105:20 M8000 --csv -q
given,SM8000 … SM8007,8,1,17,38,7,SM8001 … SM8007
given,D100 … D124,25,50,115,140,0,
shortest,SM8000 … SM8007,8,1,17,38,7,SM8001 … SM8007
shortest,D100 … D124,25,50,115,140,0,
)"},
    {"read", R"(fxsim> poke 0x10C8 0x39 0x30
fxsim> poke 0x0080.2 1
fxsim> poke 0x0C00 1 0 1 0
fxhost> read D100 X2:2 32CV200 --csv -q
D100,12345,
X2,1,
X3,0,
32CV200,65537,
fxsim> poke 0x1000 0xC3 0xF5 0x48 0x40
fxhost> read D0:2 --as float --csv -q
D0,3.14,
)"},
    {"write", R"(fxhost> write D100:2=258,-1 M9=on 32CV201=70000 --csv -q
D100:2,"0,0","258,-1",verified
M9,0,on,verified
32CV201,0,70000,verified
fxsim> peek 0x10C8 4
10C8: 02 01 FF FF
fxsim> peek 0x0101
0101: 02
fxsim> peek 0x0C04 4
0C04: 70 11 01 00
)"},
    {"watch", R"(fxsim> poke 0x1000 7
fxhost> watch D0:2 -n 3 -l 0 --json | grep -o .*"value":.
{"address":"D0","type":"D","value":7
{"address":"D1","type":"D","value":0
fxsim> poke 0x1000 8
fxhost> watch D0:2 -1 --csv -q
D0,8,
D1,0,
fxhost> watch D0 D100 -1 --period D100=1s -l 20s --turnaround 2000 --csv -q
D0,8,
D100,0,
fxhost: line load 212 %: D100 every 2071 ms instead of 1000 ms; D0 every 80791 ms instead of 20000 ms
)"},
    {"serve",
     R"(fxsim> poke D100 7
fxhost> serve --tags )" FX_EXAMPLES
     R"(/tags/boiler.csv <<< {"write":{"id":"1","tag":"boiler.setpoint","value":71.5}} | grep -o .*"written".*
{"event":"written","id":"1","tag":"boiler.setpoint","outcome":"done","old":0.7,"new":71.5,"reason":""}
fxsim> peek D100
D100: 715
)"},
    {"recipe", R"(fxsim> poke 0x1000 1 0 2 0
fxsim> poke 0x0C00 3 0 0 1
fxhost> recipe upload recipe.csv D0:2 32CV200 -q
cat> recipe.csv
address,value
D0,1
D1,2
32CV200,16777219
fxsim> poke 0x1000 9 9 9 9
fxsim> poke 0x0C00 9 9 9 9
fxhost> recipe download recipe.csv -q
fxsim> peek 0x1000 4
1000: 01 00 02 00
fxsim> peek 0x0C00 4
0C00: 03 00 00 01
)"},
    {"dump", R"(fxsim> poke 0x1000 5 0 6 0
fxsim> poke 0x0100 2
fxhost> dump dump.csv D0:2 -q
fxhost> dump dump.csv D0:3 M0:2 --resume -q
cat> dump.csv
address,value
D0,5
D1,6
D2,0
M0,0
M1,1
)"},
    {"backup", R"(fxsim> poke 0x1000 5 0
fxhost> backup backup.csv -q
fxhost> compare backup.csv -q
)"},
    {"compare", R"(fxsim> poke 0x1000 5 0 6 0
fxhost> dump dump.csv D0:2 -q
fxsim> poke 0x1000 9 0
fxhost> compare dump.csv --csv -q
D0,9,5,
[1]
)"},
    {"restore", R"(fxsim> poke 0x1000 5 0 6 0
fxsim> poke 0x0100 2
fxhost> dump dump.csv D0:2 M0:2 -q
fxsim> poke 0x1000 9 9 9 9
fxsim> poke 0x0100 1
fxhost> restore dump.csv --yes -q
fxsim> peek 0x1000 4
1000: 05 00 06 00
fxsim> peek 0x0100
0100: 02
)"},
    {"monitor", R"(fxsim> poke 0x10C8 0x12 0x34
fxhost> monitor D100 -n 1 --csv -q | grep -o read.*accepted
read D100,␂010C802␃71,␂1234␃CD,good,accepted
)"},
    {"stats", R"(fxhost> stats D0:64 -n 5 --json | grep -o "(bytes|refused|silence).*
"silence": 0,
"refused": 0,
"bytesSent": 110,
"bytesReceived": 1320,
"bytesThrownAway": 0,
fxhost> stats D0 D100 -n 5 --period D100=2ms --csv | grep -o periods.*(addresses|wanted).*
periods.0.addresses,D0
periods.0.wantedMs,0
periods.1.addresses,D100
periods.1.wantedMs,2
)"},
    {"record", R"(fxsim> poke 0x1000 0x12 0x34
fxhost> record session.jsonl D0 -n 1
  session.jsonl: 1 exchange saved, 1 good
fxhost> replay session.jsonl
no difference in 1 exchange
)"},
    {"replay", R"(fxhost> record session.jsonl D0:64 -n 10
  session.jsonl: 20 exchanges saved, 20 good
fxhost> replay session.jsonl
no difference in 20 exchanges
fxhost> replay no-such-file
fxhost: no-such-file: No such file or directory
[7]
)"},
    {"ports", R"(fxhost> ports --csv | grep -o port.*
port,adapter,used by
)"},
    {"doctor", R"(fxhost> doctor | grep -o The PLC answers.*
The PLC answers (settings as given). All is well.
)"},
    {"log", R"(fxsim> poke 0x1000 0x67 0x12
fxhost> log D0:2 -n 1 -q | grep -o (D0|4711).*
D0,D1,error
4711,0,
)"},
    {"help", R"(fxhost> help types | grep -o Usage.*
Usage: fxhost types [OPTION]...
)"},
    {"demo", R"(fxhost> demo | grep -o All.*
All 10 checks passed: the values read back are the values written.
)",
     "sample"},
};

QStringList commandsInHelp()
{
    const QString help = QString::fromStdString(tool_tests::fxhost({"--help"}).out);
    const QString list = help.section("\nCommands:", 1).section("\nExamples:", 0, 0);
    QRegularExpressionMatchIterator rows =
        QRegularExpression("^  (\\w+) ", QRegularExpression::MultilineOption).globalMatch(list);
    QStringList names;
    while (rows.hasNext())
        names += rows.next().captured(1);
    return names;
}

}  // namespace

class EveryCommand : public testing::TestWithParam<std::tuple<Road, Command>>
{};

TEST_P(EveryCommand, PrintsAndDoesWhatItShould)
{
    const auto& [road, command] = GetParam();
    TerminalSession session(road, {"--baud", "0", "--program", command.program});
    EXPECT_EQ(session.play(command.transcript), command.transcript);
}

INSTANTIATE_TEST_SUITE_P(Roads, EveryCommand,
                         testing::Combine(testing::Values(Road::PseudoTerminal, Road::Tcp),
                                          testing::ValuesIn(commands)),
                         [](const auto& row) {
                             return std::string(std::get<1>(row.param).name) + "Over" +
                                    testing::PrintToString(std::get<0>(row.param));
                         });

TEST(EveryCommandOfTheHelp, HasATranscript)
{
    const QStringList names = commandsInHelp();
    EXPECT_GT(names.size(), 16);
    for (const QString& name : names) {
        const bool isPlayed =
            std::any_of(std::begin(commands), std::end(commands),
                        [&name](const Command& command) { return name == command.name; });
        EXPECT_TRUE(isPlayed) << name.toStdString();
    }
}
