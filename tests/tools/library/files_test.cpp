// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Files that commands write and read: which names are refused, what an older file holds meanwhile,
// tables in the forms in which spreadsheets save them, and registers with their values.

#include "tests/tools/support/failure_of.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/library/csv.h"
#include "tools/library/register_file.h"

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace fxtools;
using namespace tool_tests;

using Mode = OutputFile::Mode;

namespace {

class OneFile : public testing::Test
{
protected:
    QString fileWith(const QByteArray& content)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    std::string content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "none";
    }

    QTemporaryDir folder;
    QString path = folder.filePath("file");
};

using OutputFiles = OneFile;

// Without the name of the file.
std::string errorOf(const QString& name, Mode mode, ExitCode code = ExitCode::File)
{
    const std::string error = failureOf(code, [&] { OutputFile(name, mode, catalogue()); });
    return QString::fromStdString(error).remove(name).toStdString();
}

}  // namespace

TEST_F(OutputFiles, ThatWereForgottenAreNotNamedAfterAnAddress)
{
    for (const char* const name : {"D100:4", "d99999", "X17", "2#M8", "32CV200", "M8000"}) {
        for (const Mode mode : {Mode::New, Mode::Replace, Mode::Append})
            EXPECT_EQ(errorOf(name, mode, ExitCode::Usage), "'' is an address; name a file first");
    }
    for (const char* const name : {"plc1", "D100.csv", "./D100"}) {
        QDir::setCurrent(folder.path());
        EXPECT_EQ(errorOf(name, Mode::New), "no failure") << name;
    }
}

TEST_F(OutputFiles, AreRegularFiles)
{
    for (const Mode mode : {Mode::New, Mode::Replace, Mode::Append}) {
        EXPECT_EQ(errorOf("/dev/full", mode), ": not a regular file");
        EXPECT_EQ(errorOf("/no/place.csv", mode), ": No such file or directory");
    }
    ASSERT_EQ(mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(errorOf(path, Mode::Replace), ": not a regular file");
    EXPECT_NE(errorOf(folder.path(), Mode::Replace), "no failure");
}

TEST_F(OutputFiles, AreReplacedOnlyIfTheUserSaysSo)
{
    fileWith("older");
    EXPECT_EQ(errorOf(path, Mode::New), " exists; replace it with --force");
    EXPECT_EQ(content(), "older");
}

TEST_F(OutputFiles, AreReplacedWhenTheyAreComplete)
{
    fileWith("older");
    {
        OutputFile file(path, Mode::Replace, catalogue());
        file.write("half");
        EXPECT_EQ(content(), "older");
    }
    EXPECT_EQ(content(), "older");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("file"));
    OutputFile file(path, Mode::Replace, catalogue());
    EXPECT_TRUE(file.isEmpty());
    file.write("new");
    file.commit();
    EXPECT_EQ(content(), "new");
}

// Nothing is lost by an interruption.
TEST_F(OutputFiles, ThatAreNewGrowWhereTheyAre)
{
    for (const Mode mode : {Mode::New, Mode::Replace, Mode::Append}) {
        {
            OutputFile file(path, mode, catalogue());
            file.write("a line\n");
            EXPECT_EQ(content(), "a line\n");
        }
        EXPECT_EQ(content(), "a line\n");
        QFile::remove(path);
    }
}

TEST_F(OutputFiles, ThatAreNewAndEmptyAreKeptOnlyWhenComplete)
{
    for (const bool isComplete : {false, true}) {
        {
            OutputFile file(path, Mode::New, catalogue());
            if (isComplete)
                file.commit();
        }
        EXPECT_EQ(content(), isComplete ? "" : "none");
    }
}

TEST_F(OutputFiles, GoOnBehindTheLastWholeLine)
{
    for (const char* const before : {"", "one\n", "one\ntwo", "tw"}) {
        fileWith(before);
        OutputFile file(path, Mode::Append, catalogue());
        file.write("end");
        EXPECT_EQ(content(), std::string(before).find("one") == 0 ? "one\nend" : "end");
    }
}

namespace {

class Csv : public OneFile
{
protected:
    // "2: a|b" for each row.
    std::string read(const QByteArray& content)
    {
        QStringList rows;
        for (const CsvRow& row : readCsv(fileWith(content), "table").rows)
            rows += QStringLiteral("%1: %2%3")
                        .arg(row.line)
                        .arg(row.fields.join('|'), row.isOpen ? " open" : "");
        return rows.join('\n').toStdString();
    }
};

}  // namespace

TEST_F(Csv, HasTheSeparatorOfItsFirstRowThatHasOne)
{
    EXPECT_EQ(read("# no; row\na,b;c\n1;2,5\n"), "2: a,b|c\n3: 1|2,5");
    EXPECT_EQ(read("\"a;b\",c\n1;2,3\n"), "1: a;b|c\n2: 1;2|3");
    EXPECT_EQ(read("a\tb,c\n"), "1: a|b,c");
    EXPECT_EQ(read("title\na\tb,c\n"), "1: title\n2: a|b,c");
}

TEST_F(Csv, HasQuotesWithinQuotes)
{
    EXPECT_EQ(read("\"say \"\"on\"\"\", \"\" ,\"\"\"\"\n"), "1: say \"on\"||\"");
    EXPECT_EQ(read("a,\"b,c\nd,e\n"), "1: a|b,c open\n2: d|e");
}

TEST_F(Csv, IsReadWhateverTheByteOrderMark)
{
    EXPECT_EQ(read("\xEF\xBB\xBF\xC2\xB0\x43,b\r\n\r\nc"), "1: \xC2\xB0\x43|b\n3: c");
    EXPECT_EQ(read(QByteArray("\xFF\xFE\xB0\0C\0\t\0b\0\n\0", 12)), "1: \xC2\xB0\x43|b");
    EXPECT_EQ(read("\xB0\x43\n"), "1: \xEF\xBF\xBD\x43");  // not UTF-8
}

namespace {

class RegisterFiles : public OneFile
{
protected:
    QVector<RegisterRun> runsOf(const char* text, int mostRegisters = 1000)
    {
        return readRegisterFile(fileWith(text), catalogue(), mostRegisters).runs;
    }
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
    EXPECT_NE(failureOf(ExitCode::File, [this] { runsOf("D0,\n"); }), "no failure");
}

TEST_F(RegisterFiles, IsNoDeviceAndNotHuge)
{
    EXPECT_EQ(failureOf(ExitCode::File, [] { readRegisterFile("/dev/zero", catalogue(), 1); }),
              "/dev/zero: not a regular file");
    fileWith("");
    QFile::resize(path, 5 << 20);
    EXPECT_EQ(failureOf(ExitCode::File, [this] { readRegisterFile(path, catalogue(), 1); }),
              path.toStdString() + ": 5242880 bytes are too many for a file of registers");
}

TEST_F(RegisterFiles, HasItsTitleInTheFirstLineOnly)
{
    EXPECT_EQ(failureOf(ExitCode::File, [this] { runsOf("D0,1\naddress,value\n"); }),
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
        {"tag,address,value\nt,D0,1\n",
         ", line 1: values of tags are scaled; read the registers by their addresses"},
        {"D0,1\nD9999,1\n", ", line 2: 'D9999' is out of range: D0 to D7999 or D8000 to D8255"},
        {"a line of more than forty characters, which is cut in the message\n",
         ", line 1: 'a line of more than forty characters' is not an address; use for example "
         "D100, "
         "X17, D100:32 or D0-D9"},
        {"a line of more than forty characters that has no comma\n",
         ", line 1: 'a line of more than forty characters that has no comma': expected "
         "ADDRESS,VALUE"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(failureOf(ExitCode::File, [&] { runsOf(row.text); }),
                  path.toStdString() + row.says);
    EXPECT_EQ(failureOf(ExitCode::File, [] { readRegisterFile("/no/file", catalogue(), 1); }),
              "/no/file: No such file or directory");
}

TEST_F(RegisterFiles, IsWritableWhenAllItsRegistersAre)
{
    const auto check = [this](const char* text) {
        return failureOf(ExitCode::File, [&] { checkWritable("file", runsOf(text)); });
    };
    EXPECT_EQ(check("D0,1\nM0,1\n"), "no failure");
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
