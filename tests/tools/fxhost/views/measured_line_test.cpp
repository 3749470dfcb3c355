// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is told of a line that was measured, by stats and by doctor.

#include "tools/fxhost/views/command_line.h"
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
    statistics.kinds[ExchangeKind::CyclicRead] = {40, 38, 1, 1};
    statistics.verdicts = {
        {ReplyVerdict::Good, 37}, {ReplyVerdict::Silence, 1}, {ReplyVerdict::WrongSum, 2}};
    for (const qint64 timeUs : {500, 500, 25000})
        statistics.responses.add(timeUs);
    const QStringList lines = statisticsLines(statistics, 1000000);
    EXPECT_EQ(lines[0], "  exchanges    frames  good  retried  given up  errors");
    EXPECT_EQ(lines[1], "  cyclic read      40    38        1         1     5 %");
    EXPECT_EQ(lines[3], "  rejected replies: no reply 1, damaged: wrong checksum 2");
    EXPECT_EQ(lines[5], "  response time: median 0.512 ms, 95 % in 25 ms, longest 25 ms");
}

TEST(LineReports, SayHowPeriodsAreKept)
{
    const Statistics statistics;
    const LineReport report{
        {}, statistics,          {},
        0,  AdaptiveTimeout({}), {{"D0:10", 100000, 101000, 140000}, {"D100", 0, 0, 0}}};
    const QStringList lines = lineReportLines(report);
    const int first = lines.indexOf("  values  wanted every, ms  mean  longest");
    ASSERT_GE(first, 0) << lines.join('\n').toStdString();
    EXPECT_EQ(lines[first + 1], "  D0:10                100   101      140");
    EXPECT_EQ(lines[first + 2], "  D100");
    const QStringList csv = lineReportCsv(report);
    for (const char* line :
         {"periods.0.addresses,D0:10", "periods.0.wantedMs,100", "periods.0.meanMs,101",
          "periods.0.longestMs,140", "periods.1.addresses,D100", "periods.1.wantedMs,0"})
        EXPECT_TRUE(csv.contains(line)) << line;
    EXPECT_EQ(csv.filter("periods.1.").size(), 2);
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

namespace {

Finding foundVerdict(ReplyVerdict verdict)
{
    Finding finding;
    finding.setting = "9600 baud 7E1";
    finding.check.verdict = verdict;
    return finding;
}

Finding measured(int good, int wrongSums = 0)
{
    Finding finding = foundVerdict(ReplyVerdict::Good);
    finding.check.blocks = {{2, ReplyVerdict::Good}, {16, ReplyVerdict::Good}};
    finding.check.exchanges = {{ReplyVerdict::Good, good}};
    if (wrongSums > 0)
        finding.check.exchanges[ReplyVerdict::WrongSum] = wrongSums;
    return finding;
}

}  // namespace

TEST(Diagnosis, AdvisesWhereNothingIsGood)
{
    struct Row
    {
        ReplyVerdict verdict;
        const char* words;
    };
    for (const Row& row : {Row{ReplyVerdict::Silence, "No reply at all"},
                           Row{ReplyVerdict::Refused, "Line settings and wiring are correct"},
                           Row{ReplyVerdict::HighBits, "have bit 7 set"},
                           Row{ReplyVerdict::Echo, "The request comes back"},
                           Row{ReplyVerdict::WrongSum, "Replies are damaged"},
                           Row{ReplyVerdict::Surrounded, "--tolerant accepts such replies"},
                           Row{ReplyVerdict::LinkLost, "The link was lost"}})
        EXPECT_TRUE(meaning(foundVerdict(row.verdict)).contains(row.words)) << row.words;
    Finding enquiryAlone = foundVerdict(ReplyVerdict::Silence);
    enquiryAlone.check.answersEnquiry = true;
    EXPECT_TRUE(meaning(enquiryAlone).startsWith("The PLC answers ENQ but no request."));
    Finding talking = foundVerdict(ReplyVerdict::Babble);
    talking.check.unasked = "12.5 kg\r\n";
    EXPECT_TRUE(meaning(talking).startsWith("Something on this line sends by itself: '12.5 kg'."));
}

TEST(Diagnosis, CallsOnlyALineWithoutAnyFaultWell)
{
    const auto isWell = [](const Finding& finding) {
        return meaning(finding).contains("All is well");
    };
    EXPECT_TRUE(isWell(measured(100)));
    EXPECT_FALSE(isWell(measured(99, 1)));
    Finding faulty = measured(100);
    faulty.check.blocks.append({32, ReplyVerdict::Incomplete});
    EXPECT_FALSE(isWell(faulty));
    EXPECT_TRUE(commandLine(faulty).contains("?words=8"));
    faulty = measured(100);
    faulty.check.unasked = "x";
    EXPECT_FALSE(isWell(faulty));
    faulty = measured(100);
    faulty.needsTolerance = true;
    EXPECT_FALSE(isWell(faulty));
    EXPECT_TRUE(commandLine(faulty).contains(" --tolerant "));
    faulty = measured(3);
    faulty.check.wentSilent = true;
    EXPECT_FALSE(isWell(faulty));
}

TEST(Diagnosis, GivesResponseTimesAsExactAsPeopleNeedThem)
{
    Finding finding = measured(9, 1);
    for (const qint64 timeUs : {200, 300, 400, 25000, 1600000})
        finding.check.responses.add(timeUs);
    EXPECT_EQ(measurementText(finding.check), "9 of 10 exchanges good; replies: median <1 ms, "
                                              "95 % in 1600 ms, longest 1600 ms");
    EXPECT_TRUE(commandLine(finding).contains(" --timeout 3200 ")) << "twice the longest";
}

TEST(Diagnosis, PrefersAReplyToSilence)
{
    Finding enquiryAlone = foundVerdict(ReplyVerdict::Silence);
    enquiryAlone.check.answersEnquiry = true;
    QVector<Finding> findings = {foundVerdict(ReplyVerdict::Silence), enquiryAlone};
    EXPECT_TRUE(mostTelling(findings).check.answersEnquiry);
    findings.append(foundVerdict(ReplyVerdict::WrongSum));
    findings.prepend(foundVerdict(ReplyVerdict::HighBits));
    EXPECT_EQ(mostTelling(findings).check.verdict, ReplyVerdict::HighBits) << "the first";
    findings.append(measured(100));
    EXPECT_EQ(mostTelling(findings).check.verdict, ReplyVerdict::Good);
}
