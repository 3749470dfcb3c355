// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The programming port that the program offers: each test runs over a pseudo-terminal and over TCP.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/printing.h"
#include "tests/tools/fxsim/wire_frames.h"

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

// A simulator without a program, as fast as it goes, and a host connected to it.
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

    // What came back before the answer to an ENQ that was sent behind: all that there is.
    QByteArray all(const QByteArray& bytes)
    {
        const QByteArray marker = "\x02"
                                  "0000001"
                                  "\x03"
                                  "54";
        const QByteArray end = "\x02"
                               "00"
                               "\x03"
                               "63";
        host->send(bytes + marker);
        QByteArray taken;
        while (!taken.endsWith(end)) {
            const QByteArray next = host->take(1);
            if (next.isEmpty())
                return "nothing more after " + taken;
            taken += next;
        }
        return taken.left(taken.size() - end.size());
    }

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
    EXPECT_EQ(plc.ask(writeD100, 1), "\x06");
    EXPECT_EQ(plc.ask(readD100, 12), valueOfD100);
    EXPECT_EQ(plc.ask("\x02"
                      "70805"
                      "\x03"
                      "07",
                      1),
              "\x06");
    EXPECT_EQ(plc.ask("\x02"
                      "000A101"
                      "\x03"
                      "66",
                      6),
              "\x02"
              "01"
              "\x03"
              "64");
    EXPECT_EQ(plc.ask(damagedRead, 1), "\x15");
}

TEST_P(FxsimOver, FramesMayBeCutAnywhere)
{
    Connected plc(GetParam());
    for (const char character : writeD100)
        plc.host->send(QByteArray(1, character));
    EXPECT_EQ(plc.host->take(1), "\x06");
    EXPECT_EQ(plc.ask("junk" + readD100 + readD100, 24), valueOfD100 + valueOfD100);
}

TEST_P(FxsimOver, OnErrorSilenceKeepsSilent)
{
    Connected plc(GetParam(), {"--on-error", "silence"});
    EXPECT_EQ(plc.all(damagedRead), "");
}

TEST_P(FxsimOver, EnqNeededWaitsForAnEnquiry)
{
    Connected plc(GetParam(), {"--enq", "needed"});
    plc.host->send(readD100);
    EXPECT_EQ(plc.ask("\x05" + readD100, 13), "\x06" + zerosOfD100);
}

TEST_P(FxsimOver, EnqIgnoredGetsNoAnswer)
{
    Connected plc(GetParam(), {"--enq", "ignored"});
    EXPECT_EQ(plc.all("\x05" + readD100), zerosOfD100);
}

TEST_P(FxsimOver, MaxBytesAndHolesAreRefused)
{
    Connected plc(GetParam(), {"--max-bytes", "3", "--memory", "0-0x1FFF", "--holes", "0x10D0"});
    EXPECT_EQ(plc.ask(readD100, 1), "\x15");
    EXPECT_EQ(plc.ask("\x02"
                      "010D001"
                      "\x03"
                      "69",
                      1),
              "\x15");
    EXPECT_EQ(plc.ask("\x02"
                      "0200001"
                      "\x03"
                      "56",
                      1),
              "\x15");
    EXPECT_EQ(plc.ask("\x02"
                      "010D101"
                      "\x03"
                      "6A",
                      6),
              "\x02"
              "00"
              "\x03"
              "63");
}

TEST_P(FxsimOver, WritesAtTheMirrorShowWhereTheyAreRead)
{
    const QByteArray write = "\x02"
                             "10F0002ABCD"
                             "\x03"
                             "76";
    const QByteArray read = "\x02"
                            "00E0002"
                            "\x03"
                            "6A";
    Connected mirrored(GetParam());
    EXPECT_EQ(mirrored.ask(write, 1), "\x06");
    EXPECT_EQ(mirrored.ask(read, 8), "\x02"
                                     "ABCD"
                                     "\x03"
                                     "0D");
    Connected flat(GetParam(), {"--mirror", "none"});
    EXPECT_EQ(flat.ask(write, 1), "\x06");
    EXPECT_EQ(flat.ask(read, 8), "\x02"
                                 "0000"
                                 "\x03"
                                 "C3");
}

struct FaultCase
{
    const char* fault;
    QByteArray answer;  // to a read, from one sent after it
};

TEST_P(FxsimOver, EveryFaultOfTheLineDoesWhatItSays)
{
    const FaultCase cases[] = {
        {"silence@1", ""},
        {"nak@1", "\x15"},
        {"delay:20@1", valueOfD100},
        {"wrong-sum@1", "\x02"
                        "12345678"
                        "\x03"
                        "A0"},
        {"bit7@1", fromHex("82B1B233B43536B7B80341B7")},
        {"truncated:5@1", "\x02"
                          "1234"},
        {"lost-stx@1", "12345678"
                       "\x03"
                       "A7"},
        {"lost-etx@1", "\x02"
                       "12345678"
                       "A7"},
        {"duplicate@1", valueOfD100 + valueOfD100},
        {"slices:5@1", valueOfD100},
        {"echo@1", readD100 + valueOfD100},
    };
    Connected plc(GetParam());
    EXPECT_EQ(plc.ask(writeD100, 1), "\x06");
    for (const FaultCase& row : cases) {
        EXPECT_EQ(plc.process.command(QByteArray("faults ") + row.fault), "ok\n");
        EXPECT_EQ(plc.all(readD100), row.answer) << row.fault;
        EXPECT_EQ(plc.all(readD100), valueOfD100) << "after " << row.fault;
    }
}

TEST_P(FxsimOver, RandomFaultsDamageAsTheySay)
{
    Connected plc(GetParam());
    EXPECT_EQ(plc.ask(writeD100, 1), "\x06");
    plc.process.command("faults junk-before:3@1");
    const QByteArray before = plc.all(readD100);
    EXPECT_EQ(before.size(), 15);
    EXPECT_TRUE(before.endsWith(valueOfD100));
    EXPECT_EQ(plc.process.command("faults junk-after:2@1"), "ok\n");
    const QByteArray after = plc.all(readD100);
    EXPECT_EQ(after.size(), 14);
    EXPECT_TRUE(after.startsWith(valueOfD100));
    EXPECT_EQ(plc.process.command("faults flipped-bits@1"), "ok\n");
    const QByteArray flipped = plc.all(readD100);
    EXPECT_EQ(flipped.size(), 12);
    EXPECT_NE(flipped, valueOfD100);
}

TEST_P(FxsimOver, SameSeedRepeatsARun)
{
    const QStringList arguments = {"--faults", "mixed:1=0.5", "--seed", "42"};
    Connected first(GetParam(), arguments);
    Connected second(GetParam(), arguments);
    Connected other(GetParam(), {"--faults", "mixed:1=0.5", "--seed", "43"});
    QByteArray requests;
    for (int request = 0; request < 100; ++request)
        requests += readD100;
    requests += "\x05";  // its answer meets no fault
    const auto run = [&requests](Connected& plc) {
        plc.host->send(requests);
        QByteArray taken;
        while (!taken.endsWith("\x06"))
            taken += plc.host->take(1);
        return taken;
    };
    const QByteArray firstRun = run(first);
    EXPECT_GT(firstRun.size(), 500);
    EXPECT_EQ(firstRun, run(second));
    EXPECT_NE(firstRun, run(other));
}

TEST_P(FxsimOver, LinkDropsAndComesBack)
{
    Connected plc(GetParam(), {"--faults", "link-drop:50@2"});
    EXPECT_EQ(plc.ask(writeD100, 1), "\x06");
    plc.host->send(readD100);
    EXPECT_TRUE(plc.host->waitGone());
    EXPECT_TRUE(plc.process.waitLine("fxsim: link down: ").contains("back in 50 ms"));
    const QString again = plc.process.waitReady();
    EXPECT_EQ(again.isEmpty(), false);
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

TEST_P(FxsimOver, PowerCycleForgetsTheMemoryAndTheRequest)
{
    Connected plc(GetParam(), {"--faults", "power-cycle:0@2"});
    EXPECT_EQ(plc.ask(writeD100, 1), "\x06");
    EXPECT_EQ(plc.all(readD100), "");
    EXPECT_EQ(plc.all(readD100), zerosOfD100);
}

TEST_P(FxsimOver, PacingTakesAtLeastTheTimeOfTheCharacters)
{
    Connected plc(GetParam(), {"--baud", "9600"});
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(plc.ask(readD100, 12), zerosOfD100);
    EXPECT_GE(timer.elapsed(), 23) << "11 + 12 characters of 1.04 ms";
}

TEST_P(FxsimOver, SampleProgramMoves)
{
    Connected plc(GetParam(), {"--program", "sample"});
    const QByteArray readMs = "\x02"
                              "0101004"
                              "\x03"
                              "59";
    const QByteArray first = plc.ask(readMs, 12);
    QByteArray next = first;
    QElapsedTimer timer;
    timer.start();
    while (next == first && timer.elapsed() < deadlineMs)
        next = plc.ask(readMs, 12);
    EXPECT_EQ(first.size(), 12);
    EXPECT_NE(next, first);
}

TEST_P(FxsimOver, CommandsWorkWhileItRuns)
{
    Connected plc(GetParam());
    EXPECT_EQ(plc.process.command("poke 0x10C8 0x12 0x34 0x56 0x78"), "ok\n");
    EXPECT_EQ(plc.ask(readD100, 12), valueOfD100);
    EXPECT_EQ(plc.process.command("peek 0x10C8 4"), "10C8: 12 34 56 78\nok\n");
    EXPECT_TRUE(plc.process.command("stats").contains("  reads                         1\n"));
    EXPECT_EQ(plc.process.command("quit"), "ok\n");
    EXPECT_EQ(plc.process.waitEnd(), 0);
}

TEST_P(FxsimOver, EndsCleanlyOnSigterm)
{
    Connected plc(GetParam(), {"--stats"});
    plc.ask(readD100, 12);
    EXPECT_EQ(plc.process.terminate(), 0);
    EXPECT_TRUE(plc.process.restOfOutput().contains("  exchanges                     1\n"));
    EXPECT_FALSE(QFileInfo(plc.folder.filePath("plc")).isSymLink()) << "the link is gone";
}

TEST_P(FxsimOver, EndsCleanlyOnSigint)
{
    Connected plc(GetParam());
    EXPECT_EQ(plc.process.signal(SIGINT), 0);
}

TEST_P(FxsimOver, EndsCleanlyWithItsTerminal)
{
    Connected plc(GetParam(), {"--stats"});
    EXPECT_EQ(plc.process.signal(SIGHUP), 0);
    EXPECT_TRUE(plc.process.restOfOutput().contains("  exchanges                     0\n"));
}

TEST_P(FxsimOver, TraceGoesToAFile)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("trace");
    Connected plc(GetParam(), {"--trace", path});
    plc.ask(readD100, 12);
    EXPECT_EQ(plc.process.terminate(), 0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_TRUE(text.contains(" > 02 30 31 30 43 38 30 34 03 37 33 | <STX>010C804<ETX>73 | read 4 "
                              "bytes at 0x10C8\n"))
        << text;
    EXPECT_TRUE(text.contains(" < 02 30 30 30 30 30 30 30 30 03 38 33 | <STX>00000000<ETX>83\n"))
        << text;
}
