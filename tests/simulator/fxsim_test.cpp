// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The program over its links: each test that a link matters to runs over a pseudo-terminal and over
// TCP.

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <memory>

#include "tests/simulator/fxsim_process.h"
#include "tests/simulator/printing.h"

namespace {

const QByteArray readD100 = "\x02"
                            "010C804"
                            "\x03"
                            "73";
const QByteArray zerosOfD100 = "\x02"
                               "00000000"
                               "\x03"
                               "83";
const QByteArray writeD100 = "\x02"
                             "110C80412345678"
                             "\x03"
                             "18";
const QByteArray valueOfD100 = "\x02"
                               "12345678"
                               "\x03"
                               "A7";
const QByteArray damagedRead = "\x02"
                               "010C804"
                               "\x03"
                               "74";

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

TEST_P(FxsimOver, readsWritesAndForces)
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

TEST_P(FxsimOver, framesMayBeCutAnywhere)
{
    Connected plc(GetParam());
    for (const char character : writeD100)
        plc.host->send(QByteArray(1, character));
    EXPECT_EQ(plc.host->take(1), "\x06");
    EXPECT_EQ(plc.ask("junk" + readD100 + readD100, 24), valueOfD100 + valueOfD100);
}

TEST_P(FxsimOver, onErrorSilenceKeepsSilent)
{
    Connected plc(GetParam(), {"--on-error", "silence"});
    EXPECT_EQ(plc.all(damagedRead), "");
}

TEST_P(FxsimOver, enqNeededWaitsForAnEnquiry)
{
    Connected plc(GetParam(), {"--enq", "needed"});
    plc.host->send(readD100);
    EXPECT_EQ(plc.ask("\x05" + readD100, 13), "\x06" + zerosOfD100);
}

TEST_P(FxsimOver, enqIgnoredGetsNoAnswer)
{
    Connected plc(GetParam(), {"--enq", "ignored"});
    EXPECT_EQ(plc.all("\x05" + readD100), zerosOfD100);
}

TEST_P(FxsimOver, maxBytesAndHolesAreRefused)
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

TEST_P(FxsimOver, writesAtTheMirrorShowWhereTheyAreRead)
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

TEST_P(FxsimOver, everyFaultOfTheLineDoesWhatItSays)
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

TEST_P(FxsimOver, randomFaultsDamageAsTheySay)
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

TEST_P(FxsimOver, sameSeedRepeatsARun)
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

TEST_P(FxsimOver, linkDropsAndComesBack)
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

TEST_P(FxsimOver, droppingTwiceAtOnceIsOneDrop)
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

TEST_P(FxsimOver, powerCycleForgetsTheMemoryAndTheRequest)
{
    Connected plc(GetParam(), {"--faults", "power-cycle:0@2"});
    EXPECT_EQ(plc.ask(writeD100, 1), "\x06");
    EXPECT_EQ(plc.all(readD100), "");
    EXPECT_EQ(plc.all(readD100), zerosOfD100);
}

TEST_P(FxsimOver, pacingTakesAtLeastTheTimeOfTheCharacters)
{
    Connected plc(GetParam(), {"--baud", "9600"});
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(plc.ask(readD100, 12), zerosOfD100);
    EXPECT_GE(timer.elapsed(), 23) << "11 + 12 characters of 1.04 ms";
}

TEST_P(FxsimOver, sampleProgramMoves)
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

TEST_P(FxsimOver, commandsWorkWhileItRuns)
{
    Connected plc(GetParam());
    EXPECT_EQ(plc.process.command("poke 0x10C8 0x12 0x34 0x56 0x78"), "ok\n");
    EXPECT_EQ(plc.ask(readD100, 12), valueOfD100);
    EXPECT_EQ(plc.process.command("peek 0x10C8 4"), "10C8: 12 34 56 78\nok\n");
    EXPECT_TRUE(plc.process.command("stats").contains("  reads                         1\n"));
    EXPECT_EQ(plc.process.command("quit"), "ok\n");
    EXPECT_EQ(plc.process.waitEnd(), 0);
}

TEST_P(FxsimOver, endsCleanlyOnSigterm)
{
    Connected plc(GetParam(), {"--stats"});
    plc.ask(readD100, 12);
    EXPECT_EQ(plc.process.terminate(), 0);
    EXPECT_TRUE(plc.process.restOfOutput().contains("  exchanges                     1\n"));
    EXPECT_FALSE(QFileInfo(plc.folder.filePath("plc")).isSymLink()) << "the link is gone";
}

TEST_P(FxsimOver, endsCleanlyOnSigint)
{
    Connected plc(GetParam());
    EXPECT_EQ(plc.process.interrupt(), 0);
}

TEST_P(FxsimOver, traceGoesToAFile)
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

TEST(FxsimTcp, servesSeveralClientsTogetherAndInTurn)
{
    FxsimProcess process({"--tcp", "0", "--baud", "0", "--program", "none"});
    const QString name = process.waitReady();
    TcpEnd first(name);
    TcpEnd second(name);
    second.send(readD100.left(5));
    EXPECT_EQ(first.ask(writeD100, 1), "\x06");
    second.send(readD100.mid(5));
    EXPECT_EQ(second.take(12), valueOfD100);
    TcpEnd third(name);
    EXPECT_EQ(third.ask(readD100, 12), valueOfD100);
}

TEST(FxsimTcp, portThatIsTakenIsToldAndNothingIsLeftBehind)
{
    FxsimProcess process({"--tcp", "0"});
    const QString name = process.waitReady();
    const FailedStart second = runToEnd({"--tcp", name.section(':', 2)});
    EXPECT_EQ(second.exitCode, 3);
    EXPECT_EQ(second.errors, "fxsim: " + name.toUtf8() + ": The bound address is already in use\n");
    EXPECT_EQ(second.output, "");
}

TEST(FxsimPty, isRawFromTheStart)
{
    FxsimProcess process({"--baud", "0", "--program", "none"});
    PtyEnd host(process.waitReady());
    ASSERT_TRUE(host.isOpen());
    process.command("poke 0x10C8 0x0D 0x0A 0x04 0x11");
    EXPECT_EQ(host.ask(readD100, 12), "\x02"
                                      "0D0A0411"
                                      "\x03"
                                      "AE");
}

TEST(FxsimPty, hostsMayComeAndGo)
{
    FxsimProcess process({"--baud", "0", "--program", "none"});
    const QString device = process.waitReady();
    for (int visit = 0; visit < 3; ++visit) {
        PtyEnd host(device);
        EXPECT_EQ(host.ask(readD100, 12), zerosOfD100) << "visit " << visit;
    }
}

TEST(FxsimPty, linkLeftBehindIsReplacedAndAFileIsNot)
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("plc");
    QFile::link("/dev/pts/99999", link);
    FxsimProcess process({"--link", link});
    const QString device = process.waitReady().section(' ', 0, 0);
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), device);
    const QString file = folder.filePath("file");
    QFile(file).open(QIODevice::WriteOnly);
    const FailedStart second = runToEnd({"--link", file});
    EXPECT_EQ(second.exitCode, 3);
    EXPECT_EQ(second.errors, "fxsim: cannot make the link " + file.toUtf8() + ": File exists\n");
    EXPECT_TRUE(QFileInfo(file).isFile());
}

TEST(FxsimSerial, answersOnADevice)
{
    PtyEnd host;
    FxsimProcess plc({"--serial", host.otherEnd(), "--program", "none"});
    EXPECT_EQ(plc.waitReady(), host.otherEnd());
    EXPECT_EQ(host.ask(writeD100, 1), "\x06");
    EXPECT_EQ(host.ask(readD100, 12), valueOfD100);
    EXPECT_EQ(plc.terminate(), 0);
}

TEST(FxsimSerial, deviceThatGoesAwayIsAwaited)
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

TEST(FxsimSerial, missingDeviceIsNamed)
{
    const FailedStart start = runToEnd({"--serial", "/dev/nonexistent"});
    EXPECT_EQ(start.exitCode, 3);
    EXPECT_EQ(start.errors, "fxsim: /dev/nonexistent: No such file or directory\n");
}

TEST(FxsimLinks, ptyAndTcpServeOnePlc)
{
    FxsimProcess process({"--pty", "--tcp", "0", "--baud", "0", "--program", "none"});
    const QStringList names = process.waitReady().split(", ");
    ASSERT_EQ(names.size(), 2);
    PtyEnd terminal(names[0]);
    TcpEnd socket(names[1]);
    EXPECT_EQ(terminal.ask(writeD100, 1), "\x06");
    EXPECT_EQ(socket.ask(readD100, 12), valueOfD100);
}

TEST(FxsimFiles, memoryIsSavedAndLoaded)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("plc.hex");
    FxsimProcess first({"--program", "none", "--save", path});
    first.waitReady();
    EXPECT_EQ(first.command("poke 0x10C8 1 2"), "ok\n");
    EXPECT_EQ(first.terminate(), 0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), ":1010C00000000000000000000102000000000000"
                              "1D\n:00000001FF\n");
    FxsimProcess second({"--program", "none", "--load", path});
    second.waitReady();
    EXPECT_EQ(second.command("peek 0x10C8 3"), "10C8: 01 02 00\nok\n");
    EXPECT_EQ(second.command("poke 0x10C8 9"), "ok\n");
    EXPECT_EQ(second.command("power-cycle 0"), "ok\n");
    EXPECT_EQ(second.command("peek 0x10C8"), "10C8: 01\nok\n") << "as it was loaded";
}

TEST(FxsimFiles, scriptRuns)
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

TEST(FxsimFiles, badFilesAreNamedBeforeAnythingStarts)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("bad");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"steps\": [{}]}");
    file.close();
    const QByteArray name = path.toUtf8();
    const FailedStart script = runToEnd({"--program", path});
    EXPECT_EQ(script.exitCode, 7);
    EXPECT_EQ(script.errors, "fxsim: " + name +
                                 ": step 1: one of \"set\", \"add\", \"toggle\" and \"copy\" says "
                                 "what\n");
    const FailedStart image = runToEnd({"--load", path});
    EXPECT_EQ(image.exitCode, 7);
    EXPECT_EQ(image.errors,
              "fxsim: " + name + ": line 1: a record is \":\" and pairs of hex digits\n");
    EXPECT_EQ(runToEnd({"--load", "/nonexistent/plc.hex"}).exitCode, 7);
    EXPECT_EQ(runToEnd({"--save", "/nonexistent/plc.hex"}).exitCode, 7);
    EXPECT_EQ(runToEnd({"--trace", "/nonexistent/trace"}).exitCode, 7);
}

TEST(FxsimControl, socketTakesCommandsFromSeveralClients)
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

TEST(FxsimControl, socketInUseAndForeignFilesStay)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("control");
    FxsimProcess process({"--control", path});
    process.waitReady();
    const FailedStart second = runToEnd({"--control", path});
    EXPECT_EQ(second.exitCode, 3);
    EXPECT_EQ(second.errors, "fxsim: control socket " + path.toUtf8() + ": the file exists\n");
    EXPECT_EQ(process.command("peek 0"), "0000: 00\nok\n");
}

TEST(FxsimControl, socketLeftBehindIsReplaced)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("control");
    {
        FxsimProcess killed({"--control", path});
        killed.waitReady();
    }
    EXPECT_TRUE(QFileInfo::exists(path)) << "a killed simulator leaves its socket behind";
    FxsimProcess process({"--control", path});
    EXPECT_NE(process.waitReady(), "");
}

TEST(FxsimControl, tellGivesOneCommand)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("control");
    FxsimProcess process({"--control", path, "--program", "none"});
    process.waitReady();
    EXPECT_EQ(runToEnd({"--control", path, "--tell", "poke 0x1000 1 2"}).exitCode, 0);
    const FailedStart peek = runToEnd({"--control", path, "--tell", "peek 0x1000 2"});
    EXPECT_EQ(peek.exitCode, 0);
    EXPECT_EQ(peek.output, "1000: 01 02\n");
    const FailedStart refused = runToEnd({"--control", path, "--tell", "jump"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.errors, "fxsim: there is no command 'jump'; help lists them\n");
    EXPECT_EQ(runToEnd({"--control", path, "--tell", "quit"}).exitCode, 0);
    EXPECT_EQ(process.waitEnd(), 0);
    EXPECT_EQ(runToEnd({"--control", path, "--tell", "help"}).exitCode, 3);
    EXPECT_EQ(runToEnd({"--tell", "help"}).exitCode, 2);
}

TEST(FxsimControl, inputThatEndsDoesNotEndTheSimulator)
{
    FxsimProcess process({"--baud", "0", "--program", "none"});
    PtyEnd host(process.waitReady());
    process.closeInput();
    EXPECT_EQ(host.ask(readD100, 12), zerosOfD100);
    EXPECT_EQ(process.terminate(), 0);
}

struct UsageCase
{
    QStringList arguments;
    QByteArray message;
};

TEST(FxsimUsage, badArgumentsGetOneLineAndExitCode2)
{
    const UsageCase cases[] = {
        {{"--tcp", "99999"},
         "--tcp '99999' does not do; wanted is [ADDRESS:]PORT with a port of 0 to 65535, as in "
         "127.0.0.1:8888"},
        {{"--tcp", "plc.example:1"},
         "--tcp 'plc.example:1' does not do; wanted is [ADDRESS:]PORT with a port of 0 to 65535, "
         "as in 127.0.0.1:8888"},
        {{"--baud", "100"}, "--baud: 100 is no speed; wanted is 0 or 300 to 4000000"},
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

TEST(FxsimUsage, helpAndVersionAreNoFaults)
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

TEST(FxsimUsage, manualAndCompletionKnowEveryOptionAndFault)
{
    const auto contents = [](const char* path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
        return QString::fromUtf8(file.readAll());
    };
    const QString manual = contents(FX_SOURCE_FOLDER "/simulator/fxsim.1").remove('\\');
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
