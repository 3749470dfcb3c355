// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Every fault that fxsim knows, met by fxhost in another process, on a pseudo-terminal and on TCP.
// One that passes is repeated away and every value is right; one that stays ends with right values
// or with a message and an exit code that name it. No value is ever wrong.

#include "tests/tools/support/programs.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>

using namespace tool_tests;

namespace {

struct Fault
{
    const char* name;
    const char* passing;    // fault plan: the second exchange meets it
    int writeExitCode;      // of a write meanwhile
    const char* staying;    // fault plan: every exchange meets it
    const char* timeoutMs;  // meanwhile
    int readExitCode;
    const char* says;
};

void PrintTo(const Fault& fault, std::ostream* out)
{
    *out << fault.name;
}

// A PLC that keeps silent is given up soon, one that talks never because the machine is slow.
const char* const soon = "20";
const char* const never = "20000";
const char* const seed = "7";  // several of the mixed faults meet the first exchange
constexpr int either = -1;     // what came in one piece with its answer spoils it

// clang-format off
const Fault faults[] = {
    // name          second exchange    write  every exchange        time-out  read    says
    {"power-cycle",  "power-cycle:9@3",    1,  "power-cycle:9000=1", soon,  4,      "no reply"},
    {"link-drop",    "link-drop:20@2",     0,  "link-drop:9000=1",   soon,  3,      "the link was lost"},
    {"silence",      "silence@2",          0,  "silence=1",          soon,  4,      "no reply"},
    {"nak",          "nak@2",              0,  "nak=1",              never, 5,      "refused by the PLC (NAK)"},
    {"delay",        "delay:200@2",        0,  "delay:9000=1",       soon,  4,      "no reply"},
    {"wrong-sum",    "wrong-sum@2",        0,  "wrong-sum=1",        never, 6,      "wrong checksum"},
    {"flipped-bits", "flipped-bits@2",     0,  "flipped-bits=1",     never, 6,      ""},
    {"bit7",         "bit7@2",             0,  "bit7=1",             never, 6,      "bit 7 set"},
    {"truncated",    "truncated:9@2",      0,  "truncated:9=1",      soon,  6,      "incomplete reply"},
    {"lost-stx",     "lost-stx@2",         0,  "lost-stx=1",         soon,  6,      "incomplete reply"},
    {"lost-etx",     "lost-etx@2",         0,  "lost-etx=1",         soon,  6,      "incomplete reply"},
    {"junk-before",  "junk-before@2",      0,  "junk-before=1",      never, 6,      ""},
    {"junk-after",   "junk-after@2",       0,  "junk-after=1",       never, either, ""},
    {"duplicate",    "duplicate@2",        0,  "duplicate=1",        never, either, ""},
    {"slices",       "slices:1@2",         0,  "slices:1=1",         never, 0,      ""},
    {"echo",         "echo@2",             0,  "echo=1",             never, 6,      "echo of the request"},
    {"mixed",        "mixed:30=0.5",       0,  "mixed:30=1",         soon,  either, ""},
};
// clang-format on

// Registers hold their own byte address, so that none can pass for another. D0 and D200 are read
// in two frames, whose answers are equally long.
const QByteArray memory = ":14100000001002100410061008100A100C100E1010101210E2\n"
                          ":14119000901192119411961198119A119C119E11A011A211A7\n"
                          ":00000001FF\n";
const char* const values = "D0,4096,\nD1,4098,\nD2,4100,\nD3,4102,\nD4,4104,\nD5,4106,\nD6,4108,\n"
                           "D7,4110,\nD8,4112,\nD9,4114,\nD200,4496,\nD201,4498,\nD202,4500,\n"
                           "D203,4502,\nD204,4504,\nD205,4506,\nD206,4508,\nD207,4510,\n"
                           "D208,4512,\nD209,4514,\n";

bool isRightOrFailed(const QString& line)
{
    return holds(values, line.toStdString() + '\n') || line.section(',', 1, 1).isEmpty();
}

}  // namespace

class EveryFault : public testing::TestWithParam<std::tuple<Road, Fault>>
{
protected:
    EveryFault()
        : image(newFile(folder, "memory.hex", memory)),
          plc(std::get<Road>(GetParam()), quickPlc + QStringList{"--load", image, "--seed", seed})
    {}

    Ended run(const QStringList& arguments) const
    {
        return fxhost(QStringList{"--link", plc.link(), "--csv", "-q"} + arguments);
    }

    const Fault& fault = std::get<Fault>(GetParam());
    // Whether the PLC really did it.
    bool hasHappened()
    {
        const std::string kind = fault.name == std::string("mixed") ? "" : fault.name;
        return holds(plc.command("stats").toStdString(), "  fault: " + kind);
    }

    QTemporaryDir folder;
    QString image;
    RunningSimulator plc;
};

TEST_P(EveryFault, ThatPassesLeavesEveryValueRight)
{
    plc.command(QString("faults ") + fault.passing);
    const Ended ended =
        run({"-o", "50", "--retries", "50", "watch", "D0:10", "D200:10", "-n", "3", "-l", "0"});
    EXPECT_EQ(ended.code, 0) << ended.err;
    EXPECT_EQ(ended.out, values);
    EXPECT_TRUE(hasHappened());
}

TEST_P(EveryFault, ThatMeetsAWriteIsRepeatedAwayOrReported)
{
    plc.command(QString("faults ") + fault.passing);
    const Ended ended = run({"-o", "50", "--retries", "50", "write", "D0:2=1,515", "M9=on"});
    EXPECT_EQ(ended.code, fault.writeExitCode) << testing::PrintToString(ended);
    const bool isWritten = plc.command("peek 0x1000 4") == "1000: 01 00 03 02\n" &&
                           plc.command("peek 0x0101") == "0101: 02\n";
    EXPECT_EQ(isWritten, ended.code == 0) << testing::PrintToString(ended);
    EXPECT_TRUE(hasHappened());
}

TEST_P(EveryFault, ThatStaysIsNamedAndNoValueIsWrong)
{
    plc.command(QString("faults ") + fault.staying);
    const Ended ended =
        run({"-o", fault.timeoutMs, "--retries", "0", "--reconnect-s", "0", "read", "D0:10"});
    const QStringList lines = QString::fromStdString(ended.out).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.size(), 10);
    EXPECT_TRUE(std::all_of(lines.begin(), lines.end(), isRightOrFailed)) << ended.out;
    EXPECT_EQ(!ended.out.empty() && holds(values, ended.out), ended.code == 0);
    EXPECT_TRUE(holds(ended.out + ended.err, fault.says)) << testing::PrintToString(ended);
    EXPECT_EQ(ended.code, fault.readExitCode == either ? ended.code : fault.readExitCode)
        << testing::PrintToString(ended);
    EXPECT_TRUE(hasHappened());
}

INSTANTIATE_TEST_SUITE_P(Roads, EveryFault,
                         testing::Combine(testing::Values(Road::PseudoTerminal, Road::Tcp),
                                          testing::ValuesIn(faults)),
                         [](const auto& row) {
                             const QString name = std::get<Fault>(row.param).name;
                             return QString(name).replace('-', '_').toStdString() + "_over" +
                                    testing::PrintToString(std::get<Road>(row.param));
                         });

TEST(EveryFaultOfTheHelp, IsMet)
{
    RunningSimulator plc(Road::Tcp);
    QRegularExpressionMatchIterator rows =
        QRegularExpression("^  ([a-z0-9-]+) ", QRegularExpression::MultilineOption)
            .globalMatch(QString::fromUtf8(plc.command("faults help")));
    QStringList told;
    while (rows.hasNext())
        told += rows.next().captured(1);
    QStringList met;
    for (const Fault& fault : faults)
        met += fault.name;
    EXPECT_EQ(told.join(' ').toStdString(), met.join(' ').toStdString());
}
