// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the program says of itself: its help, its version, its manual page and its completion; and
// the files that it reads and writes.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/support.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString contents(const char* path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    return QString::fromUtf8(file.readAll());
}

QString newFile(const QTemporaryDir& folder, const QByteArray& content)
{
    QFile file(folder.filePath("file"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    return file.fileName();
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
    EXPECT_EQ(failureOf({"--baud", "fast"}),
              "2 fxsim: --baud: invalid speed 'fast': expected 0, or a usual speed such "
              "as 9600, 19200 or 115200 (see fxsim --help)\n");
    EXPECT_EQ(failureOf({"--model", "fx1s", "--holes", "D300"}),
              "2 fxsim: --holes: this PLC does not have all of that memory without holes "
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

TEST(FxsimUsage, HelpThatFindsNoRoomIsNoSuccess)
{
    ChildProcess process;
    process.setStandardOutputFile("/dev/full");
    process.start(FXSIM_FILE, {"--help"});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 7);
    EXPECT_EQ(process.readAllStandardError(),
              "fxsim: could not write all output: No space left on device\n");
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

TEST(FxsimFiles, MemoryIsSavedAndLoaded)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("plc.hex");
    FxsimProcess first({"--program", "none", "--save", path});
    first.waitReady();
    EXPECT_EQ(first.command("poke 0x10C8 1 2"), "ok\n");
    EXPECT_EQ(first.terminate(), 0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().endsWith("\n:1010C00000000000000000000102000000000000"
                                        "1D\n:00000001FF\n"));
    FxsimProcess second({"--program", "none", "--load", path});
    second.waitReady();
    EXPECT_EQ(second.command("peek 0x10C8 3"), "10C8: 01 02 00\nok\n");
    EXPECT_EQ(second.command("poke 0x10C8 9"), "ok\n");
    EXPECT_EQ(second.command("power-cycle 0"), "ok\n");
    EXPECT_EQ(second.command("peek 0x10C8"), "10C8: 01\nok\n") << "as it was loaded";
}

TEST(FxsimFiles, ScriptRuns)
{
    const QTemporaryDir folder;
    FxsimProcess process({"--program", newFile(folder, R"({"steps": [
        {"at": 0, "set": "0x10C8", "value": 513}]})")});
    process.waitReady();
    EXPECT_EQ(process.command("peek 0x10C8 2"), "10C8: 01 02\nok\n");
}

TEST(FxsimFiles, BadFilesAreNamedBeforeAnythingStarts)
{
    const QTemporaryDir folder;
    const QString path = newFile(folder, "{\"steps\": [{}]}");
    EXPECT_EQ(failureOf({"--program", path}),
              "7 fxsim: " + path.toUtf8() +
                  ": line 1, step 1: expected exactly one of \"set\", \"add\", "
                  "\"toggle\", \"copy\", \"ramp\" and \"random\"\n");
    EXPECT_EQ(runToEnd({"--load", path}).exitCode, 7);
    EXPECT_EQ(runToEnd({"--save", folder.path()}).exitCode, 7);
    EXPECT_EQ(runToEnd({"--trace", "/nonexistent/trace"}).exitCode, 7);
}

// Told before the run, not after it, when the memory is lost.
TEST(FxsimFiles, SaveToAProtectedFileIsRefusedAtTheStart)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("plc.hex");
    ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    QFile::setPermissions(path, QFile::ReadOwner);
    EXPECT_EQ(failureOf({"--save", path}, Rights::OrdinaryUser),
              "7 fxsim: " + path.toUtf8() + ": no permission to write this file\n");
}

TEST(FxsimFiles, TraceReplacesAFileOnlyByForce)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("trace"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("older") == 5 && file.flush());
    EXPECT_EQ(failureOf({"--trace", file.fileName()}),
              "7 fxsim: " + file.fileName().toUtf8() +
                  ": the file already exists; --force replaces it\n");
    EXPECT_EQ(file.size(), 5);
    FxsimProcess process({"--trace", file.fileName(), "--force"});
    EXPECT_NE(process.waitReady(), "");
    EXPECT_EQ(file.size(), 0);
}

TEST(FxsimFiles, TraceThatFindsNoRoomIsNoSuccess)
{
    FxsimProcess process({"--trace", "/dev/full", "--program", "none"});
    PtyEnd host(process.waitReady());
    EXPECT_EQ(host.ask(readD100, 12), zerosOfD100) << "the simulator goes on";
    EXPECT_EQ(process.terminate(), 7);
    EXPECT_EQ(process.errors(),
              "fxsim: /dev/full: the trace is incomplete: No space left on device\n");
}
