// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The files that the program reads and writes: memory images and scripts.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/printing.h"
#include "tests/tools/fxsim/wire_frames.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

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
    const QString path = folder.filePath("plant.json");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"({"steps": [{"at": 0, "set": "0x10C8", "value": 513}]})");
    file.close();
    FxsimProcess process({"--program", path});
    process.waitReady();
    EXPECT_EQ(process.command("peek 0x10C8 2"), "10C8: 01 02\nok\n");
}

TEST(FxsimFiles, BadFilesAreNamedBeforeAnythingStarts)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("bad");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"steps\": [{}]}");
    file.close();
    const FailedStart script = runToEnd({"--program", path});
    EXPECT_EQ(script.exitCode, 7);
    EXPECT_EQ(script.errors, "fxsim: " + path.toUtf8() +
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
    const FailedStart start = runToEnd({"--save", path}, Rights::OrdinaryUser);
    EXPECT_EQ(start.exitCode, 7);
    EXPECT_EQ(start.errors, "fxsim: " + path.toUtf8() + ": no permission to write this file\n");
}

TEST(FxsimFiles, TraceReplacesAFileOnlyByForce)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("trace"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("older") == 5 && file.flush());
    const FailedStart start = runToEnd({"--trace", file.fileName()});
    EXPECT_EQ(start.exitCode, 7);
    EXPECT_EQ(start.errors, "fxsim: " + file.fileName().toUtf8() +
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
