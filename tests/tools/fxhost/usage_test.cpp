// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Mistakes at the command line: one clear line that says what and where, a documented exit code,
// and nothing sent.

#include "tests/tools/support/programs.h"

#include <QDir>

#include <gtest/gtest.h>

#include <array>

#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace tool_tests;

namespace {

struct Mistake
{
    int exitCode;
    const char* commandLine;
    std::string says;
};

const Mistake mistakes[] = {
    {2, "read X18", "'X18' has an invalid number; X is octal: after X17 comes X20"},
    {2, "write X0=1", "'X0=1': X registers are read-only"},
    {2, "write M0=2", "value '2' is not a bit; use 0, 1, on or off"},
    {2, "write D20=70000",
     "value '70000' does not fit in 16 bits: -32768 to 65535; for 32 bits use D20:2=70000 or "
     "D20=70000 --as long"},
    {2, "write D40=3,14",
     "'D40=3,14' names 1 register, but 2 values take 2; use D40:2=3,14; a decimal number has a "
     "point: "
     "D40=3.14 --as float"},
    {2, "write D8200=99", "a write to D8200 changes D72; to write there anyway use --force"},
    {2, "write 2#D100=6",
     "'2#D100' names another station than 1, the one of this link; each PLC needs a link of its "
     "own"},
    {2, "write D0", "'D0' has no value; use for example D100=5 or M0=on"},
    {2, "write D7999:2=1,2", "'D7999:2' is out of range: D0 to D7999 or D8000 to D8255"},
    {2, "read D0:3 --as float",
     "D0:3: each value takes two words, so the number of words must be even"},
    {2, "recipe upload - M0:8", "M0:8: recipes hold words, not bits"},
    {3, "--link pty:/dev/pts/none read D0", "cannot open /dev/pts/none: No such file or directory"},
    {3, "--link tcp:127.0.0.1:1 read D0", "cannot connect to 127.0.0.1 port 1: Connection refused"},
    {3, "--link serial:/dev/null read D0", "cannot open /dev/null: not a serial port"},
    {2, "--link tcp:127.0.0.1 -b 9600 read D0",
     "link 'tcp:127.0.0.1:8888': no setting 'baud' for this kind of link; it has: port, station, "
     "words"},
    {2, "-b 9601 read D0", "no serial port runs at 9601 baud; did you mean 9600?"},
    {2, "--link serial:x -P mark read D0", "invalid --parity 'mark': use even, odd or none"},
    {2, "read D0 --foo", "unknown option '--foo'; see fxhost read --help"},
    {2, "read D0 --as octal",
     "--as: unknown format 'octal': expected signed, unsigned, hex, bin, bcd, long, ulong, "
     "float or text; see fxhost read --help"},
    {2, "read", "address missing; for example D100:32, or -t D -r 100 -c 32"},
    {2, "watch D0 -c 3", "-c needs -r, the number of the first register: -r 100 -c 8, or D100:8"},
    {2, "read -t X", "-t needs -r, the number of the first register: -t X -r 100"},
    {2, "write D0:3=1", "'D0:3=1' names 3 registers, but 1 value takes 1; use D0:1=1"},
    {2, "write -r 0 D5=1", "'D5=1': with -r give only values"},
    {7, "--library /no/such/library.so types",
     "cannot load the driver library: /no/such/library.so: No such file or directory; set "
     "FX_DRIVER to its path"},
    {7, "--library " FX_QT6_DRIVER_FILE " types",
     FX_QT6_DRIVER_FILE " was built with Qt 6; fxhost needs one built with Qt 5"},
    {2, "dump D100:4", "'D100:4' is an address; name a file first"},
    {7, "dump /no/such/place.csv D0", "/no/such/place.csv: No such file or directory"},
    {7, "dump /dev/full D0", "/dev/full: not a regular file"},
    {7, "recipe upload /dev/full D0", "/dev/full: not a regular file"},
    {7, "recipe upload /no/such/place.csv D0", "/no/such/place.csv: No such file or directory"},
    {7, "record /no/such/place.jsonl D0", "/no/such/place.jsonl: No such file or directory"},
    {7, "restore /no/such/file", "/no/such/file: No such file or directory"},
    {2, "series D0 --step 0", "invalid --step 0: use 1 or more, or -2 for 32-bit values"},
    {2, "xyzzy", "unknown command 'xyzzy'; see fxhost --help"},
    {2, "rea D0", "unknown command 'rea'; did you mean 'read'?"},
    {2, "recipe downlaod x", "unknown command 'downlaod'; did you mean 'download'?"},
    {2, "help wirte", "unknown command 'wirte'; did you mean 'write'?"},
    {2, "read D0 --jsno", "unknown option '--jsno'; did you mean '--json'?"},
    {2, "types D0", "unexpected argument 'D0'; see fxhost types --help"},
    {2, "write", "ASSIGNMENT missing; see fxhost write --help"},
    {2, "", "command missing; see fxhost --help"},
    {2, "read D0 --as", "--as: FORMAT missing; see fxhost read --help"},
    {2, "read D0 --json --csv", "--json cannot be used with --csv; see fxhost read --help"},
    {2, "read D0 --json=2", "--json takes no value; see fxhost read --help"},
    {2, "read D0 -b fast",
     "--baud: 'fast' is not a whole number from 50 to 4000000; see fxhost read --help"},
    {2, "read D0 -o 1", "--timeout: '1' is not a time from 10 ms to 60 s; see fxhost read --help"},
    {2, "plan D0 --turnaround x",
     "--turnaround: 'x' is not a number from 0 to 60000; see fxhost plan --help"},
    {2, "read D0 --plan best", "--plan: 'best' is not shortest or given; see fxhost read --help"},
    {2, "tags export tags.csv", "--to missing; see fxhost tags export --help"},
    {2, "log D0 --deadband -1",
     "--deadband: '-1' is not a number of 0 or more; see fxhost log --help"},
    {2, "log D0 --rotate-size ten",
     "--rotate-size: 'ten' is not a size; use 50000, 500k, 10M or 1G; see fxhost log --help"},
    {2, "series D0 --step x",
     "--step: 'x' is not a whole number from -2 to 65536; see fxhost series --help"},
    {2, "read -r 0 -c 0",
     "--registers: '0' is not a whole number from 1 to 65536; see fxhost read --help"},
    {2, "read D0 --link sim: --plc x", "--link cannot be used with --plc; see fxhost read --help"},
    {2, "read D0 --link sim: --line 9X1",
     "link 'sim:': no setting 'line' for this kind of link; it has: baud, faults, station, words"},
};

}  // namespace

TEST(Usage, AMistakeIsNamedInOneLine)
{
    for (const Mistake& mistake : mistakes) {
        const Ended ended = fxhost(QString(mistake.commandLine).split(' ', Qt::SkipEmptyParts));
        EXPECT_EQ(ended.code, mistake.exitCode) << mistake.commandLine;
        EXPECT_EQ(ended.err, "fxhost: " + mistake.says + "\n") << mistake.commandLine;
    }
}

TEST(Usage, ABadFileIsNamedWithTheLine)
{
    struct
    {
        const char* command;
        const char* content;
        std::string says;
    } const files[] = {
        {"restore", "address,value\nD0,1\nD1,x\n",
         ", line 3: value 'x' is not a number; use 123, -5, 0x1F or 0b101"},
        {"restore", "X0,1\n", ": X0 is read-only; remove it"},
        {"recipe download", "", ": no registers in this file"},
        {"compare", "# nothing was read\n", ": no registers in this file"},
        {"replay", "{}\n", ", line 1: not a recording made by fxhost"},
    };
    const QTemporaryDir folder;
    for (const auto& bad : files) {
        const QString file = newFile(folder, "bad", bad.content);
        const Ended ended = fxhost(QString(bad.command).split(' ') + QStringList{file});
        EXPECT_EQ(ended.code, 7) << bad.command;
        EXPECT_EQ(ended.err, "fxhost: " + file.toStdString() + bad.says + "\n");
    }
}

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
    const QVector<QStringList> commands{{"write", "D500=1"},
                                        {"restore", file, "--yes"},
                                        {"recipe", "download", file},
                                        {"recipe", "upload", folder.filePath("new"), "D0"},
                                        {"doctor"}};
    for (const QStringList& command : commands) {
        const Ended ended = fxhost(command, withLink({}));
        EXPECT_EQ(ended.code, 2) << command[0].toStdString();
        EXPECT_EQ(
            ended.err,
            "fxhost: no PLC named: use --link, --plc or FX_LINK; --link sim: is a simulated PLC\n");
        EXPECT_EQ(fxhost(QStringList{"--link", "sim:"} + command, withLink({})).code, 0)
            << command[0].toStdString();
    }
}

TEST(UnnamedLink, ASimulatedPlcSaysSoOnce)
{
    const char* const remark = "fxhost: this is a simulated PLC; name a real one with --link\n";
    EXPECT_EQ(fxhost({"watch", "D0", "-n", "2", "-l", "1"}, withLink({})).err, remark);
    EXPECT_EQ(fxhost({"read", "D0", "-q"}, withLink({})).err, "");
    const RunningSimulator plc(Road::Tcp);
    EXPECT_EQ(fxhost({"--link", plc.link(), "read", "D0"}).err, "");
    EXPECT_EQ(fxhost({"read", "D0"}, withLink(plc.link())).err, "");
    EXPECT_EQ(fxhost({"--link", "sim:", "read", "D0"}, withLink(plc.link())).err, remark);
}

TEST(Usage, FullOutputIsNoSuccess)
{
    for (const char* const command :
         {"types", "help", "series D0 -n 65536", "watch D0 -l 0", "monitor D0 -n 0", "stats D0"}) {
        ChildProcess shell;
        shell.start("/bin/sh", {"-c", QStringLiteral("FX_DRIVER=%1 %2 -q %3 > /dev/full")
                                          .arg(FX_DRIVER_FILE, FXHOST_FILE, command)});
        ASSERT_TRUE(shell.waitForFinished()) << command;
        EXPECT_EQ(shell.exitCode(), 7) << command;
        EXPECT_EQ(shell.readAllStandardError(),
                  "fxhost: could not write all output: No space left on device\n")
            << command;
    }
}

// The link got the number of standard error, and the remark that M1536 is C0 was sent to the PLC.
TEST(Usage, WithoutStandardStreamsNothingIsPrintedToThePlc)
{
    RunningSimulator plc(Road::PseudoTerminal, quickPlc);
    ChildProcess shell;
    shell.start("/bin/sh",
                {"-c", QStringLiteral("FX_DRIVER=%1 %2 --link %3 read M1536 0<&- 1>&- 2>&-")
                           .arg(FX_DRIVER_FILE, FXHOST_FILE, plc.link())});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 7);
    EXPECT_FALSE(plc.command("stats").contains("junk"));
}

TEST(Usage, ServingIntoAFullFileIsNoSuccess)
{
    const QTemporaryDir folder;
    ChildProcess shell;
    shell.start("/bin/sh",
                {"-c", QStringLiteral("FX_DRIVER=%1 %2 --link sim: --tags %3 serve >/dev/full")
                           .arg(FX_DRIVER_FILE, FXHOST_FILE,
                                newFile(folder, "t.csv", "name,address\na,D0\n"))});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 7);
    EXPECT_EQ(shell.readAllStandardError(),
              "fxhost: could not write all output: No space left on device\n");
}

// A file of that name would have got another one.
TEST(Usage, AnArgumentThatIsNotTextIsAMistake)
{
    ChildProcess shell;
    shell.start(
        "/bin/bash",
        {"-c",
         QStringLiteral("FX_DRIVER=%1 %2 dump $'a\\xFF.csv' D0").arg(FX_DRIVER_FILE, FXHOST_FILE)});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 2);
    EXPECT_EQ(shell.readAllStandardError(),
              "fxhost: argument 2 is not UTF-8: 'a\xEF\xBF\xBD.csv'\n");
}

// "--link $PRESS1" with a variable that is not set: FX_LINK names another PLC.
TEST(Usage, AnEmptyNameIsNotTheDefault)
{
    const RunningSimulator plc(Road::Tcp, quickPlc);
    for (const char* const option : {"--link", "--plc", "--config", "--tags"}) {
        const Ended ended = fxhost({"write", "D0=1", option, ""}, withLink(plc.link()));
        EXPECT_EQ(ended.code, 2) << option;
        EXPECT_EQ(ended.err, std::string("fxhost: ") + option +
                                 ": the value is empty; see fxhost write --help\n");
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
        EXPECT_EQ(fxhost({"--link", link, "read", "D0"}).code, 0) << link;
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

// What keeps others out does not keep out an administrator, whose right to that is taken away.
TEST(Usage, APortInUseNamesWhoUsesIt)
{
    int far = -1;
    int near = -1;
    std::array<char, 64> name = {};
    ASSERT_EQ(openpty(&far, &near, name.data(), nullptr, nullptr), 0);
    ASSERT_EQ(ioctl(near, TIOCEXCL), 0);
    const QStringList asUser =
        geteuid() == 0 ? QStringList{"setpriv", "--bounding-set=-sys_admin"} : QStringList{"env"};
    ChildProcess host;
    host.setProcessEnvironment(withLink(QString("serial:") + name.data()));
    host.start(asUser[0], asUser.mid(1) + QStringList{FXHOST_FILE, "read", "D0", "-q"});
    ASSERT_TRUE(host.waitForFinished());
    close(near);
    close(far);
    EXPECT_EQ(host.exitCode(), 3);
    EXPECT_EQ(host.readAllStandardError(),
              QStringLiteral("fxhost: cannot open %1: in use by fxhost_tests (process %2); stop "
                             "that first\n")
                  .arg(name.data())
                  .arg(getpid())
                  .toUtf8());
}

// The simulator has the pseudo-terminal open too, but is not what to stop.
TEST(Usage, APortInUseByAnotherHostNamesThatHost)
{
    const RunningSimulator plc(Road::PseudoTerminal, {"--baud", "0"});
    ChildProcess first;
    first.setProcessEnvironment(withLink(plc.link()));
    first.start(FXHOST_FILE, {"watch", "D10", "-q"});
    ASSERT_TRUE(first.waitForReadyRead());
    const Ended second = fxhost({"--link", plc.link(), "read", "D0"});
    EXPECT_EQ(second.code, 3);
    EXPECT_TRUE(holds(second.err, QString(": in use by fxhost (process %1); stop that first\n")
                                      .arg(first.processId())
                                      .toStdString()))
        << second.err;
    first.terminate();
    ASSERT_TRUE(first.waitForFinished());
}

namespace {

// Where a file gets no more than so many blocks, of 512 bytes or 1024.
Ended onFullDisk(int blocks, const QStringList& arguments)
{
    const QString limited =
        QStringLiteral("trap '' XFSZ; ulimit -f %1; FX_LINK=sim: FX_DRIVER=%2 exec \"$@\"")
            .arg(QString::number(blocks), FX_DRIVER_FILE);
    ChildProcess shell;
    shell.start("/bin/sh", QStringList{"-c", limited, "sh", FXHOST_FILE} + arguments);
    Ended ended;
    if (shell.waitForFinished())
        ended.code = shell.exitCode();
    ended.out = shell.readAllStandardOutput().toStdString();
    ended.err = shell.readAllStandardError().toStdString();
    return ended;
}

}  // namespace

TEST(FullDisk, IsNamedAndLeavesTheOlderFile)
{
    const QTemporaryDir folder;
    const QVector<QStringList> commands = {{"dump"}, {"record"}, {"recipe", "upload"}};
    for (const int blocks : {0, 1}) {
        for (const QStringList& command : commands) {
            const QStringList rest = {"D0:512", "--force", "-q"};
            const QString file = newFile(folder, "older", "older");
            const Ended ended = onFullDisk(blocks, command + QStringList(file) + rest);
            EXPECT_EQ(ended.code, 7) << command[0].toStdString();
            EXPECT_EQ(ended.err,
                      "fxhost: " + file.toStdString() +
                          ": File too large; the old file is "
                          "unchanged, and what was read is lost: make room or name another "
                          "file\n");
            EXPECT_EQ(contentOf(file), "older") << command[0].toStdString();
            const QString begun = folder.filePath("new");
            EXPECT_EQ(onFullDisk(blocks, command + QStringList(begun) + rest).code, 7);
            const bool keepsWhatArrived = blocks > 0 && command[0] != "recipe";
            EXPECT_EQ(QFile::remove(begun), keepsWhatArrived) << command[0].toStdString();
            EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("older"));
        }
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

TEST(Usage, LettersSayAnAddress)
{
    EXPECT_EQ(fxhost({"plan", "-t", "X", "-r", "17", "-c", "2", "--csv", "-q"}).out,
              fxhost({"plan", "X17:2", "--csv", "-q"}).out);
    EXPECT_EQ(fxhost({"plan", "-r", "100", "--csv", "-q"}).out,
              fxhost({"plan", "D100", "--csv", "-q"}).out);
}
