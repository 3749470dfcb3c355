// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The command line of the program: mistakes in it, its help, and what the manual tells of it.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/printing.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

struct UsageCase
{
    QStringList arguments;
    QByteArray message;
};

TEST(FxsimUsage, BadArgumentsGetOneLineAndExitCode2)
{
    const UsageCase cases[] = {
        {{"--tcp", "99999"},
         "--tcp '99999' does not do; wanted is [ADDRESS:]PORT with a port of 0 to 65535, as in "
         "127.0.0.1:8888"},
        {{"--tcp", "plc.example:1"},
         "--tcp 'plc.example:1' does not do; wanted is [ADDRESS:]PORT with a port of 0 to 65535, "
         "as in 127.0.0.1:8888"},
        {{"--baud", "100"}, "--baud: '100' is no speed; wanted is 0 or 300 to 4000000"},
        {{"--baud", "fast"}, "--baud: 'fast' is no speed; wanted is 0 or 300 to 4000000"},
        {{"--seed", "-1"}, "--seed: '-1' is no seed; wanted is 0 to 18446744073709551615"},
        {{"--seed", "18446744073709551616"},
         "--seed: '18446744073709551616' is no seed; wanted is 0 to 18446744073709551615"},
        {{"--scan-ms", "10001"}, "--scan-ms: Value 10001 not in range 0 to 10000"},
        {{"--on-error", "ack"}, "--on-error: ack not in {nak,silence}"},
        {{"--link", ""}, "--link: the name is empty"},
        {{"--serial", ""}, "--serial: the name is empty"},
        {{"--load", ""}, "--load: the name is empty"},
        {{"--save", ""}, "--save: the name is empty"},
        {{"--program", ""}, "--program: the name is empty"},
        {{"--control", ""}, "--control: the name is empty"},
        {{"--tell", "quit"}, "--tell: --control says which simulator"},
        {{"--holes", "7-3"},
         "--holes '7-3' does not do; wanted is byte addresses such as "
         "0x0000-0x3FFF,0x8000-0x8FFF"},
        {{"--serial", "/dev/null", "--baud", "0"},
         "--serial: a serial port needs a speed, --baud 0 is none"},
        {{"--faults", "loud"}, "--faults: there is no fault 'loud'; --faults help lists them"},
        {{"--memory", "0x10000"},
         "--memory '0x10000' does not do; wanted is byte addresses such as "
         "0x0000-0x3FFF,0x8000-0x8FFF"},
        {{"--mirror", "1:2"},
         "--mirror '1:2' does not do; wanted is FROM:TO:BYTES within 64 KiB, as in "
         "0x0F00:0x0E00:256, or none"},
        {{"--max-bytes", "256"}, "--max-bytes: Value 256 not in range 1 to 255"},
        {{"--enq", "never"}, "--enq: never not in {optional,needed,ignored}"},
        {{"plc"}, "The following argument was not expected: plc"},
    };
    for (const UsageCase& row : cases) {
        const FailedStart start = runToEnd(row.arguments);
        EXPECT_EQ(start.exitCode, 2) << row.message;
        EXPECT_EQ(start.errors, "fxsim: " + row.message + " (fxsim --help shows how)\n");
        EXPECT_EQ(start.output, "");
    }
}

TEST(FxsimUsage, HelpAndVersionAreNoFaults)
{
    const FailedStart help = runToEnd({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.output.contains("Exit codes: 0 good, 2 usage, 3 a link could not be opened"));
    const FailedStart version = runToEnd({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(version.output.startsWith("fxsim "));
    const FailedStart faults = runToEnd({"--faults", "help"});
    EXPECT_EQ(faults.exitCode, 0);
    EXPECT_TRUE(faults.output.contains("\n  lost-etx     the ETX is missing"));
}

TEST(FxsimUsage, ManualAndCompletionKnowEveryOptionAndFault)
{
    const auto contents = [](const char* path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
        return QString::fromUtf8(file.readAll());
    };
    const QString manual = contents(FX_SOURCE_FOLDER "/tools/fxsim/fxsim.1").remove('\\');
    const QString completion = contents(FX_SOURCE_FOLDER "/packaging/completion/fxsim");
    const QString help = QString::fromUtf8(runToEnd({"--help"}).output);
    QRegularExpressionMatchIterator options =
        QRegularExpression("^  (?:-h,)?(--[a-z-]+)", QRegularExpression::MultilineOption)
            .globalMatch(help);
    int optionCount = 0;
    for (; options.hasNext(); ++optionCount) {
        const QString option = options.next().captured(1);
        EXPECT_TRUE(manual.contains(option)) << option.toStdString();
        EXPECT_TRUE(completion.contains(option)) << option.toStdString();
    }
    EXPECT_EQ(optionCount, 24);
    for (const char* fault : {"power-cycle", "link-drop", "silence", "nak", "delay", "wrong-sum",
                              "flipped-bits", "bit7", "truncated", "lost-stx", "lost-etx",
                              "junk-before", "junk-after", "duplicate", "slices", "echo", "mixed"})
        EXPECT_TRUE(manual.contains(
            QRegularExpression(QString("^\\.BR? .*") + fault, QRegularExpression::MultilineOption)))
            << fault;
}
