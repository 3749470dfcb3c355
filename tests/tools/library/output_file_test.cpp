// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Files that commands write: which names are refused, and what an older file holds meanwhile.

#include "tests/tools/support/loaded_driver.h"
#include "tools/library/output_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace fxtools;
using namespace tool_tests;

using Mode = OutputFile::Mode;

namespace {

class OutputFiles : public testing::Test
{
protected:
    void put(const char* text)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    std::string content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "none";
    }

    QTemporaryDir folder;
    QString path = folder.filePath("file");
};

std::string errorOf(const QString& name, Mode mode, ExitCode code = ExitCode::File)
{
    try {
        OutputFile file(name, mode, catalogue());
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), code) << name.toStdString();
        return QString(failure.text()).remove(name).toStdString();
    }
    return "no error";
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
        EXPECT_EQ(errorOf(name, Mode::New), "no error") << name;
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
    EXPECT_NE(errorOf(folder.path(), Mode::Replace), "no error");
}

TEST_F(OutputFiles, AreReplacedOnlyIfTheUserSaysSo)
{
    put("older");
    EXPECT_EQ(errorOf(path, Mode::New), " exists; replace it with --force");
    EXPECT_EQ(content(), "older");
}

TEST_F(OutputFiles, AreReplacedWhenTheyAreComplete)
{
    put("older");
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
        put(before);
        OutputFile file(path, Mode::Append, catalogue());
        file.write("end");
        EXPECT_EQ(content(), std::string(before).find("one") == 0 ? "one\nend" : "end");
    }
}
