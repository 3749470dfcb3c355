// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is told of a line that was measured.

#include "tools/fxhost/views/statistics_report.h"

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

std::string textOf(const Histogram& times)
{
    QStringList texts;
    for (const TimeClass& one : timeClasses(times))
        texts += QStringLiteral("%1-%2: %3").arg(one.fromUs).arg(one.toUs).arg(one.number);
    return texts.join(", ").toStdString();
}

}  // namespace

TEST(TimeClasses, AreOfEqualWidth)
{
    Histogram times;
    for (int ms = 20; ms < 40; ++ms) {
        for (int exchange = 0; exchange < 100; ++exchange)
            times.add(1000 * ms + 1);
    }
    const QVector<TimeClass> classes = timeClasses(times);
    EXPECT_EQ(classes.first().fromUs, 20000);
    EXPECT_EQ(classes.first().toUs, 25000);
    ASSERT_EQ(classes.size(), 5) << "the last one has no limit";
    EXPECT_EQ(classes[3].fromUs, 35000);
    EXPECT_EQ(classes[3].toUs, 40000);
}

TEST(TimeClasses, PutWhatIsUnusuallyLongIntoOne)
{
    Histogram times;
    for (int exchange = 0; exchange < 99; ++exchange)
        times.add(21000);
    times.add(3000000);
    EXPECT_EQ(textOf(times), "20000-25000: 99, 25000-0: 1");
}

TEST(TimeClasses, AreNoneWithoutTimes)
{
    EXPECT_EQ(textOf({}), "");
}

TEST(LineReports, NameErrorsInPerCent)
{
    Statistics statistics;
    statistics.kinds[ExchangeKind::CyclicRead] = {40, 39, 1, 0};
    statistics.verdicts = {
        {ReplyVerdict::Good, 37}, {ReplyVerdict::Silence, 1}, {ReplyVerdict::WrongSum, 2}};
    for (const qint64 timeUs : {500, 500, 25000})
        statistics.responses.add(timeUs);
    const QStringList lines = statisticsLines(statistics, 1000000);
    EXPECT_EQ(lines[0], "  exchanges    frames  good  retried  given up  errors");
    EXPECT_EQ(lines[1], "  cyclic read      40    39        1         0   2.5 %");
    EXPECT_EQ(lines[3], "  rejected replies: no reply (1), damaged: wrong checksum (2)");
    EXPECT_EQ(lines[5], "  response time: median 0.512 ms, 95 % in 25 ms, longest 25 ms");
}

TEST(LineReports, SayWhatABlockCosts)
{
    BlockTimes asked{"D0 … D31", 32, {}, 10, 0, 340000, 40000};
    BlockTimes alone{"D140", 1, "D140", 10, 2, 296000, 90000};
    const Statistics statistics;
    const LineReport report{{asked, alone}, statistics, {}, 0, AdaptiveTimeout({})};
    const QStringList lines = lineReportLines(report);
    const int first =
        lines.indexOf("  block     registers  ms  ms per register  longest, ms  errors");
    ASSERT_GE(first, 0) << lines.join('\n').toStdString();
    EXPECT_EQ(lines[first + 1], "  D0 … D31         32  34             1.06           40     0 %");
    EXPECT_EQ(lines[first + 2], "  D140              1  37               37           90    20 %");
    EXPECT_EQ(lines[first + 3], "  without D140: 37 ms a cycle less");
    EXPECT_TRUE(lineReportCsv(report).contains("blocks.1.msPerRegister,37"));
    EXPECT_TRUE(lineReportCsv(report).contains("blocks.1.errorPercent,20"));
    const QString json = lineReportJson(report, {{"link", "\"sim:\""}});
    EXPECT_TRUE(json.startsWith("{\n    \"exchanges\": {")) << json.toStdString();
    EXPECT_TRUE(json.endsWith(",\n    \"link\": \"sim:\"\n}")) << json.toStdString();
}
