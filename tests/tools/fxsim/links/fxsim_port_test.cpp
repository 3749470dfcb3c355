// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The programming port as the running program offers it: what depends on the kind of link runs over
// a pseudo-terminal and over TCP.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <vector>

namespace {

constexpr bool overPty = false;
constexpr bool overTcp = true;

// A simulator without a program and without delays, and a host connected to it.
struct Connected
{
    explicit Connected(bool chosen, const QStringList& arguments = {})
        : isOverTcp(chosen),
          process(QStringList{"--baud", "0", "--program", "none"} + linkOption() + arguments)
    {
        name = process.waitReady();
        connect();
    }

    QStringList linkOption() const
    {
        return isOverTcp ? QStringList{"--tcp", "0"}
                         : QStringList{"--link", folder.filePath("plc")};
    }

    void connect()
    {
        if (isOverTcp)
            host = std::make_unique<TcpEnd>(name);
        else
            host = std::make_unique<PtyEnd>(folder.filePath("plc"));
    }

    QByteArray ask(const QByteArray& bytes, int byteCount) { return host->ask(bytes, byteCount); }

    bool isOverTcp;
    QTemporaryDir folder;
    FxsimProcess process;
    QString name;
    std::unique_ptr<HostEnd> host;
};

class FxsimOver : public testing::TestWithParam<bool>
{};

INSTANTIATE_TEST_SUITE_P(PtyAndTcp, FxsimOver, testing::Bool());

}  // namespace

TEST_P(FxsimOver, ReadsWritesAndForces)
{
    Connected plc(GetParam());
    EXPECT_EQ(plc.ask("\x05", 1), "\x06");
    EXPECT_EQ(plc.ask(readD100, 12), zerosOfD100);
    for (const char character : writeD100)
        plc.host->send(QByteArray(1, character));
    EXPECT_EQ(plc.host->take(1), "\x06");
    EXPECT_EQ(plc.ask("junk" + readD100 + readD100, 24), valueOfD100 + valueOfD100);
    EXPECT_EQ(plc.ask(frame("70805", "07"), 1), "\x06");
    EXPECT_EQ(plc.ask(frame("000A101", "66"), 6), frame("01", "64"));
    EXPECT_EQ(plc.ask(damagedRead, 1), "\x15");
}

TEST_P(FxsimOver, LinkDropsAndComesBack)
{
    Connected plc(GetParam(), {"--faults", "link-drop:50@2"});
    EXPECT_EQ(plc.ask(writeD100, 1), "\x06");
    plc.host->send(readD100);
    EXPECT_TRUE(plc.host->waitGone());
    EXPECT_TRUE(plc.process.waitLine("fxsim: link down: ").contains("back in 50 ms"));
    const QString again = plc.process.waitReady();
    EXPECT_NE(again, "");
    if (plc.isOverTcp) {
        EXPECT_EQ(again, plc.name) << "the same port";
    }
    plc.connect();
    EXPECT_EQ(plc.ask(readD100, 12), valueOfD100);
}

TEST_P(FxsimOver, DroppingTwiceAtOnceIsOneDrop)
{
    Connected plc(GetParam());
    const QByteArray first = plc.process.command("drop-link 20");
    EXPECT_TRUE(first.startsWith("fxsim: link down: ")) << first;
    EXPECT_EQ(plc.process.command("drop-link 20"), "ok\n");
    EXPECT_NE(plc.process.waitReady(), "");
    EXPECT_TRUE(plc.host->waitGone());
    plc.connect();
    EXPECT_EQ(plc.ask(readD100, 12), zerosOfD100);
}

TEST_P(FxsimOver, PacingTakesAtLeastTheTimeOfTheCharacters)
{
    Connected plc(GetParam(), {"--baud", "9600"});
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(plc.ask(readD100, 12), zerosOfD100);
    EXPECT_GE(timer.elapsed(), 23) << "11 + 12 characters of 1.04 ms";
}

TEST(FxsimPort, EndsCleanlyOnEachSignal)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        Connected plc(overPty, {"--stats"});
        plc.ask(readD100, 12);
        EXPECT_EQ(plc.process.signal(number), 0);
        EXPECT_TRUE(plc.process.restOfOutput().contains("  exchanges                     1\n"));
        EXPECT_FALSE(QFileInfo(plc.folder.filePath("plc")).isSymLink()) << "the link is gone";
    }
}

TEST(FxsimPort, SettingsReachThePlc)
{
    Connected plc(overTcp, {"--enq", "needed", "--max-bytes", "3", "--memory", "0x0000-0x1FFF",
                            "--holes", "D104", "--mirror", "0x0100:0x0200:1", "--faults", "nak@7"});
    plc.host->send(readD100);  // no reply before an ENQ
    EXPECT_EQ(plc.ask("\x05" + readD100, 2), "\x06\x15") << "4 bytes are too many";
    EXPECT_EQ(plc.ask(frame("010D001", "69"), 1), "\x15") << "a hole";
    EXPECT_EQ(plc.ask(frame("0200001", "56"), 1), "\x15") << "beyond the memory";
    EXPECT_EQ(plc.ask(frame("10100017F", "D3"), 1), "\x06");
    EXPECT_EQ(plc.ask(frame("0020001", "56"), 6), frame("7F", "80")) << "the mirror";
    EXPECT_EQ(plc.ask(frame("0020001", "56"), 1), "\x15") << "exchange 7";
}

TEST(FxsimPort, SampleProgramRuns)
{
    Connected plc(overTcp, {"--program", "sample"});
    const QByteArray readMs = frame("0101004", "59");
    const QByteArray first = plc.ask(readMs, 12);
    QByteArray next = first;
    QElapsedTimer timer;
    timer.start();
    while (next == first && timer.elapsed() < deadlineMs)
        next = plc.ask(readMs, 12);
    EXPECT_EQ(first.size(), 12);
    EXPECT_NE(next, first);
}

TEST(FxsimPort, TraceGoesToAFileAndNamesTheHost)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("trace");
    FxsimProcess process({"--tcp", "0", "--program", "none", "--trace", path});
    TcpEnd host(process.waitReady());
    EXPECT_EQ(host.ask(readD100, 12), zerosOfD100);
    EXPECT_EQ(process.terminate(), 0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    const QByteArray name = " tcp:127.0.0.1:" + QByteArray::number(host.ownPort());
    EXPECT_TRUE(text.contains(name +
                              " > 02 30 31 30 43 38 30 34 03 37 33 | <STX>010C804<ETX>73 | read "
                              "4 bytes at 0x10C8\n"))
        << text;
    EXPECT_TRUE(
        text.contains(name + " < 02 30 30 30 30 30 30 30 30 03 38 33 | <STX>00000000<ETX>83\n"))
        << text;
}

// What is special to each kind of link of the program, and several of them together.

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
    EXPECT_EQ(failureOf({"--tcp", name.section(':', 2)}),
              "3 fxsim: " + name.toUtf8() +
                  ": in use by another program; choose another port, or 0 for any free one\n");
}

TEST(FxsimTcp, PortThatIsNotForEveryUserIsExplained)
{
    QFile firstForAll("/proc/sys/net/ipv4/ip_unprivileged_port_start");
    if (!firstForAll.open(QIODevice::ReadOnly) || firstForAll.readAll().toInt() <= 81)
        GTEST_SKIP() << "this system has no such ports";
    EXPECT_EQ(failureOf({"--tcp", "81"}, Rights::OrdinaryUser),
              "3 fxsim: tcp:127.0.0.1:81: no permission; use a port from 1024 "
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
    Connected plc(overTcp);
    TcpEnd deaf(plc.name);
    deaf.takeNothing();
    const QByteArray longestRead = frame("0100040", "58");
    for (int round = 0; round < 200; ++round) {
        deaf.send(longestRead.repeated(1000));
        EXPECT_EQ(plc.ask(readD100, 12), zerosOfD100);
        if (plc.process.command("stats").contains("characters lost"))
            return;
    }
    FAIL() << "nothing was lost";
}

TEST(FxsimPty, IsRawFromTheStart)
{
    Connected plc(overPty);
    plc.process.command("poke 0x10C8 0x0D 0x0A 0x04 0x11");
    EXPECT_EQ(plc.ask(readD100, 12), frame("0D0A0411", "AE"));
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
    EXPECT_EQ(failureOf({"--link", link}),
              "3 fxsim: " + link.toUtf8() +
                  ": in use by another fxsim; end it, or choose another path\n");
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), device) << "its link is still there";
    process.signal(SIGKILL);
    QFile::link("/dev/pts/99999", folder.filePath("other"));
    for (const QString& stale : {link, folder.filePath("other")})
        EXPECT_NE(FxsimProcess({"--link", stale}).waitReady(), "")
            << "left behind by one that died";
    const QString file = folder.filePath("file");
    QFile(file).open(QIODevice::WriteOnly);
    EXPECT_EQ(failureOf({"--link", file}),
              "3 fxsim: cannot create the symbolic link " + file.toUtf8() + ": File exists\n");
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
    EXPECT_EQ(failureOf({"--serial", "/dev/nonexistent"}),
              "3 fxsim: /dev/nonexistent: No such file or directory\n");
    EXPECT_EQ(failureOf({"--serial", "/dev/null"}), "3 fxsim: /dev/null: not a serial port\n");
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
