// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Nothing is written that was not asked for: seen in the memory of the PLC itself.

#include "tests/tools/fxhost/host_terminal.h"
#include "tests/tools/support/programs.h"

#include <gtest/gtest.h>

using namespace tool_tests;

namespace {

class SafeWriting : public testing::Test
{
protected:
    RunningSimulator plc{Road::Tcp, quickPlc};
    QTemporaryDir folder;

    Ended run(const QStringList& arguments)
    {
        return fxhost(QStringList{"--link", plc.link()} + arguments);
    }

    // Two registers differ: D1 and D2.
    QString threeWords()
    {
        plc.command("poke 0x1000 1 0 9 0 9 0");
        return newFile(folder, "plc.csv", "address,value\nD0,1\nD1,2\nD2,3\n");
    }

    const QByteArray unchanged = "1000: 01 00 09 00 09 00\n";
    const QByteArray restored = "1000: 01 00 02 00 03 00\n";
};

}  // namespace

TEST_F(SafeWriting, ABitOfAWordLeavesTheOthers)
{
    plc.command("poke 0x10C8 0x01 0x80");
    EXPECT_EQ(run({"write", "D100.5=1", "--csv", "-q"}).out, "D100.5,0,1,verified\n");
    EXPECT_EQ(plc.command("peek 0x10C8 2"), "10C8: 21 80\n");
    EXPECT_EQ(run({"read", "D100.5", "D100.6", "K4M0", "--csv", "-q"}).out,
              "D100.5,1,\nD100.6,0,\nK4M0,0,\n");
}

TEST_F(SafeWriting, MemoryOfOthersIsLeftAloneWithoutForce)
{
    const QString file = newFile(folder, "alias.csv", "D8200,99\n");
    for (const QStringList& command :
         {QStringList{"write", "D8200=99"}, QStringList{"restore", file, "--yes"},
          QStringList{"recipe", "download", file}}) {
        const Ended ended = run(command);
        EXPECT_EQ(ended.code, 2) << command[0].toStdString();
        EXPECT_EQ(ended.err, "fxhost: a write to D8200 changes D72; to write there anyway use "
                             "--force\n");
    }
    EXPECT_EQ(plc.command("peek 0x1090 2"), "1090: 00 00\n");
    EXPECT_EQ(run({"write", "D8200=99", "--force", "--no-verify", "-q"}).code, 0);
    EXPECT_EQ(plc.command("peek 0x1090 2"), "1090: 63 00\n");
}

TEST_F(SafeWriting, RegistersThatAreReadElsewhereSaySo)
{
    const std::string reason = "D8010 is written at 0x0F14 on the wire, but read at 0x0E14";
    HostTerminal terminal({"--link", plc.link(), "write", "D8010=76"}, 60, 24);
    EXPECT_EQ(terminal.waitForEnd(), 1);
    EXPECT_TRUE(terminal.screen().lines().contains(
        "    D8010 is written at 0x0F14 on the wire, but read at"))
        << "broken at a blank:\n"
        << terminal.screen().text().toStdString();
    const Ended written = run({"write", "D8010=77", "-q"});
    EXPECT_EQ(written.code, 1);
    EXPECT_TRUE(holds(written.out, reason)) << written.out;
    const QString file = newFile(folder, "special.csv", "D8010,78\n");
    EXPECT_TRUE(holds(run({"restore", file, "--yes", "-q"}).err, reason));
    EXPECT_TRUE(holds(run({"recipe", "download", file, "-q"}).err, reason));
}

TEST_F(SafeWriting, ADownloadedRecipeIsReadBack)
{
    // What is written to D2 shows at D0 too.
    const RunningSimulator mirroring(Road::Tcp,
                                     quickPlc + QStringList{"--mirror", "0x1004:0x1000:2"});
    const QStringList command = {"--link", mirroring.link(), "recipe", "download",
                                 newFile(folder, "recipe.csv", "D0,5\nD1,6\nD2,7\n")};
    const Ended ended = fxhost(command);
    EXPECT_EQ(ended.code, 1);
    EXPECT_TRUE(holds(ended.out, "  3 registers written to the PLC and read back\n")) << ended.out;
    EXPECT_EQ(ended.err, "fxhost: written, but read back with another value: D0; does the program "
                         "in the PLC write there?\n");
    const Ended unverified = fxhost(command + QStringList("--no-verify"));
    EXPECT_EQ(unverified.code, 0);
    EXPECT_TRUE(holds(unverified.out, "  3 registers written to the PLC\n")) << unverified.out;
}

TEST_F(SafeWriting, ProgramsGetValuesAsReadHasThem)
{
    const Ended ended = run({"write", "D0:2=5,-6", "D100.5=1", "D7=0x1F", "--json"});
    for (const char* const part :
         {R"("old":[0,0],"new":[5,-6],)", R"("old":0,"new":1,)", R"("old":0,"new":31,)"})
        EXPECT_TRUE(holds(ended.out, part)) << ended.out;
    const RunningSimulator silent(Road::Tcp, {"--baud", "0", "--faults", "silence=1"});
    const Ended unread = fxhost(
        {"--link", silent.link(), "-o", "20", "--retries", "0", "write", "D100.5=1", "--json"});
    EXPECT_TRUE(holds(unread.out, R"("type":"D","new":1,"result")")) << unread.out;
}

TEST_F(SafeWriting, CompareShowsWhatDiffers)
{
    const QString file = threeWords();
    const Ended ended = run({"compare", file, "--csv", "-q"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.out, "D1,9,2,\nD2,9,3,\n");
    EXPECT_EQ(run({"restore", file, "--yes", "-q"}).code, 0);
    const Ended alike = run({"compare", file});
    EXPECT_EQ(alike.code, 0);
    EXPECT_EQ(alike.out, "  " + file.toStdString() + ": no difference in 3 registers\n");
}

TEST_F(SafeWriting, RestoreShowsAndWritesNothingUnasked)
{
    const QString file = threeWords();
    const Ended dry = run({"restore", file, "--dry-run", "--csv", "-q"});
    EXPECT_EQ(dry.code, 0);
    EXPECT_EQ(dry.out, "D1,9,2,\nD2,9,3,\n");
    const Ended unasked = run({"restore", file, "-q"});
    EXPECT_EQ(unasked.code, 2);
    EXPECT_TRUE(holds(unasked.err, "Write 2 registers to ")) << unasked.err;
    EXPECT_TRUE(holds(unasked.err, "Standard input is not a terminal; use --yes")) << unasked.err;
    EXPECT_EQ(plc.command("peek 0x1000 6"), unchanged);
    const Ended written = run({"restore", file, "--yes", "--json"});
    EXPECT_EQ(written.code, 0);
    EXPECT_TRUE(holds(written.out, "\"written\":2,")) << written.out;
    EXPECT_EQ(plc.command("peek 0x1000 6"), restored);
}

TEST_F(SafeWriting, RestoreAsksOnATerminal)
{
    const QString file = threeWords();
    for (const char answer : {'n', 'y'}) {
        HostTerminal terminal({"--link", plc.link(), "restore", file}, 100, 24);
        ASSERT_TRUE(terminal.waitForText("[y/N]")) << answer;
        terminal.press(answer);
        terminal.press('\n');
        EXPECT_EQ(terminal.waitForEnd(), answer == 'y' ? 0 : 1);
        EXPECT_EQ(plc.command("peek 0x1000 6"), answer == 'y' ? restored : unchanged);
    }
    plc.command("poke 0x1000 7 0");
    HostTerminal interrupted({"--link", plc.link(), "restore", file}, 100, 24);
    ASSERT_TRUE(interrupted.waitForText("[y/N]"));
    interrupted.press(ctrlC);
    EXPECT_EQ(interrupted.waitForEnd(), 130);
    EXPECT_EQ(plc.command("peek 0x1000 2"), "1000: 07 00\n");
}

TEST_F(SafeWriting, RestoreSkipsWhatThePlcRefusesAndWhatWasNotRead)
{
    const RunningSimulator refusing(Road::Tcp, quickPlc + QStringList{"--holes", "0x1002-0x1003"});
    const QString file =
        newFile(folder, "read.csv", "address,value,error\nD0,5,\nD1,6,\nD2,,refused\n");
    const Ended ended = fxhost({"--link", refusing.link(), "restore", file, "--yes"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_TRUE(holds(ended.out, ": 1 register written and read back, 2 skipped\n")) << ended.out;
    EXPECT_TRUE(holds(ended.out, "refused by the PLC (NAK)")) << ended.out;
}

// Sixteen counters fill a frame; 32CV255 is the last one.
TEST_F(SafeWriting, CountersOfAnyNumberOfFramesArrive)
{
    for (const int counters : {1, 16, 17, 33, 56}) {
        QStringList values;
        QByteArray bytes;
        for (int counter = 0; counter < 56; ++counter) {
            const int value = counter < counters ? 0x010000 * counters + counter : 0;
            if (counter < counters)
                values += QString::number(value);
            for (int byte = 0; byte < 4; ++byte)
                bytes.append(static_cast<char>(value >> 8 * byte));
        }
        plc.command("poke 0x0C00" + QString(" 0").repeated(224));
        const QString address = QStringLiteral("32CV200:%1=").arg(counters);
        EXPECT_EQ(run({"write", address + values.join(','), "-q"}).code, 0) << counters;
        QByteArray held;
        for (const QByteArray& line : plc.command("peek 0x0C00 224").split('\n'))
            held += QByteArray::fromHex(line.mid(line.indexOf(':') + 1));
        EXPECT_EQ(held.toHex(), bytes.toHex()) << counters;
    }
}

TEST_F(SafeWriting, BackupHoldsWhatCanBeRestored)
{
    plc.command("poke 0x10C8 0x39 0x30");
    const QString file = folder.filePath("backup.csv");
    EXPECT_EQ(run({"backup", file, "-q"}).code, 0);
    const QByteArray content = contentOf(file);
    for (const char* const there : {"\nD100,12345\n", "\nD7999,", "\nM1535,", "\nM2048,",
                                    "\nM3071,", "\n32CV255,", "\nS999,", "\nY377,"})
        EXPECT_TRUE(content.contains(there)) << there;
    for (const char* const absent : {"\nM1536,", "\nM2047,", "\nX0,", "\nSM8000,", "\nSD8000,"})
        EXPECT_FALSE(content.contains(absent)) << absent;
    EXPECT_EQ(run({"compare", file, "-q"}).code, 0);
    EXPECT_EQ(run({"backup", file, "-q"}).code, 7) << "it exists";
}
