// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Registers and their values in a file: what is read out of it, what is refused with its line, and
// what stands in it whenever the writing ends.

#include "tests/tools/support/loaded_driver.h"
#include "tools/library/register_file.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

class RegisterFiles : public testing::Test
{
protected:
    QString fileWith(const char* content)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    std::string content()
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "none";
    }

    QVector<RegisterRun> runsOf(const char* text, int mostRegisters = 1000)
    {
        return readRegisterFile(fileWith(text), catalogue(), mostRegisters).runs;
    }

    QTemporaryDir folder;
    QString path = folder.filePath("registers.csv");
};

std::string textOf(const QVector<RegisterRun>& runs)
{
    QStringList all;
    for (const RegisterRun& run : runs) {
        QStringList values;
        for (const quint32 value : run.values)
            values += QString::number(value);
        all += run.range.text() + '=' + values.join(',');
    }
    return all.join(' ').toStdString();
}

template <typename Act>
std::string errorOf(const Act& act)
{
    try {
        act();
    } catch (const Failure& error) {
        EXPECT_EQ(error.code(), ExitCode::File);
        return error.what();
    }
    return "no error";
}

}  // namespace

TEST_F(RegisterFiles, JoinsNeighboursInItsOrder)
{
    EXPECT_EQ(textOf(runsOf("address,value\n# a comment\nD0,1\n\nD1,0x10\nD3,-1\n 2#D4 , 5 \n"
                            "2#D5,6\nM0,on\n32CV255,70000\nD4,7,more\nD2,8\n")),
              "D0:2=1,16 D3=65535 2#D4:2=5,6 M0=1 32CV255=70000 D4=7 D2=8");
}

// As spreadsheets save it, and as `read --csv --timestamps` prints it.
TEST_F(RegisterFiles, MayHaveOtherSeparatorsQuotesAndColumns)
{
    EXPECT_EQ(textOf(runsOf("\xEF\xBB\xBF\"address\";\"value\"\r\n\"D0\";\"-5\"\r\nD1;6\r\n")),
              "D0:2=65531,6");
    EXPECT_EQ(textOf(runsOf("\"D0\",\"5\",\"a;b, c\"\n")), "D0=5");
    EXPECT_EQ(textOf(runsOf("time,address,value,error\n2026-01-31,D0,5,\n")), "D0=5");
}

TEST_F(RegisterFiles, LeavesOutRegistersWithAnErrorInsteadOfAValue)
{
    const RegisterFile file = readRegisterFile(
        fileWith("address,value,error\nD0,5,\nD1,,refused\nD2,6,\n"), catalogue(), 1000);
    EXPECT_EQ(textOf(file.runs), "D0=5 D2=6");
    EXPECT_EQ(file.withoutValue, 1);
    EXPECT_NE(errorOf([this] { runsOf("D0,\n"); }), "no error");
}

TEST_F(RegisterFiles, IsNoDeviceAndNotHuge)
{
    EXPECT_EQ(errorOf([] { readRegisterFile("/dev/zero", catalogue(), 1); }),
              "/dev/zero: not a regular file");
    fileWith("");
    QFile::resize(path, 5 << 20);
    EXPECT_EQ(errorOf([this] { readRegisterFile(path, catalogue(), 1); }),
              path.toStdString() + ": 5242880 bytes are too many for a file of registers");
}

TEST_F(RegisterFiles, HasItsTitleInTheFirstLineOnly)
{
    EXPECT_EQ(errorOf([this] { runsOf("D0,1\naddress,value\n"); }),
              path.toStdString() + ", line 2: 'address' is not an address; use for example D100, "
                                   "X17, D100:32 or D0-D9");
}

TEST_F(RegisterFiles, CutsRunsAtTheLengthAskedFor)
{
    EXPECT_EQ(textOf(runsOf("D0,1\nD1,2\nD2,3\nD3,4\nD4,5\n", 2)), "D0:2=1,2 D2:2=3,4 D4=5");
}

TEST_F(RegisterFiles, NamesTheLineOfAMistake)
{
    struct Row
    {
        const char* text;
        const char* says;
    };
    const Row rows[] = {
        {"D0,1\nD1\n", ", line 2: 'D1': expected ADDRESS,VALUE"},
        {"# one\nD0,1\nD1,x\n", ", line 3: value 'x' is not a number; use 123, -5, 0x1F or 0b101"},
        {"D0,70000\n",
         ", line 1: value '70000' does not fit in 16 bits: -32768 to 65535; for 32 bits use "
         "D0:2=70000 or D0=70000 --as long"},
        {"D0:2,1\n", ", line 1: 'D0:2,1': expected one register"},
        {"D0.5,1\n", ", line 1: 'D0.5,1': expected one register"},
        {"D8000,1\nD0,1\n# twice\nSD8000,2\n", ", line 4: SD8000 is already in line 1"},
        {"address,error\nD0,1\n", ", line 1: no column 'value' after 'address'"},
        {"D0,1\nD9999,1\n",
         ", line 2: 'D9999' is out of range: D0 to D7999 or D8000 to D8255 in decimal"},
        {"a line of more than forty characters, which is cut in the message\n",
         ", line 1: 'a line of more than forty characters' is not an address; use for example "
         "D100, "
         "X17, D100:32 or D0-D9"},
        {"a line of more than forty characters that has no comma\n",
         ", line 1: 'a line of more than forty characters that has no comma': expected "
         "ADDRESS,VALUE"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(errorOf([&] { runsOf(row.text); }), path.toStdString() + row.says);
    EXPECT_EQ(errorOf([] { readRegisterFile("/no/file", catalogue(), 1); }),
              "/no/file: No such file or directory");
}

TEST_F(RegisterFiles, IsWritableWhenAllItsRegistersAre)
{
    const auto check = [this](const char* text) {
        return errorOf([&] { checkWritable("file", runsOf(text)); });
    };
    EXPECT_EQ(check("D0,1\nM0,1\n"), "no error");
    EXPECT_EQ(check("X0,1\n"), "file: X0 is read-only; remove it");
    EXPECT_EQ(check("D0,1\nM0,1\nX0,1\nX1,1\nD1,1\n"), "file: X0:2 is read-only; remove it");
    EXPECT_EQ(check("address,value\n"), "file: no registers in this file");
}

TEST_F(RegisterFiles, IsWrittenWithItsHeadingAndReadAgain)
{
    OutputFile file(path, OutputFile::Mode::New, catalogue());
    RegisterFileWriter writer(file);
    writer.add({range("D9:2"), {1, 65535}});
    writer.addComment("D11: no reply");
    EXPECT_EQ(content(), "address,value\nD9,1\nD10,-1\n");
    writer.add({range("2#32CV200"), {4294967295}});
    writer.finish();
    EXPECT_EQ(content(), "address,value\nD9,1\nD10,-1\n# D11: no reply\n2#32CV200,-1\n");
    EXPECT_EQ(textOf(readRegisterFile(path, catalogue(), 1000).runs),
              "D9:2=1,65535 2#32CV200=4294967295");
}

// Every register of a dump may be refused.
TEST_F(RegisterFiles, HoldsCommentsAloneWhenItIsFinished)
{
    for (const bool isFinished : {false, true}) {
        OutputFile file(path, OutputFile::Mode::New, catalogue());
        RegisterFileWriter writer(file);
        writer.addComment("D0: refused");
        if (isFinished)
            writer.finish();
        EXPECT_EQ(content(), isFinished ? "address,value\n# D0: refused\n" : "");
    }
}

TEST_F(RegisterFiles, GoesOnBehindTheLastWholeLine)
{
    for (const char* const before :
         {"address,value\nD0,7\n", "address,value\nD0,7\nD1,1", "addr"}) {
        fileWith(before);
        OutputFile file(path, OutputFile::Mode::Append, catalogue());
        RegisterFileWriter(file).add({range("D1"), {12}});
        const std::string older = std::string(before) == "addr" ? "" : "D0,7\n";
        EXPECT_EQ(content(), "address,value\n" + older + "D1,12\n");
    }
}
