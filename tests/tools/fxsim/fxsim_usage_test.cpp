// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the program says of itself: its help, its version, its manual page and its completion.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/printing.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

QString contents(const char* path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    return QString::fromUtf8(file.readAll());
}

// The first groups of all matches, line by line.
QStringList captured(const QString& text, const char* pattern)
{
    QStringList words;
    const QRegularExpression lines(pattern, QRegularExpression::MultilineOption);
    for (auto matches = lines.globalMatch(text); matches.hasNext();)
        words.append(matches.next().captured(1));
    return words;
}

}  // namespace

TEST(FxsimUsage, MistakeIsOneLineAndExitCode2)
{
    const FailedStart start = runToEnd({"--baud", "fast"});
    EXPECT_EQ(start.exitCode, 2);
    EXPECT_EQ(start.errors,
              "fxsim: --baud: invalid speed 'fast': expected 0, or a usual speed such "
              "as 9600, 19200 or 115200 (see fxsim --help)\n");
    EXPECT_EQ(start.output, "");
    const FailedStart hole = runToEnd({"--model", "fx1s", "--holes", "D300"});
    EXPECT_EQ(hole.exitCode, 2);
    EXPECT_EQ(hole.errors,
              "fxsim: --holes: this PLC does not have all of that memory without holes "
              "either\n");
}

TEST(FxsimUsage, VersionIsPrinted)
{
    for (const char* option : {"--version", "-V"}) {
        const FailedStart version = runToEnd({option});
        EXPECT_EQ(version.exitCode, 0);
        EXPECT_TRUE(version.output.startsWith("fxsim "));
    }
}

TEST(FxsimUsage, HelpFitsEightyColumns)
{
    FxsimProcess process({});
    process.waitReady();
    const QString texts = runToEnd({"--help"}).output + runToEnd({"--faults", "help"}).output +
                          process.command("help") + process.command("stats");
    for (const QString& line : texts.split('\n'))
        EXPECT_LE(line.size(), 80) << line.toStdString();
}

TEST(FxsimUsage, ManualAndCompletionKnowEveryOptionAndFault)
{
    const QString manual = contents(FX_SOURCE_FOLDER "/tools/fxsim/fxsim.1").remove('\\');
    const QString completion = contents(FX_SOURCE_FOLDER "/packaging/completion/fxsim");
    const FailedStart help = runToEnd({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    const QStringList options = captured(help.output, "^  (?:-[hV],)?(--[a-z-]+)");
    EXPECT_EQ(options.size(), 27);
    for (const QString& option : options) {
        EXPECT_TRUE(manual.contains(option)) << option.toStdString();
        EXPECT_TRUE(completion.contains(option)) << option.toStdString();
    }
    const FailedStart faultHelp = runToEnd({"--faults", "help"});
    EXPECT_EQ(faultHelp.exitCode, 0);
    const QStringList faults = captured(faultHelp.output, "^  ([a-z0-9-]+) ");
    EXPECT_EQ(faults.size(), 17);
    for (const QString& fault : faults)
        EXPECT_FALSE(captured(manual, qPrintable("^\\.BR? (.*\\b" + fault + "\\b)")).isEmpty())
            << fault.toStdString();
}
