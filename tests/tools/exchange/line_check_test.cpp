// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Lines and PLCs as a check finds them.

#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/diagnosis.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr int addressOfD8001 = 0x0E02;
constexpr int addressOfM8000 = 0x01E0;

class CheckedLine : public testing::Test
{
protected:
    LineCheck check(const fxsim::Settings& settings)
    {
        bench.emplace(settings, SessionSettings{1, 32});
        bench->line.memory().setValue(addressOfD8001, 2, 26134);
        bench->line.memory().setByte(addressOfM8000, relays);
        LineCheck check = greetPlc(bench->loop, catalogue());
        measureLine(bench->loop, catalogue(), check, [](int, int) {});
        return check;
    }

    std::optional<Bench> bench;
    quint8 relays = 0x21;  // M8000 to M8007
};

}  // namespace

TEST_F(CheckedLine, ThatIsGoodHasItsFigures)
{
    const LineCheck found = check(badLine(9600, ""));
    EXPECT_TRUE(found.unasked.isEmpty());
    EXPECT_TRUE(found.answersEnquiry);
    EXPECT_EQ(found.verdict, ReplyVerdict::Good);
    EXPECT_EQ(found.measured(), 100);
    EXPECT_EQ(found.goodPercent(), 100);
    EXPECT_EQ(found.worst(), ReplyVerdict::Good);
    EXPECT_EQ(found.words(), 32);
    EXPECT_FALSE(found.wentSilent);
    EXPECT_EQ(found.responses.largestUs(), (11 + 132) * 1041);
    ASSERT_TRUE(found.plc);
    EXPECT_EQ(found.plc->type, 26);
    EXPECT_EQ(found.plc->version, 134);
    EXPECT_TRUE(found.plc->isRunning);
    EXPECT_FALSE(found.plc->hasError);
    EXPECT_TRUE(found.plc->hasLowBattery);
}

TEST_F(CheckedLine, ShowsThatThePlcHasStoppedWithAnError)
{
    relays = 0x10;
    const std::optional<PlcState> plc = check(badLine(9600, "")).plc;
    ASSERT_TRUE(plc);
    EXPECT_FALSE(plc->isRunning);
    EXPECT_TRUE(plc->hasError);
    EXPECT_FALSE(plc->hasLowBattery);
}

TEST_F(CheckedLine, FindsTheLargestBlockThatWorks)
{
    fxsim::Settings small = badLine(9600, "");
    small.maxBytes = 32;
    LineCheck found = check(small);
    EXPECT_EQ(found.words(), 16);
    EXPECT_EQ(found.blocks.last().byteCount, 64);
    EXPECT_EQ(found.blocks.last().verdict, ReplyVerdict::Refused);
    EXPECT_EQ(found.goodPercent(), 100) << "measured with blocks that work";
    small.maxBytes = 2;
    found = check(small);
    EXPECT_EQ(found.words(), 1);
    EXPECT_EQ(found.blocks.size(), 2);
}

// Each at its own places among the exchanges; one of a hundred is enough.
TEST_F(CheckedLine, NeverTakesADamagedOneForGood)
{
    struct Row
    {
        const char* faults;
        ReplyVerdict worst;
    };
    for (const Row& row :
         {Row{"wrong-sum=0.1", ReplyVerdict::WrongSum}, Row{"wrong-sum@60", ReplyVerdict::WrongSum},
          Row{"truncated=0.1", ReplyVerdict::Incomplete}, Row{"silence=0.1", ReplyVerdict::Silence},
          Row{"nak=0.1,silence@60", ReplyVerdict::Refused},
          Row{"junk-before=0.1", ReplyVerdict::Surrounded}}) {
        const LineCheck found = check(badLine(9600, row.faults));
        EXPECT_EQ(found.verdict, ReplyVerdict::Good) << row.faults;
        EXPECT_EQ(found.words(), 32) << row.faults;
        EXPECT_EQ(found.measured(), 100) << row.faults;
        EXPECT_LT(found.goodPercent(), 100) << row.faults;
        EXPECT_EQ(found.worst(), row.worst) << row.faults;
    }
}

TEST_F(CheckedLine, IsMeasuredWhereThePlcRefusesItsSpecialRegisters)
{
    bench.emplace(badLine(9600, ""), SessionSettings{1, 32});
    bench->line.refuse(addressOfD8001 - 2, addressOfD8001 + 1);
    LineCheck found = greetPlc(bench->loop, catalogue());
    EXPECT_EQ(found.verdict, ReplyVerdict::Good);
    EXPECT_EQ(found.timeoutMs, bench->loop.timeout().milliseconds());
    measureLine(bench->loop, catalogue(), found, [](int, int) {});
    EXPECT_FALSE(found.plc);
    EXPECT_EQ(found.timeoutMs, bench->loop.timeout().milliseconds());
    EXPECT_EQ(found.goodPercent(), 100);
    EXPECT_EQ(found.measured(), 100);
}

TEST_F(CheckedLine, WithASlowPlcTellsTheTimeOutThatWorks)
{
    const LineCheck found = check(badLine(9600, "delay:1500=1"));
    EXPECT_EQ(found.verdict, ReplyVerdict::Good);
    EXPECT_EQ(found.goodPercent(), 100);
    EXPECT_GT(found.timeoutMs, 1500);
}

TEST_F(CheckedLine, OfASilentPlcEndsSoon)
{
    const LineCheck found = check(badLine(9600, "power-cycle:600000@3"));
    EXPECT_EQ(found.verdict, ReplyVerdict::Good);
    EXPECT_EQ(found.goodPercent(), 0);
    EXPECT_LE(found.measured(), 4);
    EXPECT_EQ(LineCheck().words(), 0) << "where not even a word could be read";
    EXPECT_TRUE(found.wentSilent);
    EXPECT_LT(bench->line.nowUs(), 30 * 1000000);
}

TEST_F(CheckedLine, ThatIsLostIsToldAsSuch)
{
    EXPECT_EQ(check(badLine(9600, "link-drop@50")).verdict, ReplyVerdict::LinkLost);
}

TEST(Somebody, IsThereWhoSendsAnything)
{
    Bench good;
    EXPECT_TRUE(isAnyoneThere(good.loop));
    Bench silent(badLine(0, "silence=100%", fxsim::EnquiryMode::Ignored));
    EXPECT_FALSE(isAnyoneThere(silent.loop));
}

TEST(LineChecks, CountEvenOneExchange)
{
    LineCheck check;
    EXPECT_EQ(check.goodPercent(), 0);
    check.exchanges[ReplyVerdict::Good] = 1;
    EXPECT_EQ(check.goodPercent(), 100);
}

TEST(LineInUse, IsJudgedByAllItsExchanges)
{
    Statistics statistics;
    const auto meaningNow = [&statistics](bool isDown) {
        return meaning({{}, "press1", true, false, checkOf(statistics, isDown)});
    };
    EXPECT_TRUE(meaningNow(false).startsWith("No reply at all."));
    statistics.kinds[ExchangeKind::CyclicRead].accepted = 30000000;
    statistics.verdicts[ReplyVerdict::Good] = 30000000;
    EXPECT_EQ(meaningNow(false), "The PLC answers (press1). All is well.");
    statistics.verdicts[ReplyVerdict::Interrupted] = 3;
    EXPECT_EQ(meaningNow(false), "The PLC answers (press1). All is well.") << "by the user";
    EXPECT_TRUE(meaningNow(true).startsWith("The PLC answered (press1), then no more."));
    statistics.verdicts[ReplyVerdict::WrongSum] = 1;
    EXPECT_EQ(meaningNow(false),
              "The PLC answers (press1). All but 1 of 30000001 exchanges were good; the most "
              "frequent error is '" +
                  verdictText(ReplyVerdict::WrongSum) +
                  "'. Replies are damaged. Check the baud rate, the parity and the cable, and look "
                  "for electrical interference.");
}
