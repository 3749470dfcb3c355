// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// No late reply is ever taken for another's answer. A reply carries no address, so the proof is by
// values: every register holds a number that names its own place, and a million values are read in
// blocks of equal length over lines whose answers come around and after the host's time-out.

#include "tests/tools/support/loaded_driver.h"
#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/polling.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr int dataRegisterBase = 0x1000;  // byte address of D0
constexpr int wordsPerBlock = 32;
constexpr int blocks = 60;  // D0 to D1919, in frames of equal length

struct LateLine
{
    const char* name;
    int baud;
    const char* faults;
    fxsim::EnquiryMode enquiry;
    int values;     // to read
    int timeoutMs;  // 0: adapts
};

void PrintTo(const LateLine& line, std::ostream* out)
{
    *out << line.name;
}

int wrongValues(const DriverSession& session, const RegisterRange& block)
{
    int wrong = 0;
    const QVector<quint32> values = session.values(block);
    for (int index = 0; index < values.size(); ++index)
        wrong += values[index] != wordNaming(dataRegisterBase + 2 * (block.first + index));
    return wrong;
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
    VirtualLine line(badLine(GetParam().baud, GetParam().faults, GetParam().enquiry));
    fillWithOwnAddresses(line.memory());
    DriverSession session(driver(), {});
    LoopSettings settings = line.loopSettings();
    if (GetParam().timeoutMs > 0)
        settings.timeout = TimeoutLimits::fixed(GetParam().timeoutMs);
    ExchangeLoop loop(session, line, settings);
    RegisterRange all = range("D0");
    all.count = blocks * wordsPerBlock;
    ASSERT_EQ(session.setPlan({all}), blocks);

    qint64 valuesRead = 0;
    while (valuesRead < GetParam().values) {
        const std::optional<Exchange> exchange = loop.step();
        ASSERT_TRUE(exchange);
        if (exchange->answer != DriverAnswer::Accepted)
            continue;
        ASSERT_EQ(wrongValues(session, blockOf(*exchange)), 0) << "after " << valuesRead;
        valuesRead += wordsPerBlock;
    }
    EXPECT_GT(loop.statistics().bytesThrownAway, 0);
    EXPECT_GT(
        loop.statistics().of(ReplyVerdict::Silence) + loop.statistics().of(ReplyVerdict::Late), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, LateReplies,
    testing::Values(LateLine{"a little late, at once", 0, "delay:60=0.1",
                             fxsim::EnquiryMode::Optional, 1000000, 0},
                    LateLine{"just at the time-out at 9600", 9600, "delay:238=0.2",
                             fxsim::EnquiryMode::Optional, 300000, 250},
                    LateLine{"far too late", 9600, "delay:1500=0.1", fxsim::EnquiryMode::Optional,
                             300000, 0},
                    LateLine{"late and twice", 9600, "delay:300=0.1,duplicate=0.2",
                             fxsim::EnquiryMode::Optional, 300000, 0},
                    LateLine{"late, without ENQ", 9600, "delay:300=0.1",
                             fxsim::EnquiryMode::Ignored, 300000, 0},
                    LateLine{"late and everything else", 19200,
                             "delay:300=0.05,silence=0.02,truncated=0.02,junk-before=0.02,"
                             "junk-after=0.02,slices=0.05,wrong-sum=0.02,echo=0.02,duplicate=0.05",
                             fxsim::EnquiryMode::Optional, 300000, 0}));

// The same line under a host that hands over whatever comes next: the pattern does show it.
TEST(LateReplies, WouldShowInAHostThatDoesNotCare)
{
    VirtualLine line(badLine(0, "delay:260=0.1"));
    fillWithOwnAddresses(line.memory());
    DriverSession session(driver(), {});
    RegisterRange all = range("D0");
    all.count = blocks * wordsPerBlock;
    session.setPlan({all});

    int wrong = 0;
    for (int exchanges = 0; exchanges < 1000; ++exchanges) {
        Exchange exchange;
        ASSERT_EQ(driver().getSendFrame(&exchange.frame), 1);
        line.send(requestBytes(exchange.frame));
        QByteArray reply = line.receive(250).left(exchange.frame.replyLength);
        if (driver().dealRcvFrame(reply, exchange.errorText) == 1)
            wrong += wrongValues(session, blockOf(exchange)) > 0;
    }
    EXPECT_GT(wrong, 0);
}
