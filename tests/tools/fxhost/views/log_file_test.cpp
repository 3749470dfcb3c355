// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The file of a log: what happens to one that is there already, and when a new one begins.

#include "tests/tools/support/failure_of.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/fxhost/views/log_file.h"

#include <QDir>
#include <QTemporaryDir>

using namespace fxtools;
using namespace tool_tests;

namespace {

const QByteArray heading = "time,D0\n";

QDateTime at(int hour, int minute = 0, int second = 0)
{
    return {QDate(2026, 1, 31), QTime(hour, minute, second)};
}

class LogFiles : public testing::Test
{
protected:
    LogFiles() { settings.name = folder.filePath("plc.csv"); }

    LogFile opened() { return LogFile(settings, heading, catalogue()); }

    void write(const char* content)
    {
        QFile file(settings.name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    std::string content(const QString& name = "plc.csv")
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "none";
    }

    QStringList files() { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }

    QString errorOf(const LogFile::Settings& with)
    {
        const auto act = [&with] { LogFile(with, heading, catalogue()); };
        return QString::fromStdString(failureOf(ExitCode::File, act)).remove(folder.path() + '/');
    }

    QTemporaryDir folder;
    LogFile::Settings settings;
};

}  // namespace

TEST_F(LogFiles, BeginWithTheHeadingAndKeepEachLine)
{
    LogFile file = opened();
    file.write("1\n", at(1));
    EXPECT_EQ(content(), "time,D0\n1\n") << "before the file is closed";
    file.write("2\n", at(2));
    EXPECT_EQ(content(), "time,D0\n1\n2\n");
    EXPECT_EQ(file.lines(), 2);
}

TEST_F(LogFiles, WithoutALineLeaveNothing)
{
    opened();
    EXPECT_EQ(files(), QStringList());
}

TEST_F(LogFiles, AreNotReplacedUnasked)
{
    write("old\n");
    EXPECT_EQ(errorOf(settings), "plc.csv exists; replace it with --force");
    settings.replaces = true;
    LogFile file = opened();
    EXPECT_EQ(content(), "old\n") << "until the first line";
    file.write("1\n", at(1));
    EXPECT_EQ(content(), "time,D0\n1\n");
}

TEST_F(LogFiles, AreContinuedBehindTheLastWholeLine)
{
    write("time,D0\n1\n2,3,tor");
    settings.appends = true;
    opened().write("3\n", at(1));
    EXPECT_EQ(content(), "time,D0\n1\n3\n");
}

TEST_F(LogFiles, OfOtherColumnsAreNotContinued)
{
    write("time,D1\n1\n");
    settings.appends = true;
    EXPECT_EQ(errorOf(settings),
              "plc.csv: cannot append to a file with other columns; name another one");
    EXPECT_EQ(content(), "time,D1\n1\n");
}

TEST_F(LogFiles, ThatAreMissingOrEmptyAreBegun)
{
    settings.appends = true;
    opened().write("1\n", at(1));
    EXPECT_EQ(content(), "time,D0\n1\n");
    write("");
    opened().write("2\n", at(1));
    EXPECT_EQ(content(), "time,D0\n2\n");
}

TEST_F(LogFiles, AreRotatedBeforeTheyAreTooLarge)
{
    settings.rotation.bytes = heading.size() + 4;
    LogFile file = opened();
    for (const char* line : {"1\n", "2\n", "3\n"})
        file.write(line, at(13, 5, 9));
    EXPECT_EQ(files(), QStringList({"plc-20260131T130509.csv", "plc.csv"}));
    EXPECT_EQ(content("plc-20260131T130509.csv"), "time,D0\n1\n2\n");
    EXPECT_EQ(content(), "time,D0\n3\n");
}

TEST_F(LogFiles, NeverTakeANameTwice)
{
    settings.rotation.bytes = 1;
    LogFile file = opened();
    for (const char* line : {"1\n", "2\n", "3\n"})
        file.write(line, at(13, 5, 9));
    EXPECT_EQ(content("plc-20260131T130509.csv"), "time,D0\n1\n");
    EXPECT_EQ(content("plc-20260131T130509-2.csv"), "time,D0\n2\n");
    EXPECT_EQ(content(), "time,D0\n3\n");
}

TEST_F(LogFiles, AreRotatedAtTheFullHour)
{
    settings.rotation.periodMs = 3600 * 1000;
    LogFile file = opened();
    file.write("1\n", at(12, 59, 58));
    file.write("2\n", at(12, 59, 59));
    file.write("3\n", at(13));
    EXPECT_EQ(content("plc-20260131T125959.csv"), "time,D0\n1\n2\n");
    EXPECT_EQ(content(), "time,D0\n3\n");
}

TEST_F(LogFiles, OfYesterdayAreRotatedAlsoWhenContinued)
{
    write("time,D0\n1\n");
    settings.appends = true;
    settings.rotation.periodMs = 86400 * 1000;
    opened().write("2\n", QDateTime::currentDateTime().addDays(2));
    EXPECT_EQ(files().size(), 2);
    EXPECT_EQ(content(), "time,D0\n2\n");
}
