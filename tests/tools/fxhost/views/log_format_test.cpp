// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The rows of a log, letter for letter.

#include "tools/fxhost/views/log_format.h"

#include <gtest/gtest.h>

using namespace fxtools;

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
