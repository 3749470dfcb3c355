// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Lines that are bad rather than dead: something talks on them, the PLC is slow or gone, characters
// stand around its replies. Each is told by its name, in bounded time.

#include "tests/support/times_shorter.h"
#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/line_check.h"
#include "tools/exchange/polling.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr qint64 second = 1000000;  // in µs

// No PLC, but a scale that sends its weight every 100 ms.
class Scale : public Link
{
public:
    QString name() const override { return "scale"; }
    void open() override {}
    bool isOpen() const override { return true; }
    bool send(const QByteArray& bytes) override
    {
        sent += bytes;
        return true;
    }
    QByteArray receive(int timeoutMs) override
    {
        const qint64 untilUs = nowUs + 1000 * qint64(timeoutMs);
        nowUs = std::min(untilUs, dueUs);
        if (nowUs < dueUs)
            return {};
        dueUs += everyUs;
        return "  12.5 kg\r\n";
    }

    LoopSettings settings() const
    {
        LoopSettings settings;
        settings.clockUs = [this] { return nowUs; };
        settings.isInterrupted = [this] { return nowUs >= interruptedUs; };
        return settings;
    }

    qint64 nowUs = 0;
    qint64 dueUs = second / 20;
    qint64 everyUs = second / 10;
    qint64 interruptedUs = 3600 * second;
    QByteArrayList sent;
};

const char* const extraCharacters[] = {"junk-before:3=1", "junk-after:2=1", "duplicate=1",
                                       "junk-before:1=1,junk-after:9=1,slices:20=1"};

class TalkingLine : public testing::Test
{
protected:
    DriverSession session{driver(), {}};
    Scale scale;
    ExchangeLoop loop{session, scale, scale.settings()};
};

// A PLC whose words name their addresses, polled in blocks of equal length.
class BadLine : public testing::Test
{
protected:
    void start(const fxsim::Settings& settings, bool tolerant = false)
    {
        loop.reset();
        bench.emplace(settings);
        fillWithOwnAddresses(bench->line.memory());
        LoopSettings loopSettings = bench->line.loopSettings();
        loopSettings.tolerant = tolerant;
        loop.emplace(bench->session, bench->line, loopSettings);
        blocks = bench->session.setPlan({range("D0:96")});
    }

    int wrongValues() const
    {
        const QVector<quint32> values = bench->session.values(range("D0:96"));
        int wrong = 0;
        for (int number = 0; number < values.size(); ++number)
            wrong += values[number] != wordNaming(addressOfD(number));
        return wrong;
    }

    std::optional<Bench> bench;
    std::optional<ExchangeLoop> loop;
    int blocks = 0;
};

}  // namespace

TEST_F(TalkingLine, IsNamedWithinSeconds)
{
    const Round round = pollCycle(loop, session.setPlan({range("D0:96")}));
    EXPECT_EQ(round.end, RoundEnd::NoAnswer);
    EXPECT_EQ(round.verdict(), ReplyVerdict::Babble);
    EXPECT_LT(scale.nowUs, 6 * second);
    EXPECT_EQ(scale.sent.size(), 1) << "nothing is sent into the talk";
}

TEST_F(TalkingLine, IsNamedThoughItTalksWithoutAPause)
{
    scale.everyUs = 0;
    session.setPlan({range("D0")});
    EXPECT_EQ(loop.step()->verdict, ReplyVerdict::Babble);
}

TEST_F(TalkingLine, IsToldOnceWithWhatWasHeard)
{
    QByteArrayList told;
    loop.onBabble = [&told](const QByteArray& heard) { told += heard; };
    session.setPlan({range("D0")});
    for (int step = 0; step < 3; ++step)
        EXPECT_EQ(loop.step()->verdict, ReplyVerdict::Babble);
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].contains("  12.5 kg"));
}

TEST_F(TalkingLine, IsKnownToACheckWithinSeconds)
{
    const LineCheck check = greetPlc(loop, catalogue());
    EXPECT_EQ(check.verdict, ReplyVerdict::Babble);
    EXPECT_TRUE(check.unasked.startsWith("  12.5 kg"));
    EXPECT_LT(scale.nowUs, 5 * second);
}

TEST_F(TalkingLine, IsNoAnswerToEnq)
{
    EXPECT_FALSE(loop.greet());
    EXPECT_LT(scale.nowUs, 3 * second);
    EXPECT_GT(loop.statistics().bytesThrownAway, 0);
}

TEST_F(TalkingLine, CanBeOverheard)
{
    EXPECT_EQ(loop.overhear(300), "  12.5 kg\r\n  12.5 kg\r\n  12.5 kg\r\n");
    EXPECT_EQ(scale.nowUs, 300000);
    EXPECT_EQ(loop.statistics().bytesReceived, 33);
    EXPECT_EQ(loop.statistics().bytesThrownAway, 33);
}

TEST_F(TalkingLine, IsLeftAtAnInterrupt)
{
    for (const qint64 interruptedUs : {40000, 160000, 1300000, 2300000}) {
        scale = Scale();
        scale.interruptedUs = interruptedUs;
        session.forgetValues();
        session.setPlan({range("D0:96")});
        ExchangeLoop fresh(session, scale, scale.settings());
        EXPECT_EQ(fresh.step()->verdict, ReplyVerdict::Interrupted) << interruptedUs;
        EXPECT_LE(scale.nowUs, interruptedUs + second / 10);
    }
}

TEST_F(BadLine, IsLeftWhenThePlcAnswersNoMore)
{
    start(badLine(9600, "power-cycle:600000@5"));
    EXPECT_EQ(pollCycle(*loop, blocks).end, RoundEnd::Done);
    const int before = bench->line.sent().size();
    const Round round = pollCycle(*loop, blocks);
    EXPECT_EQ(round.end, RoundEnd::NoAnswer);
    EXPECT_EQ(round.verdict(), ReplyVerdict::Silence);
    EXPECT_EQ(bench->line.sent().size() - before, 1 + 3 * 2) << "three frames and three ENQ";
    // And then at the first silence.
    EXPECT_EQ(pollCycle(*loop, blocks).end, RoundEnd::NoAnswer);
    EXPECT_EQ(bench->line.sent().size() - before, 1 + 3 * 2 + 2);
    EXPECT_EQ(readOnce(*loop, range("D100:96")), ReplyVerdict::Silence);
    EXPECT_EQ(bench->line.sent().size() - before, 1 + 3 * 2 + 4);
}

TEST_F(BadLine, WithASlowPlcWorksAfterOneLateReply)
{
    for (const char* const delay : {"delay:1500=1", "delay:3000=1"}) {
        for (const auto enquiry : {fxsim::EnquiryMode::Optional, fxsim::EnquiryMode::Ignored}) {
            start(badLine(9600, delay, enquiry));
            EXPECT_EQ(loop->step()->verdict, ReplyVerdict::Late) << delay;
            EXPECT_GT(loop->timeout().milliseconds(), 3000) << delay;
            EXPECT_TRUE(pollCycle(*loop, blocks).allGood()) << delay;
            EXPECT_EQ(wrongValues(), 0) << delay;
        }
    }
}

TEST_F(BadLine, WithExtraCharactersIsNamed)
{
    for (const char* const faults : extraCharacters) {
        start(badLine(0, faults));
        EXPECT_EQ(loop->step()->verdict, ReplyVerdict::Surrounded) << faults;
        EXPECT_EQ(loop->statistics().total().accepted, 0) << faults;
    }
}

TEST_F(BadLine, WithExtraCharactersWorksIfTheUserToleratesThem)
{
    for (const int baud : {0, 9600}) {
        for (const char* const faults : extraCharacters) {
            start(badLine(baud, faults), true);
            EXPECT_TRUE(pollCycle(*loop, blocks).allGood()) << faults;
            EXPECT_EQ(wrongValues(), 0) << faults;
            EXPECT_TRUE(writeRegisters(*loop, range("D500:40"), QVector<quint32>(40, 7)).isGood());
            EXPECT_EQ(bench->plcWord(addressOfD(539)), 7U) << faults;
        }
    }
}

TEST_F(BadLine, WithTwoDifferentRepliesIsNeverTolerated)
{
    start(badLine(9600, "wrong-sum=1,junk-before:5=1"), true);
    EXPECT_NE(loop->step()->answer, DriverAnswer::Accepted);
}

// The second copy may come when the next request is on its way, or has been answered.
TEST_F(BadLine, WithSecondCopiesGivesNoneOfThemToTheNextRequest)
{
    for (int delayMs = 1; delayMs < 200; delayMs += 3 * timesShorter) {
        for (const char* const which : {"4-9", "60-65"}) {  // from the beginning, or after a while
            start(badLine(9600, qPrintable(QString("duplicate:%1@%2").arg(delayMs).arg(which))));
            for (int cycle = 0; cycle < 30; ++cycle) {
                pollCycle(*loop, blocks);
                ASSERT_EQ(wrongValues(), 0) << which << ", " << delayMs << " ms, cycle " << cycle;
            }
        }
    }
}

// The reply of equal length and bytes may be the one before, come twice: nobody has waited for
// another one.
TEST(AnInterruptedWait, HandsNoReplyOverThatIsInDoubt)
{
    Bench bench;
    bench.session.setPlan({range("D0:32"), range("D32:32")});  // all of them 0
    LoopSettings settings = bench.line.loopSettings();
    settings.isInterrupted = [&] { return bench.line.framesSent().size() == 2; };
    ExchangeLoop loop(bench.session, bench.line, settings);
    EXPECT_EQ(loop.step()->answer, DriverAnswer::Accepted);
    const Exchange second = *loop.step();
    EXPECT_EQ(second.verdict, ReplyVerdict::Interrupted);
    EXPECT_NE(second.answer, DriverAnswer::Accepted);
}

// The reply that is 3.5 s late is to be confirmed by the ACK of another ENQ, the fourth.
TEST(AnInterruptedWait, ConfirmsNoReply)
{
    Bench bench(badLine(9600, "delay:3500@1"));
    bench.session.setPlan({range("D0:4")});
    LoopSettings settings = bench.line.loopSettings();
    settings.isInterrupted = [&] { return bench.line.sent().count(QByteArray(1, enq)) == 4; };
    ExchangeLoop loop(bench.session, bench.line, settings);
    EXPECT_EQ(loop.step()->verdict, ReplyVerdict::Silence);
    EXPECT_EQ(loop.step()->verdict, ReplyVerdict::Interrupted);
}

// The link is lost behind the reply to a frame, or when an ENQ is sent.
struct LineThatIsCut : VirtualLine
{
    using VirtualLine::VirtualLine;

    bool isOpen() const override { return !isCut && VirtualLine::isOpen(); }
    bool send(const QByteArray& bytes) override
    {
        const QByteArray enquiry(1, enq);
        isCut = isCut || (bytes == enquiry && sent().count(enquiry) == enquiries);
        return isOpen() && VirtualLine::send(bytes);
    }
    QByteArray receive(int timeoutMs) override
    {
        const QByteArray bytes = isOpen() ? VirtualLine::receive(timeoutMs) : QByteArray();
        isCut = isCut || (framesSent().size() == frames && !bytes.isEmpty());
        return bytes;
    }

    int frames = -1;
    int enquiries = -1;
    bool isCut = false;
};

// As an interrupted wait does not.
TEST(ALostLink, HandsNoReplyOverThatIsInDoubt)
{
    LineThatIsCut line(badLine(0, ""));
    line.frames = 2;
    DriverSession session(driver(), {});
    session.setPlan({range("D0:32"), range("D32:32")});  // all of them 0
    ExchangeLoop loop(session, line, line.loopSettings());
    EXPECT_EQ(loop.step()->answer, DriverAnswer::Accepted);
    EXPECT_EQ(loop.step()->verdict, ReplyVerdict::LinkLost);
}

TEST(ALostLink, ConfirmsNoReply)
{
    LineThatIsCut line(badLine(9600, "delay:3500@1"));
    line.enquiries = 3;
    DriverSession session(driver(), {});
    session.setPlan({range("D0:4")});
    ExchangeLoop loop(session, line, line.loopSettings());
    EXPECT_EQ(loop.step()->verdict, ReplyVerdict::Silence);
    EXPECT_EQ(loop.step()->verdict, ReplyVerdict::LinkLost);
}

// A late reply came, and the ENQ after it is never acknowledged.
TEST(ALostLink, LeavesNoAckToWaitForWhenItIsOpenAgain)
{
    LineThatIsCut line(badLine(9600, "delay:1100@1"));
    line.enquiries = 2;
    DriverSession session(driver(), {});
    session.setPlan({range("D0:4")});
    ExchangeLoop loop(session, line, line.loopSettings());
    EXPECT_EQ(loop.step()->verdict, ReplyVerdict::LinkLost);
    line.enquiries = -1;
    line.isCut = false;
    session.setPlan({range("D100:4")});
    const qint64 openUs = line.nowUs();
    while (loop.step()->frame.variable.addressIndex != 100) {
    }
    EXPECT_LT(line.nowUs() - openUs, second);
}

// At 1200 baud the first request of 139 characters alone takes longer than the first time-out.
TEST(ALateAck, IsNoQuickOne)
{
    Bench bench(badLine(1200, "", fxsim::EnquiryMode::Ignored));
    bench.session.setPlan({range("D0")});
    bench.session.write(range("D0:32"), QVector<quint32>(32, 7));
    EXPECT_EQ(bench.loop.step()->verdict, ReplyVerdict::Late);
    EXPECT_GE(bench.loop.timeout().typicalResponseUs(), second);
}

TEST(APlcThatNeedsEnq, IsFoundWhenItIsSwitchedOnLongAfterTheHost)
{
    Bench bench(badLine(9600, "", fxsim::EnquiryMode::Needed));
    bench.session.setPlan({range("D0")});
    bench.line.plc().powerCycle(60000, bench.line.nowUs());
    while (bench.line.nowUs() < 60 * second)
        EXPECT_EQ(bench.loop.step()->verdict, ReplyVerdict::Silence);
    bench.loop.step();
    EXPECT_EQ(bench.loop.step()->verdict, ReplyVerdict::Good);
}
