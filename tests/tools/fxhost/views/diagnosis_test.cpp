// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What doctor says of a measured line.

#include "tools/fxhost/views/diagnosis.h"

#include <gtest/gtest.h>

using namespace fxtools;

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
                           Row{ReplyVerdict::Surrounded, "--tolerant takes such replies"},
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
