// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Mistakes at the command line: one clear line that says what and where, a documented exit code,
// and nothing sent.

#include "tests/tools/support/programs.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace tool_tests;

namespace {

struct Mistake
{
    const char* name;
    QStringList arguments;
    int exitCode;
    const char* says;
};

void PrintTo(const Mistake& mistake, std::ostream* out)
{
    *out << mistake.name;
}

}  // namespace

class Mistakes : public testing::TestWithParam<Mistake>
{};

TEST_P(Mistakes, AreNamedInOneLine)
{
    const Ended ended = fxhost(GetParam().arguments);
    EXPECT_EQ(ended.code, GetParam().exitCode);
    EXPECT_EQ(ended.err, std::string(GetParam().says) + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, Mistakes,
    testing::Values(
        Mistake{"OctalDigit",
                {"read", "X18"},
                2,
                "fxhost: 'X18' has an invalid number; use X0 to X377 in octal"},
        Mistake{"InputWritten", {"write", "X0=1"}, 2, "fxhost: 'X0=1': X registers are read-only"},
        Mistake{
            "NoBit", {"write", "M0=2"}, 2, "fxhost: value '2' is not a bit; use 0, 1, on or off"},
        Mistake{"TooLarge",
                {"write", "D0=5000000000"},
                2,
                "fxhost: value '5000000000' does not fit in 32 bits"},
        Mistake{"NothingAssigned",
                {"write", "D0"},
                2,
                "fxhost: 'D0' has no value; use for example D100=5 or M0=on"},
        Mistake{"WordsPastTheEnd",
                {"write", "D7999=1,2"},
                2,
                "fxhost: 'D7999:2' is out of range: D0 to D7999 in decimal"},
        Mistake{"OddFloat",
                {"read", "D0:3", "--as", "float"},
                2,
                "fxhost: D0:3: each value takes two words, so the number of words must be even"},
        Mistake{"BitInARecipe",
                {"recipe", "upload", "-", "M0:8"},
                2,
                "fxhost: M0:8: recipes hold words, not bits"},
        Mistake{"NoSuchTerminal",
                {"--link", "pty:/dev/pts/none", "read", "D0"},
                3,
                "fxhost: cannot open /dev/pts/none: No such file or directory"},
        Mistake{"NobodyListens",
                {"--link", "tcp:127.0.0.1:1", "read", "D0"},
                3,
                "fxhost: cannot connect to 127.0.0.1 port 1: Connection refused"},
        Mistake{"NoSerialPort",
                {"--link", "serial:/dev/null", "read", "D0"},
                3,
                "fxhost: cannot open /dev/null: not a serial port"},
        Mistake{"SpeedOfATcpLink",
                {"--link", "tcp:127.0.0.1", "-b", "9600", "read", "D0"},
                2,
                "fxhost: link 'tcp:127.0.0.1:8888': no setting 'baud' for this kind of link; it "
                "has: port, station, words"},
        Mistake{"SpeedOfNoPort",
                {"-b", "9601", "read", "D0"},
                2,
                "fxhost: no serial port runs at 9601 baud; did you mean 9600?"},
        Mistake{"UnknownParity",
                {"-P", "mark", "read", "D0"},
                2,
                "fxhost: --parity: mark not in {even,odd,none}; see fxhost --help"},
        Mistake{"UnknownOption",
                {"read", "D0", "--foo"},
                2,
                "fxhost: The following argument was not expected: --foo; see fxhost --help"},
        Mistake{"UnknownFormat",
                {"read", "D0", "--as", "octal"},
                2,
                "fxhost: --as: unknown format 'octal': expected dec, signed, hex, bin, long or "
                "float; see fxhost --help"},
        Mistake{"TimeOutOfRange",
                {"read", "D0", "-o", "90s"},
                2,
                "fxhost: --timeout: Value 90000 not in range 10 to 60000; see fxhost --help"},
        Mistake{"NoAddressAtAll",
                {"read"},
                2,
                "fxhost: address missing; for example D100:32, or -t D -r 100 -c 32"},
        Mistake{"CountWithoutFirst",
                {"watch", "D0", "-c", "3"},
                2,
                "fxhost: -c needs -r, the number of the first register: -r 100 -c 8, or D100:8"},
        Mistake{"TypeWithoutFirst",
                {"read", "-t", "X"},
                2,
                "fxhost: -t needs -r, the number of the first register: -t X -r 100"},
        Mistake{"MoreRegistersThanValues",
                {"write", "D0:3=1"},
                2,
                "fxhost: 'D0:3=1': the address names 3 registers, the values need 1"},
        Mistake{"AssignmentBehindLetters",
                {"write", "-r", "0", "D5=1"},
                2,
                "fxhost: 'D5=1': with -r give only values"},
        Mistake{"NoSuchLibrary",
                {"--library", "/no/such/library.so", "types"},
                7,
                "fxhost: cannot load the driver library: /no/such/library.so: No such file or "
                "directory; set its path with --library or FX_DRIVER"},
        Mistake{"LibraryOfAnotherQt",
                {"--library", FX_QT6_DRIVER_FILE, "types"},
                7,
                "fxhost: " FX_QT6_DRIVER_FILE
                " was built with Qt 6; fxhost needs one built with Qt 5"},
        Mistake{"FileForgotten",
                {"dump", "D100:4"},
                2,
                "fxhost: 'D100:4' is an address; name a file first"},
        Mistake{"NoPlaceForADump",
                {"dump", "/no/such/place.csv", "D0"},
                7,
                "fxhost: /no/such/place.csv: No such file or directory"},
        Mistake{"NoPlaceForARecipe",
                {"recipe", "upload", "/no/such/place.csv", "D0"},
                7,
                "fxhost: /no/such/place.csv: No such file or directory"},
        Mistake{"NoPlaceForARecording",
                {"record", "/no/such/place.jsonl", "D0"},
                7,
                "fxhost: /no/such/place.jsonl: No such file or directory"},
        Mistake{"NoSuchFile",
                {"restore", "/no/such/file"},
                7,
                "fxhost: /no/such/file: No such file or directory"}),
    [](const auto& row) { return row.param.name; });

namespace {

struct BadFile
{
    const char* name;
    QStringList command;  // the file's name follows
    const char* content;
    const char* says;  // behind the file's name
};

void PrintTo(const BadFile& file, std::ostream* out)
{
    *out << file.name;
}

}  // namespace

class BadFiles : public testing::TestWithParam<BadFile>
{};

TEST_P(BadFiles, AreNamedWithTheLine)
{
    const QTemporaryDir folder;
    const QString file = newFile(folder, "bad", GetParam().content);
    const Ended ended =
        fxhost(QStringList{"--link", "sim:"} + GetParam().command + QStringList{file});
    EXPECT_EQ(ended.code, 7);
    EXPECT_EQ(ended.err, "fxhost: " + file.toStdString() + GetParam().says + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Files, BadFiles,
    testing::Values(
        BadFile{"NoNumber",
                {"restore"},
                "address,value\nD0,1\nD1,x\n",
                ", line 3: value 'x' is not a number; use 123, -5, 0x1F, 0b101 or 1.5"},
        BadFile{"AnInput", {"restore"}, "X0,1\n", ": X0 is read-only; remove it"},
        BadFile{"NothingInARecipe", {"recipe", "download"}, "", ": no registers in this file"},
        BadFile{"OtherJson", {"replay"}, "{}\n", ", line 1: not a recording made by fxhost"}),
    [](const auto& row) { return row.param.name; });

namespace {

QProcessEnvironment withLink(const QString& link)
{
    QProcessEnvironment environment = hostEnvironment();
    environment.insert("FX_LINK", link);
    return environment;
}

}  // namespace

TEST(UnnamedLink, IsRefusedByWhatChangesOrJudgesAPlc)
{
    const QTemporaryDir folder;
    const QString file = newFile(folder, "values.csv", "D100,1\n");
    const QVector<QStringList> commands{{"write", "D0=1"},
                                        {"restore", file},
                                        {"recipe", "download", file},
                                        {"recipe", "upload", folder.filePath("new"), "D0"},
                                        {"doctor"}};
    for (const QStringList& command : commands) {
        const Ended ended = fxhost(command, withLink({}));
        EXPECT_EQ(ended.code, 2) << command[0].toStdString();
        EXPECT_EQ(ended.err, "fxhost: no PLC named: give --link or set FX_LINK; --link sim: is a "
                             "simulated PLC\n");
        EXPECT_EQ(fxhost(QStringList{"--link", "sim:"} + command, withLink({})).code, 0)
            << command[0].toStdString();
    }
}

TEST(UnnamedLink, ASimulatedPlcSaysSoOnce)
{
    const char* const remark = "fxhost: simulated PLC; --link names a real one\n";
    EXPECT_EQ(fxhost({"watch", "D0", "-n", "2", "-l", "1"}, withLink({})).err, remark);
    EXPECT_EQ(fxhost({"read", "D0", "-q"}, withLink({})).err, "");
    const RunningSimulator plc(Road::Tcp);
    EXPECT_EQ(fxhost({"--link", plc.link(), "read", "D0"}).err, "");
    EXPECT_EQ(fxhost({"read", "D0"}, withLink(plc.link())).err, "");
    EXPECT_EQ(fxhost({"--link", "sim:", "read", "D0"}, withLink(plc.link())).err, remark);
}

TEST(Usage, FullOutputIsNoSuccess)
{
    for (const char* const command : {"types", "watch D0 -l 0", "monitor D0 -n 0", "stats D0"}) {
        QProcess shell;
        shell.start("/bin/sh", {"-c", QStringLiteral("FX_DRIVER=%1 %2 -q %3 > /dev/full")
                                          .arg(FX_DRIVER_FILE, FXHOST_FILE, command)});
        ASSERT_TRUE(shell.waitForFinished()) << command;
        EXPECT_EQ(shell.exitCode(), 7) << command;
        EXPECT_EQ(shell.readAllStandardError(), "fxhost: could not write all output\n") << command;
    }
}

// The system takes a name without a leading slash for one in /dev.
TEST(Usage, ALinkMayBeNamedFromWhereTheUserStands)
{
    const RunningSimulator plc(Road::PseudoTerminal);
    const QTemporaryDir folder;
    QFile::link(plc.link().section(':', 1), folder.filePath("plc"));
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder.path());
    for (const char* const link : {"pty:plc", "serial:plc", "pty:./plc"})
        EXPECT_EQ(fxhost({"--link", link, "doctor"}).code, 0) << link;
    QDir::setCurrent(before);
}

TEST(Usage, APortThatIsMissingNamesThoseThatAreThere)
{
    const Ended ended = fxhost({"--link", "serial:/dev/no-such-port", "read", "D0"});
    EXPECT_EQ(ended.code, 3);
    EXPECT_TRUE(holds(ended.err, "fxhost: cannot open /dev/no-such-port: No such file or "
                                 "directory; available ports: "))
        << ended.err;
}

namespace {

// Where a file gets no more than so many blocks, of 512 bytes or 1024.
Ended onFullDisk(int blocks, const QStringList& arguments)
{
    const QString limited =
        QStringLiteral("trap '' XFSZ; ulimit -f %1; FX_LINK=sim: FX_DRIVER=%2 exec \"$@\"")
            .arg(QString::number(blocks), FX_DRIVER_FILE);
    QProcess shell;
    shell.start("/bin/sh", QStringList{"-c", limited, "sh", FXHOST_FILE} + arguments);
    Ended ended;
    if (shell.waitForFinished())
        ended.code = shell.exitCode();
    ended.out = shell.readAllStandardOutput().toStdString();
    ended.err = shell.readAllStandardError().toStdString();
    return ended;
}

}  // namespace

class FullDisk : public testing::TestWithParam<int>
{
protected:
    QTemporaryDir folder;
};

INSTANTIATE_TEST_SUITE_P(Blocks, FullDisk, testing::Values(0, 1));

TEST_P(FullDisk, AnUploadKeepsTheOlderRecipe)
{
    const QString file = newFile(folder, "recipe.csv", "address,value\nD0,7\n");
    const Ended ended =
        onFullDisk(GetParam(), {"recipe", "upload", file, "D0:512", "--force", "-q"});
    EXPECT_EQ(ended.code, 7);
    EXPECT_EQ(ended.err, "fxhost: " + file.toStdString() + ": File too large\n");
    EXPECT_EQ(contentOf(file), "address,value\nD0,7\n");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("recipe.csv"));
}

TEST_P(FullDisk, TheReasonIsNamed)
{
    for (const char* const command : {"dump", "record"}) {
        const QString file = folder.filePath(command);
        const Ended ended = onFullDisk(GetParam(), {command, file, "D0:512", "-q"});
        EXPECT_EQ(ended.code, 7) << command;
        EXPECT_EQ(ended.err, "fxhost: " + file.toStdString() + ": File too large\n") << command;
    }
}

TEST_P(FullDisk, ReplacingKeepsTheOlderFile)
{
    for (const char* const command : {"dump", "record"}) {
        const QString file = newFile(folder, command, "older");
        EXPECT_EQ(onFullDisk(GetParam(), {command, file, "D0:512", "--force", "-q"}).code, 7);
        EXPECT_EQ(contentOf(file), "older") << command;
    }
}

TEST(Usage, AFileIsReplacedOnlyWithForce)
{
    const QTemporaryDir folder;
    const QString file = newFile(folder, "plc", "older");
    for (const QStringList& command :
         {QStringList{"dump"}, QStringList{"record"}, QStringList{"recipe", "upload"}}) {
        const Ended ended = fxhost(command + QStringList{file, "D0", "-q"});
        EXPECT_EQ(ended.code, 7);
        EXPECT_EQ(ended.err,
                  "fxhost: " + file.toStdString() + " exists; replace it with --force\n");
        EXPECT_EQ(contentOf(file), "older");
        EXPECT_EQ(fxhost(command + QStringList{file, "D0", "-q", "--force"}).code, 0);
        EXPECT_NE(contentOf(file), "older");
        newFile(folder, "plc", "older");
    }
}

TEST(Usage, ADashIsStandardOutputAndNothingElseIsOnIt)
{
    EXPECT_EQ(fxhost({"dump", "-", "D7000:2", "--json"}).out, "address,value\nD7000,0\nD7001,0\n");
    EXPECT_EQ(fxhost({"recipe", "upload", "-", "D7000"}).out, "address,value\nD7000,0\n");
}

TEST(Usage, ADumpOfNothingLeavesNoFile)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("new.csv");
    EXPECT_EQ(onFullDisk(0, {"dump", file, "D0:4", "-q"}).code, 7);
    EXPECT_FALSE(QFile::exists(file));
}

TEST(Usage, WhatIsNoOrdinaryFileIsNamed)
{
    for (const QStringList& command : {QStringList{"dump"}, QStringList{"recipe", "upload"}}) {
        const Ended ended = fxhost(command + QStringList{"/dev/full", "D0"});
        EXPECT_EQ(ended.code, 7);
        EXPECT_EQ(ended.err, "fxhost: /dev/full: not a regular file\n");
    }
}

TEST(Usage, LettersSayAnAddress)
{
    EXPECT_EQ(fxhost({"plan", "-t", "X", "-r", "17", "-c", "2", "--csv", "-q"}).out,
              fxhost({"plan", "X17:2", "--csv", "-q"}).out);
    EXPECT_EQ(fxhost({"plan", "-r", "100", "--csv", "-q"}).out,
              fxhost({"plan", "D100", "--csv", "-q"}).out);
}
