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

class RegisterFile : public testing::Test
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
        return readRegisterFile(fileWith(text), catalogue(), mostRegisters);
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

TEST_F(RegisterFile, JoinsNeighboursInItsOrder)
{
    EXPECT_EQ(textOf(runsOf("address,value\n# a comment\nD0,1\n\nD1,0x10\nD3,-1\n 2#D4 , 5 \n"
                            "2#D5,6\nM0,on\n32CV255,70000\nD4,7,more\nD3,8\n")),
              "D0:2=1,16 D3=65535 2#D4:2=5,6 M0=1 32CV255=70000 D4=7 D3=8");
}

TEST_F(RegisterFile, HasItsTitleInTheFirstLineOnly)
{
    EXPECT_EQ(errorOf([this] { runsOf("D0,1\naddress,value\n"); }),
              path.toStdString() + ", line 2: 'address' is not an address; use for example D100, "
                                   "X17, D100:32 or 2#M8");
}

TEST_F(RegisterFile, CutsRunsAtTheLengthAskedFor)
{
    EXPECT_EQ(textOf(runsOf("D0,1\nD1,2\nD2,3\nD3,4\nD4,5\n", 2)), "D0:2=1,2 D2:2=3,4 D4=5");
}

TEST_F(RegisterFile, NamesTheLineOfAMistake)
{
    struct Row
    {
        const char* text;
        const char* says;
    };
    const Row rows[] = {
        {"D0,1\nD1\n", ", line 2: 'D1': expected ADDRESS,VALUE"},
        {"# one\nD0,1\nD1,x\n",
         ", line 3: value 'x' is not a number; use 123, -5, 0x1F, 0b101 or 1.5"},
        {"D0,70000\n", ", line 1: 'D0,70000': expected one register and a value that fits in it"},
        {"D0:2,1\n", ", line 1: 'D0:2,1': expected one register and a value that fits in it"},
        {"D0,1\nD9999,1\n", ", line 2: 'D9999' is out of range: SD8000 to SD8255 in decimal"},
        {"a line of more than forty characters, which is cut in the message\n",
         ", line 1: 'a line of more than forty characters' is not an address; use for example "
         "D100, "
         "X17, D100:32 or 2#M8"},
        {"a line of more than forty characters that has no comma\n",
         ", line 1: 'a line of more than forty characters tha…': expected ADDRESS,VALUE"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(errorOf([&] { runsOf(row.text); }), path.toStdString() + row.says);
    EXPECT_EQ(errorOf([] { readRegisterFile("/no/file", catalogue(), 1); }),
              "/no/file: No such file or directory");
}

TEST_F(RegisterFile, IsWritableWhenAllItsRegistersAre)
{
    const auto check = [this](const char* text) {
        return errorOf([&] { checkWritable("file", runsOf(text)); });
    };
    EXPECT_EQ(check("D0,1\nM0,1\n"), "no error");
    EXPECT_EQ(check("X0,1\n"), "file: X0 is read-only; remove it");
    EXPECT_EQ(check("D0,1\nM0,1\nX0,1\nX1,1\nD1,1\n"), "file: X0:2 is read-only; remove it");
    EXPECT_EQ(check("address,value\n"), "file: no registers in this file");
}

TEST_F(RegisterFile, IsSavedAtOnce)
{
    fileWith("address,value\nD0,7\n");
    saveRegisterFile(path, {{range("D9:2"), {1, 65535}}, {range("2#32CV200"), {4294967295}}});
    EXPECT_EQ(content(), "address,value\nD9,1\nD10,65535\n2#32CV200,4294967295\n");
    EXPECT_EQ(textOf(readRegisterFile(path, catalogue(), 1000)),
              "D9:2=1,65535 2#32CV200=4294967295");
}

TEST_F(RegisterFile, IsReplacedWithTheFirstValue)
{
    fileWith("address,value\nD0,7\n");
    RegisterFileWriter writer(path, RegisterFileWriter::Mode::Replace);
    writer.addComment("D0: no reply");
    EXPECT_EQ(content(), "address,value\nD0,7\n");
    writer.add("D1", 8);
    EXPECT_EQ(content(), "address,value\n# D0: no reply\nD1,8\n");
    writer.add("D2", 9);
    writer.addComment("D3: no reply");
    EXPECT_EQ(content(), "address,value\n# D0: no reply\nD1,8\nD2,9\n");
    writer.finish();
    EXPECT_EQ(content(), "address,value\n# D0: no reply\nD1,8\nD2,9\n# D3: no reply\n");
}

TEST_F(RegisterFile, StaysAsItIsWhenNoValueComes)
{
    fileWith("address,value\nD0,7\n");
    {
        RegisterFileWriter writer(path, RegisterFileWriter::Mode::Replace);
        writer.addComment("D0: no reply");
        writer.finish();
    }
    EXPECT_EQ(content(), "address,value\nD0,7\n");
}

TEST_F(RegisterFile, IsNotLeftEmptyWhenItIsNew)
{
    for (const auto mode : {RegisterFileWriter::Mode::Replace, RegisterFileWriter::Mode::Append}) {
        {
            RegisterFileWriter writer(path, mode);
            EXPECT_EQ(content(), "");
        }
        EXPECT_EQ(content(), "none");
    }
}

TEST_F(RegisterFile, GoesOnBehindTheLastWholeLine)
{
    fileWith("address,value\nD0,7\nD1,1");
    RegisterFileWriter writer(path, RegisterFileWriter::Mode::Append);
    EXPECT_EQ(content(), "address,value\nD0,7\n");
    writer.add("D1", 12);
    writer.add("D2", 3);
    EXPECT_EQ(content(), "address,value\nD0,7\nD1,12\nD2,3\n");
}

TEST_F(RegisterFile, GetsItsTitleWhenNothingWasThereToGoOnWith)
{
    fileWith("addr");
    RegisterFileWriter writer(path, RegisterFileWriter::Mode::Append);
    writer.add("D1", 12);
    EXPECT_EQ(content(), "address,value\nD1,12\n");
}

TEST_F(RegisterFile, HasAPlaceOrSaysWhyNot)
{
    EXPECT_EQ(errorOf([this] { checkPlace(path); }), "no error");
    EXPECT_EQ(content(), "none");
    fileWith("D0,1\n");
    EXPECT_EQ(errorOf([this] { checkPlace(path); }), "no error");
    EXPECT_EQ(content(), "D0,1\n");
    EXPECT_EQ(errorOf([] { checkPlace("/dev/full"); }), "/dev/full: not a regular file");
    EXPECT_EQ(errorOf([] { checkPlace("/no/place.csv"); }),
              "/no/place.csv: No such file or directory");
    const auto open = [] { RegisterFileWriter("/dev/full", RegisterFileWriter::Mode::Append); };
    EXPECT_EQ(errorOf(open), "/dev/full: not a regular file");
}

TEST(WholeWrites, SayWhyTheyWereNot)
{
    QFile full("/dev/full");
    ASSERT_TRUE(full.open(QIODevice::WriteOnly));
    EXPECT_EQ(errorOf([&] { writeWhole(full, "D0,1\n"); }), "/dev/full: No space left on device");
}
