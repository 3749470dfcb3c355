// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The programming port as the running program offers it: what depends on the kind of link runs over
// a pseudo-terminal and over TCP.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/support.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>

namespace {

enum class Way
{
    Pty,
    Tcp,
};

void PrintTo(Way way, std::ostream* out)
{
    *out << (way == Way::Pty ? "pty" : "tcp");
}

// A simulator without a program and without delays, and a host connected to it.
struct Connected
{
    explicit Connected(Way chosen, const QStringList& arguments = {})
        : way(chosen),
          process(QStringList{"--baud", "0", "--program", "none"} + linkOption() + arguments)
    {
        name = process.waitReady();
        connect();
    }

    QStringList linkOption() const
    {
        return way == Way::Pty ? QStringList{"--link", folder.filePath("plc")}
                               : QStringList{"--tcp", "0"};
    }

    void connect()
    {
        if (way == Way::Pty)
            host = std::make_unique<PtyEnd>(folder.filePath("plc"));
        else
            host = std::make_unique<TcpEnd>(name);
    }

    QByteArray ask(const QByteArray& bytes, int byteCount) { return host->ask(bytes, byteCount); }

    Way way;
    QTemporaryDir folder;
    FxsimProcess process;
    QString name;
    std::unique_ptr<HostEnd> host;
};

class FxsimOver : public testing::TestWithParam<Way>
{};

INSTANTIATE_TEST_SUITE_P(Links, FxsimOver, testing::Values(Way::Pty, Way::Tcp),
                         [](const auto& row) {
                             return std::string(row.param == Way::Pty ? "Pty" : "Tcp");
                         });

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
    if (GetParam() == Way::Tcp) {
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
        Connected plc(Way::Pty, {"--stats"});
        plc.ask(readD100, 12);
        EXPECT_EQ(plc.process.signal(number), 0);
        EXPECT_TRUE(plc.process.restOfOutput().contains("  exchanges                     1\n"));
        EXPECT_FALSE(QFileInfo(plc.folder.filePath("plc")).isSymLink()) << "the link is gone";
    }
}

TEST(FxsimPort, SettingsReachThePlc)
{
    Connected plc(Way::Tcp,
                  {"--enq", "needed", "--max-bytes", "3", "--memory", "0x0000-0x1FFF", "--holes",
                   "D104", "--mirror", "0x0100:0x0200:1", "--faults", "nak@7"});
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
    Connected plc(Way::Tcp, {"--program", "sample"});
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
