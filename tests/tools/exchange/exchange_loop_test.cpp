// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the loop does with the line between two frames: when it waits for quiet, when it asks with
// ENQ, and what it throws away so that nothing of it stands for the answer to the next frame.

#include "tests/tools/support/virtual_line.h"
#include "tests/tools/support/wire.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

// Every block is read, one after the other, and the values name their registers.
class Loop : public testing::Test
{
protected:
    // The line is greeted.
    void start(const fxsim::Settings& settings, const SessionSettings& sessionSettings = {})
    {
        bench.emplace(settings, sessionSettings);
        bench->loop.greet();
        bench->loop.statistics() = Statistics();
        bench->line.forgetSent();
        fillWithOwnAddresses(bench->line.memory());
        bench->session.setPlan({range("D0:4"), range("D100:4")});
    }

    // A line of 9600 baud on which so many exchanges were good that it is known how soon replies
    // begin; the faults come from then on.
    void startKnownLine(const char* faults)
    {
        start(badLine(9600, ""), SessionSettings{20, 32});
        verdictsUntil(16);
        bench->line.setFaults(faults);
    }

    Exchange step() { return bench->loop.step().value(); }

    // Steps until `goodOnes` answers were accepted; what was wrong with the others, in their order.
    QStringList verdictsUntil(int goodOnes)
    {
        QStringList verdicts;
        for (int good = 0; good < goodOnes;) {
            const Exchange exchange = step();
            if (exchange.answer == DriverAnswer::Accepted)
                ++good;
            else
                verdicts += verdictName(exchange.verdict);
        }
        return verdicts;
    }

    void expectRightValues()
    {
        for (const int first : {0, 100}) {
            RegisterRange block = range("D0:4");
            block.first = first;
            const QVector<quint32> values = bench->session.values(block);
            for (int index = 0; index < values.size(); ++index)
                EXPECT_EQ(values[index], wordNaming(addressOfD(first + index))) << first + index;
        }
    }

    int enquiries() { return bench->line.sent().count(QByteArray(1, enq)); }

    std::optional<Bench> bench;
};

}  // namespace

TEST_F(Loop, HasNothingToDoWithoutAPlan)
{
    Bench idle;
    EXPECT_FALSE(idle.loop.step());
    EXPECT_TRUE(idle.line.sent().isEmpty());
    EXPECT_EQ(idle.loop.statistics().total().sent, 0);
}

TEST_F(Loop, SendsAFrameAndHandsItsAnswerOver)
{
    start(badLine(9600, ""));
    const qint64 greetedUs = bench->line.nowUs();
    int calls = 0;
    bench->loop.onExchange = [&calls](const Exchange&) { ++calls; };
    Exchange exchange = step();
    EXPECT_EQ(bench->line.sent(), QByteArrayList({wire("␂0100008␃5C")}));
    EXPECT_EQ(exchange.kind, ExchangeKind::CyclicRead);
    EXPECT_EQ(exchange.verdict, ReplyVerdict::Good);
    EXPECT_EQ(exchange.answer, DriverAnswer::Accepted);
    EXPECT_EQ(exchange.reply, exchange.handed);
    EXPECT_EQ(exchange.thrownAway, "");
    // 11 characters to the PLC and 20 back, of 10 bits each.
    EXPECT_EQ(exchange.responseUs, (11 + 20) * 1041);
    exchange = step();
    EXPECT_EQ(exchange.startedUs, greetedUs + (11 + 20) * 1041 + 5000);  // behind a moment of quiet
    EXPECT_EQ(bench->loop.statistics().busyUs, 2 * exchange.responseUs);
    EXPECT_EQ(calls, 2);
}

TEST_F(Loop, NeedsNoMomentOfQuietWhenItIsKnownHowSoonRepliesBegin)
{
    startKnownLine("");
    const qint64 endedUs = bench->line.nowUs();
    EXPECT_EQ(step().startedUs, endedUs);
}

TEST_F(Loop, AsksWithEnqAfterEverySilence)
{
    start(badLine(0, "silence@2+4-8"), SessionSettings{20, 32});
    EXPECT_EQ(verdictsUntil(4).join(' '), "silence silence silence silence silence silence");
    EXPECT_EQ(enquiries(), 6);
    EXPECT_EQ(bench->loop.statistics().enquiriesSent, 6);
    EXPECT_EQ(bench->loop.statistics().enquiriesAnswered, 6);
    // Each silence is followed by its ENQ before the frame goes out again.
    const QByteArrayList& sent = bench->line.sent();
    for (int index = 1; index < sent.size(); ++index)
        EXPECT_FALSE(sent[index] == sent[index - 1]) << index;
}

TEST_F(Loop, GivesEnqUpWhereFramesAreAnsweredAndItIsNot)
{
    start(badLine(0, "silence@2-3+5-7+9", fxsim::EnquiryMode::Ignored), SessionSettings{20, 32});
    verdictsUntil(4);  // after each of which it waited five seconds for an ACK
    const int before = enquiries();
    bench->line.setFaults("silence@1");
    verdictsUntil(1);
    EXPECT_EQ(enquiries(), before);
    EXPECT_EQ(bench->loop.statistics().enquiriesAnswered, 0);
}

TEST_F(Loop, AsksOnWhereEnqWasAnsweredOnce)
{
    start(badLine(0, "power-cycle:60000@2"), SessionSettings{20, 32});
    verdictsUntil(1);
    for (int silence = 0; silence < 5; ++silence)
        EXPECT_EQ(step().verdict, ReplyVerdict::Silence);
    EXPECT_EQ(enquiries(), 5);
    EXPECT_EQ(bench->loop.statistics().enquiriesAnswered, 0);
}

// The answer to a frame given up comes before the ACK, or behind it where ENQ is not answered in
// its turn: either way it is gone before the next frame.
TEST_F(Loop, ThrowsALateAnswerAway)
{
    const struct
    {
        const char* faults;
        fxsim::EnquiryMode mode;
    } rows[] = {
        // The time-out is 1 s here: ENQ goes out after 1.25 s, and is given up after 2.25 s.
        {"delay:1200@1", fxsim::EnquiryMode::Optional},
        {"delay:1600@1", fxsim::EnquiryMode::Optional},
        {"delay:1600@1", fxsim::EnquiryMode::Ignored},
        {"delay:3200@1", fxsim::EnquiryMode::Ignored},
    };
    for (const auto& row : rows) {
        start(badLine(0, row.faults, row.mode), SessionSettings{20, 32});
        const Exchange late = step();
        EXPECT_EQ(late.verdict, ReplyVerdict::Late) << row.faults;
        EXPECT_EQ(late.handed, "");
        EXPECT_EQ(bench->loop.statistics().bytesThrownAway, 20) << row.faults;
        EXPECT_EQ(verdictsUntil(2).join(' '), "");
        expectRightValues();
    }
}

// The first one comes before the PLC can have read the second request. Then there is a moment of
// quiet before each of the next 256 frames, in which the others come.
TEST_F(Loop, ThrowsADuplicateAwayThatComesLate)
{
    startKnownLine("duplicate:2@1-");
    EXPECT_EQ(verdictsUntil(257).join(' '), "late");
    EXPECT_EQ(enquiries(), 1);
    EXPECT_EQ(verdictsUntil(2).join(' '), "late");
    expectRightValues();
}

// No value may come from a reply that is too quick, even where none follows it.
TEST_F(Loop, DoesNotTakeAStrayReplyForTheOneThatIsLost)
{
    startKnownLine("duplicate:2@1,silence@2");
    EXPECT_EQ(verdictsUntil(2).join(' '), "late");
    expectRightValues();
}

// At 1200 baud a copy that follows at once comes 8 ms later, at 115200 baud in 0.1 ms.
TEST_F(Loop, DoesNotTakeACopyThatFollowsAtOnceForTheReplyThatIsLost)
{
    for (const int baud : {300, 1200, 9600, 115200}) {
        for (const int before : {2, 20}) {  // how soon replies begin is not known yet, or is
            start(badLine(baud, ""), SessionSettings{20, 32});
            verdictsUntil(before);
            bench->line.setFaults("duplicate@1,silence@2");
            SCOPED_TRACE(QString("%1 baud, %2").arg(baud).arg(before).toStdString());
            verdictsUntil(1);
            verdictsUntil(1);
            expectRightValues();
        }
    }
}

TEST_F(Loop, DoesNotTakeAStrayNakForARefusal)
{
    startKnownLine("nak@1,duplicate:2@1");
    EXPECT_EQ(step().verdict, ReplyVerdict::Refused);
    EXPECT_EQ(step().verdict, ReplyVerdict::Late);
}

// The second attempt at a write gets the second copy of the NAK first, then its own ACK.
TEST_F(Loop, DoesNotTakeASecondNakForTheAnswerToTheRepeatedWrite)
{
    start(badLine(9600, "nak@2,duplicate:7@2"), SessionSettings{20, 32});
    verdictsUntil(1);
    bench->session.write(range("D9"), {1});
    EXPECT_EQ(step().verdict, ReplyVerdict::Refused);
    const Exchange repeated = step();
    EXPECT_EQ(repeated.kind, ExchangeKind::Write);
    EXPECT_EQ(repeated.answer, DriverAnswer::Repeat);
    EXPECT_EQ(repeated.thrownAway, wire("␆"));
    EXPECT_TRUE(repeated.mayBeDone);
    EXPECT_EQ(step().verdict, ReplyVerdict::Good);
}

// A PLC without an ENQ, so that a NAK and the ACK behind it come in one piece.
TEST_F(Loop, TakesNoNakForSureThatAnAckFollows)
{
    start(badLine(0, "nak@21,duplicate:5@21"), SessionSettings{1, 32});
    verdictsUntil(20);
    bench->session.write(range("D9"), {1});
    EXPECT_EQ(step().verdict, ReplyVerdict::Refused);
    bench->session.write(range("D8"), {1});
    const Exchange second = step();
    EXPECT_EQ(second.reply, wire("␕␆"));
    EXPECT_TRUE(second.mayBeDone);
}

// A second copy may be taken for the answer to the same read sent again: it has a right value. That
// read's own answer, with another value, is not for the next block.
TEST_F(Loop, WaitsForTheAnswerToARepeatedReadBeforeAnother)
{
    for (int copyMs = 1; copyMs < 8; ++copyMs) {
        const QString faults = QString("duplicate:%1@2,delay:15@3").arg(copyMs);
        start(badLine(9600, qPrintable(faults)), SessionSettings{20, 32});
        bench->session.setPlan({range("D0:4")});
        verdictsUntil(2);
        bench->setD(0, 4711);
        verdictsUntil(1);
        bench->session.setPlan({range("D100:4")});
        verdictsUntil(1);
        EXPECT_EQ(bench->session.values(range("D100"))[0], wordNaming(addressOfD(100))) << copyMs;
    }
}

// A copy after 15 ms, where replies begin after 40 ms. Before, they began after 4 ms.
TEST_F(Loop, LearnsThatTheLinkHasBecomeSlower)
{
    start(badLine(0, "delay:4@1-40,delay:40@41-,duplicate:15@400"), SessionSettings{20, 32});
    EXPECT_EQ(verdictsUntil(401).join(' '), "late");
    expectRightValues();
}

TEST_F(Loop, TakesQuickRepliesAgainAfterOneOfALinkThatHasBecomeQuicker)
{
    start(badLine(0, "delay:30@1-20"), SessionSettings{20, 32});
    EXPECT_EQ(verdictsUntil(40).join(' '), "late");
    expectRightValues();
}

// The ACKs of two ENQs come behind an answer that is 3.5 s late. They must not be taken for the
// answer to a write, which the PLC refuses.
TEST_F(Loop, SendsNoWriteUntilEveryEnqIsAcknowledged)
{
    start(badLine(0, "delay:3500@3"), SessionSettings{20, 32});
    bench->refuseD(500, 500);
    verdictsUntil(2);
    EXPECT_EQ(step().verdict, ReplyVerdict::Silence);
    bench->session.write(range("D500"), {77});
    Exchange exchange = step();
    while (exchange.kind != ExchangeKind::Write)
        exchange = step();
    EXPECT_EQ(exchange.verdict, ReplyVerdict::Refused);
    EXPECT_EQ(bench->loop.statistics().enquiriesAnswered, 0) << "in time";
    expectRightValues();
}

// The first attempt gets no answer, and behind it come a second ACK for the write before and the
// ACK for ENQ: neither is the answer to the second attempt.
TEST_F(Loop, RepeatsNoWriteUntilEveryEnqIsAcknowledged)
{
    start(badLine(0, "duplicate:1500@2,silence@3"), SessionSettings{20, 32});
    bench->refuseD(500, 500);
    verdictsUntil(1);
    for (const char* const address : {"D100", "D500"})
        bench->session.write(range(address), {wordNaming(addressOfD(100))});
    EXPECT_EQ(step().verdict, ReplyVerdict::Good);
    EXPECT_EQ(step().verdict, ReplyVerdict::Silence);
    EXPECT_EQ(step().verdict, ReplyVerdict::Refused);
}

// A repeated read may be answered by the late reply to its first copy. Then its own is still to
// come.
TEST_F(Loop, GivesTheSecondAnswerToARepeatedReadToNoOther)
{
    for (int firstMs = 100; firstMs < 4500; firstMs += 100) {
        for (int secondMs = 100; secondMs < 4500; secondMs += 300) {
            const QString faults = QString("delay:%1@3,delay:%2@4").arg(firstMs).arg(secondMs);
            start(badLine(9600, qPrintable(faults)), SessionSettings{20, 32});
            verdictsUntil(2);
            step();
            bench->setD(0, 4711);
            for (int read = 0; read < 6; ++read) {
                verdictsUntil(1);
                ASSERT_EQ(bench->session.values(range("D100"))[0], wordNaming(addressOfD(100)))
                    << faults.toStdString();
            }
            EXPECT_EQ(bench->session.values(range("D0"))[0], 4711U);
        }
    }
}

TEST_F(Loop, TakesAnAckForLostAfterFiveSeconds)
{
    start(badLine(0, "power-cycle:3000@3"), SessionSettings{1, 32});
    verdictsUntil(2);
    EXPECT_EQ(step().verdict, ReplyVerdict::Silence);
    qint64 askedUs = bench->line.nowUs();
    const Exchange next = step();
    EXPECT_GT(next.startedUs - askedUs, 2500000);
    EXPECT_LT(next.startedUs - askedUs, 5000000);
    EXPECT_EQ(next.verdict, ReplyVerdict::Good);
    // The next one is not waited for, though one is still missing.
    bench->line.setFaults("silence@1");
    EXPECT_EQ(step().verdict, ReplyVerdict::Silence);
    askedUs = bench->line.nowUs();
    EXPECT_LT(step().startedUs - askedUs, 1000000);
}

TEST_F(Loop, DoesNotWaitSoLongForAPlcThatNeverAnswersEnq)
{
    start(badLine(0, "silence@2-6", fxsim::EnquiryMode::Ignored), SessionSettings{1, 32});
    verdictsUntil(1);
    for (int silence = 0; silence < 4; ++silence)
        step();
    const qint64 beforeUs = bench->line.nowUs();
    step();
    EXPECT_LT(bench->line.nowUs() - beforeUs, 5000000);
}

TEST_F(Loop, EndsTheWaitForAnAckAtAnInterrupt)
{
    start(badLine(0, "power-cycle:600000@1"), SessionSettings{1, 32});
    bench->session.setPlan({range("D0:4"), range("D100:4"), range("D200:4")});
    qint64 interruptedUs = 3600000000;
    LoopSettings settings = bench->line.loopSettings();
    settings.isInterrupted = [&] { return bench->line.nowUs() >= interruptedUs; };
    ExchangeLoop loop(bench->session, bench->line, settings);
    EXPECT_EQ(loop.step()->verdict, ReplyVerdict::Silence);
    interruptedUs = bench->line.nowUs() + 500000;
    const Exchange interrupted = loop.step().value();
    EXPECT_EQ(interrupted.verdict, ReplyVerdict::Interrupted);
    EXPECT_FALSE(interrupted.wasSent);
    const qint64 endedUs = bench->line.nowUs();
    EXPECT_LE(endedUs, interruptedUs + 100000);
    interruptedUs = 3600000000;
    EXPECT_GT(loop.step()->startedUs - endedUs, 1000000) << "it is still owed";
}

// Four usual response times of 32 ms.
TEST_F(Loop, ListensForLongAfterADamagedAnswer)
{
    start(badLine(9600, "wrong-sum@2,duplicate:120@2"), SessionSettings{20, 32});
    verdictsUntil(1);
    EXPECT_EQ(step().thrownAway.size(), 20);
    EXPECT_EQ(verdictsUntil(2).join(' '), "");
    expectRightValues();
}

TEST_F(Loop, WaitsLongerAfterASilence)
{
    start(badLine(0, "silence@2+3"), SessionSettings{20, 32});
    for (const int timeoutMs : {50, 100, 200, 50}) {
        step();
        EXPECT_EQ(bench->loop.timeout().milliseconds(), timeoutMs);
    }
}

TEST_F(Loop, NeedsNoWaitAfterAPlainNak)
{
    startKnownLine("nak@1");
    const qint64 beforeUs = bench->line.nowUs();
    const Exchange refused = step();
    EXPECT_EQ(refused.verdict, ReplyVerdict::Refused);
    EXPECT_EQ(refused.handed, wire("␕"));
    EXPECT_EQ(enquiries(), 0);
    EXPECT_EQ(bench->line.nowUs() - beforeUs,
              (11 + 1) * 1041);  // eleven characters there, one back
}

TEST_F(Loop, DrainsTheLineAfterNakAndMoreBytes)
{
    start(badLine(0, "nak@1,junk-after:100@1,slices:20@1"), SessionSettings{20, 32});
    const Exchange refused = step();
    EXPECT_EQ(refused.verdict, ReplyVerdict::Refused);
    EXPECT_EQ(refused.handed, QByteArray(32, nak));
    EXPECT_EQ(refused.reply.size() + refused.thrownAway.size(), 101);
    EXPECT_EQ(verdictsUntil(2).join(' '), "");
    expectRightValues();
    EXPECT_EQ(enquiries(), 0);
}

TEST_F(Loop, HandsNothingOverThatIsNotAsLongAsTheAnswer)
{
    const struct
    {
        const char* faults;  // of the first exchange
        ReplyVerdict verdict;
        int handedBytes;  // of NAK where the answer was not as long as it should be
        int enquiries;
    } rows[] = {
        {"truncated:7@1", ReplyVerdict::Incomplete, 7, 1},
        {"truncated:1@1", ReplyVerdict::Incomplete, 1, 1},
        {"junk-after:3@1", ReplyVerdict::Surrounded, 23, 0},
        {"duplicate@1", ReplyVerdict::Surrounded, 40, 0},
        {"echo@1", ReplyVerdict::Echo, 31, 0},
        {"silence@1", ReplyVerdict::Silence, 0, 1},
    };
    for (const auto& row : rows) {
        start(badLine(0, row.faults), SessionSettings{20, 32});
        const Exchange exchange = step();
        EXPECT_EQ(exchange.verdict, row.verdict) << row.faults;
        EXPECT_EQ(exchange.answer, DriverAnswer::Repeat) << row.faults;
        EXPECT_EQ(exchange.handed.size(), row.handedBytes) << row.faults;
        EXPECT_EQ(enquiries(), row.enquiries) << row.faults;
        EXPECT_EQ(verdictsUntil(2).join(' '), "") << row.faults;
        expectRightValues();
    }
}

TEST_F(Loop, HandsADamagedAnswerOverAsItCame)
{
    start(badLine(0, "wrong-sum@1"));
    const Exchange damaged = step();
    EXPECT_EQ(damaged.verdict, ReplyVerdict::WrongSum);
    EXPECT_EQ(damaged.handed, damaged.reply);
    EXPECT_EQ(damaged.answer, DriverAnswer::Repeat);
}

// A USB adapter hands an answer over in slices, with pauses shorter than those between answers, and
// shorter than the whole time-out.
TEST_F(Loop, WaitsBetweenSlicesOnly)
{
    const struct
    {
        const char* faults;
        TimeoutLimits timeout;
        ReplyVerdict verdict;
    } rows[] = {
        {"slices:90@1", {}, ReplyVerdict::Good},
        {"slices:110@1", {}, ReplyVerdict::Late},
        {"slices:90@1", TimeoutLimits::fixed(50), ReplyVerdict::Late},
    };
    for (const auto& row : rows) {
        start(badLine(0, row.faults));
        bench->session.setPlan({range("D0:32")});
        LoopSettings settings = bench->line.loopSettings();
        settings.timeout = row.timeout;
        EXPECT_EQ(ExchangeLoop(bench->session, bench->line, settings).step()->verdict, row.verdict);
    }
}

TEST_F(Loop, KeepsAFrameThatALostLinkTook)
{
    start(badLine(0, "link-drop@2"));
    verdictsUntil(1);
    const Exchange lost = step();
    EXPECT_EQ(lost.verdict, ReplyVerdict::LinkLost);
    EXPECT_EQ(lost.answer, DriverAnswer::NoFrame);
    EXPECT_FALSE(lost.hasEnded());
    EXPECT_EQ(step().verdict, ReplyVerdict::LinkLost);  // still away
    EXPECT_EQ(bench->loop.statistics().linksLost, 2);
    bench->line.open();
    bench->line.forgetSent();
    const Exchange again = step();
    EXPECT_EQ(again.answer, DriverAnswer::Accepted);
    EXPECT_EQ(requestBytes(again.frame), requestBytes(lost.frame));
    EXPECT_EQ(enquiries(), 2) << "replies from before the loss come first";
}

TEST_F(Loop, KnowsTheKindOfAFrame)
{
    start(badLine(0, ""));
    bench->session.write(range("D9"), {1});
    EXPECT_EQ(step().kind, ExchangeKind::Write);
    bench->session.queueRead(range("D20:2"));
    EXPECT_EQ(step().kind, ExchangeKind::ConditionalRead);
    EXPECT_EQ(step().kind, ExchangeKind::CyclicRead);
    bench->session.startRecipe(RecipeDirection::Upload, {range("D30:2")});
    EXPECT_EQ(step().kind, ExchangeKind::RecipeUpload);
    bench->session.startRecipe(RecipeDirection::Upload, {range("D30:2")});
    bench->session.startRecipe(RecipeDirection::Download, {range("D30:2")});
    EXPECT_EQ(step().kind, ExchangeKind::RecipeDownload);
    EXPECT_EQ(step().kind, ExchangeKind::RecipeUpload);
}

TEST_F(Loop, KnowsTheKindOfARepeatedFrameFromItsFirstTime)
{
    start(badLine(0, "wrong-sum@1,link-drop@3"));
    EXPECT_EQ(step().kind, ExchangeKind::CyclicRead);
    bench->session.startRecipe(RecipeDirection::Download, {range("D30:2")});
    EXPECT_EQ(step().kind, ExchangeKind::CyclicRead);
    EXPECT_EQ(step().kind, ExchangeKind::RecipeDownload);
    bench->line.open();
    EXPECT_EQ(step().kind, ExchangeKind::RecipeDownload);
    bench->session.write(range("D9"), {1});
    bench->line.setFaults("link-drop@1");
    EXPECT_EQ(step().verdict, ReplyVerdict::LinkLost);
    bench->session.startRecipe(RecipeDirection::Upload, {range("D30:2")});
    bench->line.open();
    EXPECT_EQ(step().kind, ExchangeKind::Write);
}

TEST_F(Loop, CountsItsFailures)
{
    start(badLine(0, "wrong-sum@2-4"), SessionSettings{3, 32});
    for (int exchange = 0; exchange < 5; ++exchange)
        step();
    const KindCounts& reads = bench->loop.statistics().of(ExchangeKind::CyclicRead);
    EXPECT_EQ(reads.sent, 5);
    EXPECT_EQ(reads.accepted, 2);
    EXPECT_EQ(reads.repeated, 2);
    EXPECT_EQ(reads.failed, 1);
}
