// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Commands to the running program, by its control socket and its standard input.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/support.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(FxsimControl, SocketTakesCommandsFromSeveralClients)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("control");
    FxsimProcess process({"--control", path, "--program", "none"});
    process.waitReady();
    QLocalSocket first;
    QLocalSocket second;
    first.connectToServer(path);
    second.connectToServer(path);
    const auto run = [](QLocalSocket& socket, const QByteArray& line) {
        socket.write(line + '\n');
        QByteArray answer;
        while (!answer.endsWith("ok\n") && socket.waitForReadyRead(deadlineMs))
            answer += socket.readAll();
        return answer;
    };
    EXPECT_EQ(run(first, "poke 0 7"), "ok\n");
    EXPECT_EQ(run(second, "peek 0"), "0000: 07\nok\n");
    EXPECT_EQ(run(first, "quit"), "ok\n");
    EXPECT_EQ(process.waitEnd(), 0);
    EXPECT_FALSE(QFileInfo::exists(path));
}

// A socket that may not be asked was taken for one left behind, and removed under whoever listened.
TEST(FxsimControl, SocketThatCannotBeHadIsExplainedAndStays)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("control");
    const QString file = folder.filePath("file");
    ASSERT_TRUE(QFile(file).open(QIODevice::WriteOnly));
    const QString locked = folder.filePath("locked");
    ASSERT_TRUE(QDir().mkdir(locked));
    QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner);
    const QString longName = "/tmp/" + QString(103, 'x');
    FxsimProcess process({"--control", path});
    process.waitReady();
    const QString inUse = "in use by another program; end it, or choose another path";
    const struct
    {
        QString path;
        QString reason;
        QFile::Permissions permissions;  // of the socket
    } rows[] = {
        {path, inUse, QFile::ReadOwner | QFile::WriteOwner},
        {path, inUse, {}},
        {file, "the file already exists", {}},
        {locked + "/control", "no permission to write in " + locked, {}},
        {"/nonexistent/control", "the folder /nonexistent does not exist", {}},
        {longName, "the path is longer than 107 bytes", {}},
    };
    for (const auto& row : rows) {
        QFile::setPermissions(path, row.permissions);
        EXPECT_EQ(failureOf({"--control", row.path}, Rights::OrdinaryUser),
                  "3 fxsim: control socket " + row.path + ": " + row.reason + '\n');
    }
    EXPECT_EQ(failureOf({"--control", path, "--tell", "help"}, Rights::OrdinaryUser),
              "3 fxsim: control socket " + path.toUtf8() +
                  ": no permission: only its owner may connect\n");
    EXPECT_TRUE(QFileInfo::exists(path));
    EXPECT_EQ(process.command("peek 0"), "0000: 00\nok\n");
}

TEST(FxsimControl, SocketLeftBehindIsReplaced)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("control");
    FxsimProcess killed({"--control", path});
    killed.waitReady();
    killed.signal(SIGKILL);
    EXPECT_TRUE(QFileInfo::exists(path)) << "a killed simulator leaves its socket behind";
    FxsimProcess process({"--control", path});
    process.waitReady();
    EXPECT_EQ(runToEnd({"--control", path, "--tell", "quit"}).exitCode, 0);
    EXPECT_EQ(process.waitEnd(), 0);
}

TEST(FxsimControl, TellGivesOneCommand)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("control");
    FxsimProcess process({"--control", path, "--program", "none"});
    process.waitReady();
    EXPECT_EQ(runToEnd({"--control", path, "--tell", "poke 0x1000 1 2"}).exitCode, 0);
    const FailedStart peek = runToEnd({"--control", path, "--tell", "peek 0x1000 2"});
    EXPECT_EQ(peek.exitCode, 0);
    EXPECT_EQ(peek.output, "1000: 01 02\n");
    EXPECT_EQ(failureOf({"--control", path, "--tell", "jump"}),
              "2 fxsim: unknown command 'jump'; 'help' lists all commands\n");
    EXPECT_EQ(runToEnd({"--control", path, "--tell", "quit"}).exitCode, 0);
    EXPECT_EQ(process.waitEnd(), 0);
    EXPECT_EQ(failureOf({"--control", path, "--tell", "help"}),
              "3 fxsim: control socket " + path.toUtf8() + ": no simulator is listening\n");
}

TEST(FxsimControl, InputThatEndsDoesNotEndTheSimulator)
{
    FxsimProcess process({"--baud", "0", "--program", "none"});
    PtyEnd host(process.waitReady());
    process.closeInput();
    EXPECT_EQ(host.ask(readD100, 12), zerosOfD100);
    EXPECT_EQ(process.terminate(), 0);
}
