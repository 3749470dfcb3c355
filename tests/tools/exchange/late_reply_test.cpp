// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// No late reply is ever taken for another's answer. A reply carries no address, so the proof is by
// values: every register holds a number that names its own place, and a million values are read in
// blocks of equal length over lines whose answers come around and after the host's time-out.

#include "tests/support/times_shorter.h"
#include "tests/tools/support/virtual_line.h"
#include "tests/tools/support/wire.h"
#include "tools/exchange/polling.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr int wordsPerBlock = 32;
constexpr int blockCount = 60;  // D0 to D1919, in frames of equal length

struct LateLine
{
    int baud;
    const char* faults;
    fxsim::EnquiryMode enquiry;
    TimeoutLimits timeout;
    int values;  // to read
};

void PrintTo(const LateLine& line, std::ostream* out)
{
    *out << line.faults;
}

constexpr auto asked = fxsim::EnquiryMode::Optional;
const LateLine lines[] = {
    {0, "delay:60=0.1", asked, {}, 1000000},                            // a little late
    {9600, "delay:238=0.2", asked, TimeoutLimits::fixed(250), 300000},  // at the time-out
    {9600, "delay:1500=0.1", asked, {}, 300000},
    {9600, "delay:300=0.1,duplicate=0.2", asked, {}, 300000},
    {9600, "delay:300=0.1", fxsim::EnquiryMode::Ignored, {}, 300000},
    {9600, "delay:300=0.0005,duplicate:120=0.0005", asked, {}, 600000},  // on a clean line
    {19200,
     "delay:300=0.05,silence=0.02,truncated=0.02,junk-before=0.02,junk-after=0.02,"
     "slices=0.05,wrong-sum=0.02,echo=0.02,duplicate=0.05",
     asked,
     {},
     300000},
};

int wrongValues(const DriverSession& session, const RegisterRange& block)
{
    int wrong = 0;
    const QVector<quint32> values = session.values(block);
    for (int index = 0; index < values.size(); ++index)
        wrong += values[index] != wordNaming(addressOfD(block.first + index));
    return wrong;
}

RegisterRange allBlocks()
{
    RegisterRange all = range("D0");
    all.count = blockCount * wordsPerBlock;
    return all;
}

RegisterRange blockOf(const Exchange& exchange)
{
    RegisterRange block = range("D0");
    block.first = exchange.frame.variable.addressIndex;
    block.count = exchange.frame.variable.count;
    return block;
}

}  // namespace

class LateReplies : public testing::TestWithParam<LateLine>
{};

TEST_P(LateReplies, NeverStandUnderAnothersName)
{
    Bench bench(badLine(GetParam().baud, GetParam().faults, GetParam().enquiry));
    fillWithOwnAddresses(bench.line.memory());
    LoopSettings settings = bench.line.loopSettings();
    settings.timeout = GetParam().timeout;
    ExchangeLoop loop(bench.session, bench.line, settings);
    ASSERT_EQ(bench.session.setPlan({allBlocks()}), blockCount);
    for (int valuesRead = 0; valuesRead < GetParam().values / timesShorter;) {
        const std::optional<Exchange> exchange = loop.step();
        ASSERT_TRUE(exchange);
        if (exchange->answer != DriverAnswer::Accepted)
            continue;
        ASSERT_EQ(wrongValues(bench.session, blockOf(*exchange)), 0) << "after " << valuesRead;
        valuesRead += wordsPerBlock;
    }
    const Statistics& found = loop.statistics();
    EXPECT_GT(found.bytesThrownAway, 0);
    EXPECT_GT(found.of(ReplyVerdict::Silence) + found.of(ReplyVerdict::Late), 0);
}

INSTANTIATE_TEST_SUITE_P(Lines, LateReplies, testing::ValuesIn(lines));

// Late replies and second copies come before, with and behind every step that the host takes after
// a time-out, in whatever order.
TEST(LateReplies, NeverStandUnderAnothersNameWhateverTheDelay)
{
    struct Row
    {
        const char* faults;
        int longestMs;  // a second copy delays what follows it
    };
    constexpr int reads = 500;
    for (const Row& row : {Row{"delay:%1=0.1", 5000}, Row{"duplicate:%1=0.1", 1500}}) {
        for (int delayMs = 30, number = 0; delayMs < row.longestMs; delayMs += 70, ++number) {
            const QString faults = QString(row.faults).arg(delayMs);
            Bench bench(badLine(number % 2 == 0 ? 9600 : 38400, qPrintable(faults)));
            fillWithOwnAddresses(bench.line.memory());
            bench.session.setPlan({allBlocks()});
            for (int accepted = 0; accepted < reads;) {
                const std::optional<Exchange> exchange = bench.loop.step();
                ASSERT_TRUE(exchange);
                if (exchange->answer != DriverAnswer::Accepted)
                    continue;
                ++accepted;
                ASSERT_EQ(wrongValues(bench.session, blockOf(*exchange)), 0)
                    << faults.toStdString() << ", read " << accepted;
            }
        }
    }
}

// A host that is started again, whatever the one before has sent last and whenever that was: R a
// read, W a write, E an ENQ.
class StartedAgain : public testing::TestWithParam<const char*>
{
protected:
    // The bench of the second host, which starts `afterMs` later.
    Bench& start(fxsim::Settings settings, int delayMs, int afterMs)
    {
        settings.faults = fxsim::parseFaults(QString("delay:%1@1").arg(delayMs));
        bench.emplace(settings, SessionSettings{20, 32});
        fillWithOwnAddresses(bench->line.memory());
        for (const char what : QByteArray(GetParam()))
            bench->line.send(wire(what == 'R'   ? "␂0100008␃5C"
                                  : what == 'W' ? "␂11000021234␃4E"
                                                : "␅"));
        bench->line.rest(1000 * afterMs);
        return *bench;
    }

    // Each reply to a read is `longestMs` late at most.
    void expectRightRead(const fxsim::Settings& settings, int longestMs)
    {
        for (int delayMs = 0; delayMs <= longestMs; delayMs += 190 * timesShorter) {
            for (const int afterMs : {0, 3, 30, 60, 300}) {
                Bench& host = start(settings, delayMs, afterMs);
                host.session.setPlan({range("D100:4")});
                while (host.loop.step()->answer != DriverAnswer::Accepted) {
                }
                EXPECT_EQ(wrongValues(host.session, range("D100:4")), 0)
                    << delayMs << " ms, " << afterMs;
            }
        }
    }

    std::optional<Bench> bench;
};

TEST_P(StartedAgain, TheHostReadsNoReplyToTheOneBefore)
{
    for (const int baud : {0, 1200, 9600})
        expectRightRead(badLine(baud, ""), 4000);
}

TEST_P(StartedAgain, TheHostReadsNoReplyToTheOneBeforeWhereEnqIsIgnored)
{
    if (QByteArray(GetParam()).contains("W"))
        GTEST_SKIP() << "only ENQ tells an ACK from a reply";
    expectRightRead(badLine(9600, "", fxsim::EnquiryMode::Ignored), 1900);
}

// The first write is refused, and that is what the host hears.
TEST_P(StartedAgain, TheHostHasNoWriteConfirmedByAnAckToTheOneBefore)
{
    for (int delayMs = 0; delayMs <= 4000; delayMs += 190 * timesShorter) {
        for (const int afterMs : {0, 3, 30, 60, 300}) {
            Bench& host = start(badLine(9600, ""), delayMs, afterMs);
            host.refuseD(500, 500);
            host.session.setPlan({range("D0")});
            host.session.write(range("D500"), {77});
            EXPECT_NE(host.loop.step()->answer, DriverAnswer::Accepted)
                << delayMs << " ms, " << afterMs;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Pasts, StartedAgain,
                         testing::Values("R", "W", "E", "ER", "EE", "WE", "RERER", "ERERE"));

// The same line under a host that hands over whatever comes next: the pattern does show it.
TEST(LateReplies, WouldShowInAHostThatDoesNotCare)
{
    Bench bench(badLine(0, "delay:260=0.1"));
    fillWithOwnAddresses(bench.line.memory());
    bench.session.setPlan({allBlocks()});
    int wrong = 0;
    for (int exchanges = 0; exchanges < 1000; ++exchanges) {
        Exchange exchange;
        ASSERT_EQ(driver().getSendFrame(&exchange.frame), 1);
        bench.line.send(requestBytes(exchange.frame));
        QByteArray reply = bench.line.receive(250).left(exchange.frame.replyLength);
        if (driver().dealRcvFrame(reply, exchange.errorText) == 1)
            wrong += wrongValues(bench.session, blockOf(exchange)) > 0;
    }
    EXPECT_GT(wrong, 0);
}
