// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is special to each kind of link of the program, and several of them together.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/printing.h"
#include "tests/tools/fxsim/wire_frames.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <vector>

namespace {

int openDescriptors(const FxsimProcess& process)
{
    const QDir folder(QString("/proc/%1/fd").arg(process.processId()));
    return folder.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

}  // namespace

TEST(FxsimTcp, PortThatIsTakenIsToldAndNothingIsLeftBehind)
{
    FxsimProcess process({"--tcp", "0"});
    const QString name = process.waitReady();
    const FailedStart second = runToEnd({"--tcp", name.section(':', 2)});
    EXPECT_EQ(second.exitCode, 3);
    EXPECT_EQ(second.errors,
              "fxsim: " + name.toUtf8() +
                  ": in use by another program; choose another port, or 0 for any free one\n");
    EXPECT_EQ(second.output, "");
}

TEST(FxsimTcp, PortThatIsNotForEveryUserIsExplained)
{
    QFile firstForAll("/proc/sys/net/ipv4/ip_unprivileged_port_start");
    if (!firstForAll.open(QIODevice::ReadOnly) || firstForAll.readAll().toInt() <= 81)
        GTEST_SKIP() << "this system has no such ports";
    const FailedStart start = runToEnd({"--tcp", "81"}, Rights::OrdinaryUser);
    EXPECT_EQ(start.exitCode, 3);
    EXPECT_EQ(start.errors, "fxsim: tcp:127.0.0.1:81: no permission; use a port from 1024 "
                            "up\n");
}

TEST(FxsimTcp, HostsThatCameAndWentLeaveNothingBehind)
{
    FxsimProcess process({"--tcp", "0", "--baud", "0", "--program", "none"});
    const QString name = process.waitReady();
    const int before = openDescriptors(process);
    ASSERT_GT(before, 0);
    for (int visit = 0; visit < 20; ++visit) {
        TcpEnd host(name);
        EXPECT_EQ(host.ask(readD100, 12), zerosOfD100) << "visit " << visit;
        EXPECT_EQ(openDescriptors(process), before + 1) << "visit " << visit;
        host.hangUp();
        for (int look = 0; look < 1000 && openDescriptors(process) > before; ++look)
            process.command("stats");  // gives it a turn
        EXPECT_EQ(openDescriptors(process), before) << "visit " << visit;
    }
}

// It spun on connections that it had no descriptor for, and served nobody.
TEST(FxsimTcp, TooManyConnectionsAreClosedAndToldOnce)
{
    FxsimProcess process({"--tcp", "0", "--baud", "0", "--program", "none"}, Rights::Own, 40);
    const QString name = process.waitReady();
    std::vector<std::unique_ptr<TcpEnd>> hosts;
    for (int host = 0; host < 60; ++host)
        hosts.push_back(std::make_unique<TcpEnd>(name));
    EXPECT_EQ(hosts.front()->ask(readD100, 12), zerosOfD100);
    EXPECT_TRUE(hosts[58]->waitGone());
    EXPECT_TRUE(hosts[59]->waitGone());
    const QByteArray said = process.command("stats");
    EXPECT_EQ(said.count("fxsim: too many connections: new ones are closed at once (ulimit -n)\n"),
              1)
        << said;
}

// More than the system keeps for a host is lost and counted, as on a serial line.
TEST(FxsimTcp, HostThatTakesNothingHoldsUpNobody)
{
    FxsimProcess process({"--tcp", "0", "--baud", "0", "--program", "none"});
    const QString name = process.waitReady();
    TcpEnd deaf(name);
    deaf.takeNothing();
    TcpEnd other(name);
    const QByteArray longestRead = frame("0100040", "58");
    for (int round = 0; round < 200; ++round) {
        deaf.send(longestRead.repeated(1000));
        EXPECT_EQ(other.ask(readD100, 12), zerosOfD100);
        if (process.command("stats").contains("characters lost"))
            return;
    }
    FAIL() << "nothing was lost";
}

TEST(FxsimPty, IsRawFromTheStart)
{
    FxsimProcess process({"--baud", "0", "--program", "none"});
    PtyEnd host(process.waitReady());
    ASSERT_TRUE(host.isOpen());
    process.command("poke 0x10C8 0x0D 0x0A 0x04 0x11");
    EXPECT_EQ(host.ask(readD100, 12), frame("0D0A0411", "AE"));
}

// The second one was told that 7E1 is an invalid argument.
TEST(FxsimPty, EveryHostMaySetSevenEvenOne)
{
    FxsimProcess process({"--baud", "0", "--program", "none"});
    const QString device = process.waitReady();
    std::vector<std::unique_ptr<PtyEnd>> silentOnes;  // both that stay and that go
    for (const bool talks : {false, false, true, true, false, true}) {
        auto owned = std::make_unique<PtyEnd>(device);
        PtyEnd& host = *owned;
        QElapsedTimer timer;
        timer.start();
        bool isSet = host.setSevenEvenOne();
        for (; !isSet && timer.elapsed() < deadlineMs; isSet = host.setSevenEvenOne())
            process.command("stats");  // gives it a turn to see who comes and goes
        EXPECT_TRUE(isSet);
        if (talks) {
            EXPECT_EQ(host.ask(readD100, 12), zerosOfD100);
        } else if (silentOnes.size() < 2) {
            silentOnes.push_back(std::move(owned));
        }
    }
}

TEST(FxsimPty, LinkLeftBehindIsReplacedAndWhatLivesIsNot)
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("plc");
    const PtyEnd foreign;  // has the number of a simulator that is gone
    QFile::link(foreign.otherEnd(), link);
    FxsimProcess process({"--link", link, "--baud", "0", "--program", "none"});
    const QString device = process.waitReady().section(' ', 0, 0);
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), device);
    const FailedStart second = runToEnd({"--link", link});
    EXPECT_EQ(second.exitCode, 3);
    EXPECT_EQ(second.errors, "fxsim: " + link.toUtf8() +
                                 ": in use by another fxsim; end it, or choose another path\n");
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), device) << "its link is still there";
    process.signal(SIGKILL);
    QFile::link("/dev/pts/99999", folder.filePath("other"));
    for (const QString& stale : {link, folder.filePath("other")})
        EXPECT_NE(FxsimProcess({"--link", stale}).waitReady(), "")
            << "left behind by one that died";
    const QString file = folder.filePath("file");
    QFile(file).open(QIODevice::WriteOnly);
    const FailedStart third = runToEnd({"--link", file});
    EXPECT_EQ(third.exitCode, 3);
    EXPECT_EQ(third.errors,
              "fxsim: cannot create the symbolic link " + file.toUtf8() + ": File exists\n");
    EXPECT_TRUE(QFileInfo(file).isFile());
}

TEST(FxsimSerial, AnswersOnADevice)
{
    PtyEnd host;
    FxsimProcess plc({"--serial", host.otherEnd(), "--program", "none"});
    EXPECT_EQ(plc.waitReady(), host.otherEnd());
    EXPECT_EQ(host.ask(writeD100, 1), "\x06");
    EXPECT_EQ(host.ask(readD100, 12), valueOfD100);
    EXPECT_EQ(plc.terminate(), 0);
}

TEST(FxsimSerial, DeviceThatGoesAwayIsAwaited)
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("device");
    auto host = std::make_unique<PtyEnd>();
    QFile::link(host->otherEnd(), link);
    FxsimProcess plc({"--serial", link, "--program", "none"});
    EXPECT_EQ(plc.waitReady(), link);
    host.reset();
    EXPECT_NE(plc.waitLine("fxsim: link down: "), "");
    host = std::make_unique<PtyEnd>();
    QFile::remove(link);
    QFile::link(host->otherEnd(), link);
    EXPECT_EQ(plc.waitReady(), link);
    EXPECT_EQ(host->ask(readD100, 12), zerosOfD100);
}

TEST(FxsimSerial, MissingDeviceIsNamed)
{
    const FailedStart start = runToEnd({"--serial", "/dev/nonexistent"});
    EXPECT_EQ(start.exitCode, 3);
    EXPECT_EQ(start.errors, "fxsim: /dev/nonexistent: No such file or directory\n");
    const FailedStart other = runToEnd({"--serial", "/dev/null"});
    EXPECT_EQ(other.exitCode, 3);
    EXPECT_EQ(other.errors, "fxsim: /dev/null: not a serial port\n");
}

TEST(FxsimLinks, PtyAndTcpServeOnePlc)
{
    FxsimProcess process({"--pty", "--tcp", "0", "--baud", "0", "--program", "none"});
    const QStringList names = process.waitReady().split(", ");
    ASSERT_EQ(names.size(), 2);
    PtyEnd terminal(names[0]);
    TcpEnd socket(names[1]);
    EXPECT_EQ(terminal.ask(writeD100, 1), "\x06");
    EXPECT_EQ(socket.ask(readD100, 12), valueOfD100);
}
