// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The rows of a log, letter for letter, and its file: what happens to one that is there already,
// and when a new one begins.

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

namespace {

const QJsonValue unread = QJsonValue::Undefined;

QDateTime timeAt(int offsetHours)
{
    return {QDate(2026, 1, 31), QTime(13, 5, 0, 7), Qt::OffsetFromUTC, offsetHours * 3600};
}

LogRow rowOf(const QVector<QJsonValue>& values, const QString& error = {})
{
    return {timeAt(1), values, error};
}

QVector<double> deadbands(double each)
{
    return {each, each, each};
}

std::string lineOf(OutputMode mode, const LogRow& row)
{
    OutputOptions output;
    output.mode = mode;
    output.plc = {{"link", "\"sim:\""}, {"station", "1"}};
    return LogFormat(output, {"D0", "TV3", "X17"}).line(row).toStdString();
}

}  // namespace

TEST(LogFormat, TimesHaveTheirOffset)
{
    EXPECT_EQ(isoTime(timeAt(0)), "2026-01-31T13:05:00.007+00:00");
    EXPECT_EQ(isoTime(timeAt(1)), "2026-01-31T13:05:00.007+01:00");
    EXPECT_EQ(isoTime(timeAt(-11)), "2026-01-31T13:05:00.007-11:00");
}

TEST(LogFormat, CsvIsWide)
{
    const LogFormat format({}, {"D0", "D1"});
    EXPECT_EQ(format.heading(), "time,D0,D1,error\n");
    EXPECT_EQ(lineOf(OutputMode::Csv, rowOf({-5, "0x1F", 1})),
              "2026-01-31T13:05:00.007+01:00,-5,0x1F,1,\n");
}

TEST(LogFormat, CellsThatWereNotReadAreEmpty)
{
    EXPECT_EQ(lineOf(OutputMode::Csv, rowOf({unread, 2, unread}, "D0 X17: refused, \"NAK\"")),
              "2026-01-31T13:05:00.007+01:00,,2,,\"D0 X17: refused, \"\"NAK\"\"\"\n");
}

TEST(LogFormat, JsonKeepsTheOrderOfTheColumns)
{
    OutputOptions json;
    json.mode = OutputMode::Json;
    EXPECT_EQ(LogFormat(json, {"D0"}).heading(), "");
    EXPECT_EQ(lineOf(OutputMode::Json, rowOf({0.5, 12, 1})),
              R"({"time":"2026-01-31T13:05:00.007+01:00","values":{"D0":0.5,"TV3":12,"X17":1},)"
              R"("link":"sim:","station":1})"
              "\n");
    EXPECT_EQ(lineOf(OutputMode::Json, rowOf({unread, 1, unread}, "link lost")),
              R"({"time":"2026-01-31T13:05:00.007+01:00",)"
              R"("values":{"D0":null,"TV3":1,"X17":null},"error":"link lost",)"
              R"("link":"sim:","station":1})"
              "\n");
    LogRow row = rowOf({0.5, 12, 1});
    row.raws = {unread, unread, 120};
    EXPECT_NE(lineOf(OutputMode::Json, row).find(R"("X17":1},"raw":{"X17":120},"link")"),
              std::string::npos);
}

TEST(LogFormat, AlarmsHaveAColumnBeforeErrors)
{
    LogRow row = rowOf({0.5, 12, 1});
    row.alarms = QStringList{"", "low", "high"};
    const LogFormat format({}, {"D0", "TV3", "X17"}, true);
    EXPECT_EQ(format.heading(), "time,D0,TV3,X17,alarms,error\n");
    EXPECT_EQ(format.line(row), "2026-01-31T13:05:00.007+01:00,0.5,12,1,\"TV3 low; X17 high\",\n");
    EXPECT_NE(lineOf(OutputMode::Json, row)
                  .find(R"("X17":1},"alarms":{"TV3":"low","X17":"high"},"link")"),
              std::string::npos);
    EXPECT_TRUE(differs(row, rowOf({0.5, 12, 1}), deadbands(99)));
}

TEST(LogFormat, AChangeIsWhatExceedsTheDeadband)
{
    const LogRow before = rowOf({10, "0x1F", 1});
    EXPECT_FALSE(differs(rowOf({10, "0x1F", 1}), before, deadbands(0)));
    EXPECT_TRUE(differs(rowOf({11, "0x1F", 1}), before, deadbands(0)));
    EXPECT_FALSE(differs(rowOf({12, "0x1F", 1}), before, deadbands(2)));
    EXPECT_TRUE(differs(rowOf({7, "0x1F", 1}), before, deadbands(2)));
    EXPECT_TRUE(differs(rowOf({10, "0x20", 1}), before, deadbands(2))) << "a text has no distance";
    EXPECT_TRUE(differs(rowOf({unread, "0x1F", 1}), before, deadbands(99)));
    EXPECT_TRUE(differs(rowOf({11, "0x1F", 3}), before, {0.5, 0, 5})) << "each has its own";
    EXPECT_TRUE(differs(rowOf({10, "0x1F", 1}, "link lost"), before, deadbands(99)));
}
