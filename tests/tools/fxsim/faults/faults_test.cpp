// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Fault plans from and to text.

#include "tests/tools/fxsim/error_text.h"
#include "tests/tools/fxsim/printing.h"
#include "tools/fxsim/faults/faults.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

QString again(const char* text)
{
    return faultPlanText(parseFaults(QString::fromLatin1(text)));
}

QString errorOf(const char* text)
{
    return errorText([text] { parseFaults(QString::fromLatin1(text)); });
}

}  // namespace

TEST(FaultPlan, ReadsRatesExchangesAndValues)
{
    const FaultPlan plan = parseFaults("silence=0.05,nak=2%,delay:800@3,wrong-sum@7-9+20-,delay@4");
    ASSERT_EQ(plan.size(), 5);
    EXPECT_EQ(plan[0].kind, FaultKind::Silence);
    EXPECT_DOUBLE_EQ(plan[0].rate, 0.05);
    EXPECT_EQ(plan[1].kind, FaultKind::Nak);
    EXPECT_DOUBLE_EQ(plan[1].rate, 0.02);
    EXPECT_EQ(plan[2].spans.at(0).first, 3);
    EXPECT_EQ(plan[2].spans.at(0).last, 3);
    EXPECT_EQ(plan[2].value, 800);
    EXPECT_EQ(plan[3].spans.at(0).last, 9);
    EXPECT_EQ(plan[3].spans.at(1).first, 20);
    EXPECT_GT(plan[3].spans.at(1).last, 1000000000);
    EXPECT_EQ(plan[4].value, 1500) << "the default";
}

TEST(FaultPlan, IsTextAgain)
{
    EXPECT_EQ(again("silence=0.05,nak=2%"), "silence=0.05,nak=0.02");
    EXPECT_EQ(again("delay:800@3+7-9+20-"), "delay:800@3+7-9+20-");
    EXPECT_EQ(again("delay:1500@1"), "delay@1");
    EXPECT_EQ(again("none"), "none");
    EXPECT_EQ(again(""), "none");
}

TEST(FaultPlan, KnowsEveryFaultByName)
{
    for (const char* name : {"silence", "nak", "delay", "wrong-sum", "flipped-bits", "bit7",
                             "truncated", "lost-stx", "lost-etx", "junk-before", "junk-after",
                             "duplicate", "slices", "echo", "link-drop", "power-cycle"}) {
        const QByteArray rule = QByteArray(name) + "@1";
        EXPECT_EQ(again(rule.constData()), QString::fromLatin1(rule));
        EXPECT_TRUE(faultHelp().contains("\n  " + QByteArray(name) + ' ')) << name;
    }
}

TEST(FaultPlan, MixedSharesItsRateAmongTheFaultsOfTheLine)
{
    const FaultPlan plan = parseFaults("mixed:50=0.14");
    ASSERT_EQ(plan.size(), 14);
    for (const FaultRule& rule : plan) {
        EXPECT_DOUBLE_EQ(rule.rate, 0.01);
        EXPECT_NE(rule.kind, FaultKind::LinkDrop);
        EXPECT_NE(rule.kind, FaultKind::PowerCycle);
        EXPECT_EQ(rule.value, rule.kind == FaultKind::Delay ? 50 : factsOf(rule.kind).value);
    }
}

TEST(FaultPlan, SaysWhatIsWrong)
{
    EXPECT_EQ(
        errorOf("silent=0.1"),
        "fault 'silent=0.1': unknown fault (did you mean silence?); 'help' in place of the plan "
        "lists all faults");
    EXPECT_EQ(errorOf("noise=0.1"),
              "fault 'noise=0.1': unknown fault; 'help' in place of the plan lists all faults");
    EXPECT_EQ(errorOf("silence"),
              "fault 'silence': add a rate or exchanges, as in NAME=0.05 or NAME@3");
    EXPECT_EQ(errorOf("nak@2,silence=1.5"),
              "fault 'silence=1.5': the rate must be 0 to 1, or 0% to 100%");
    EXPECT_EQ(errorOf("silence=nan"),
              "fault 'silence=nan': the rate must be 0 to 1, or 0% to 100%");
    EXPECT_EQ(errorOf("nak@0"),
              "fault 'nak@0': exchanges are numbered from 1, as in @3, @7-9, @20- "
              "or @3+7-9");
    EXPECT_EQ(errorOf("nak@9-7"), "fault 'nak@9-7': the range of exchanges ends before it starts");
    EXPECT_EQ(errorOf("nak:5@1"), "fault 'nak:5@1': nak takes no value");
    EXPECT_EQ(errorOf("delay:-1@1"),
              "fault 'delay:-1@1': invalid value '-1': expected 0 to 600000");
    EXPECT_EQ(errorOf("mixed@3"), "fault 'mixed@3': mixed takes a rate, as in mixed=0.1");
}
