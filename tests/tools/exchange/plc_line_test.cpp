// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The line as the exchange loop hears it, with every arrival at a time of its own.

#include "tools/exchange/plc_line.h"
#include "tools/exchange/reply_verdict.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <utility>

using namespace fxtools;

namespace {

constexpr int lineTimeoutMs = 100;
const QByteArray oneAck(1, ack);

class TimedLink : public Link
{
public:
    QString name() const override { return "timed"; }
    void open() override {}
    bool isOpen() const override { return true; }

    // Each ENQ is answered at once, as long as there are answers.
    bool send(const QByteArray& bytes) override
    {
        EXPECT_EQ(bytes, QByteArray(1, enq));
        ++enquiries;
        if (!answers.empty()) {
            arrivals.push_back({nowMs, answers.front()});
            answers.pop_front();
        }
        return true;
    }

    QByteArray receive(int forMs) override
    {
        if (arrivals.empty() || arrivals.front().first > nowMs + forMs) {
            nowMs += forMs;
            return {};
        }
        nowMs = std::max(nowMs, arrivals.front().first);
        QByteArray bytes = arrivals.front().second;
        arrivals.pop_front();
        return bytes;
    }

    qint64 nowMs = 0;
    int enquiries = 0;
    std::deque<QByteArray> answers;
    std::deque<std::pair<qint64, QByteArray>> arrivals;
};

class TimedLine : public testing::Test
{
protected:
    TimedLine()
    {
        settings.timeout = TimeoutLimits::fixed(lineTimeoutMs);
        settings.clockUs = [this] { return 1000 * link.nowMs; };
    }

    TimedLink link;
    TimingSettings settings;
    Statistics statistics;
    QByteArray junk;
};

}  // namespace

TEST_F(TimedLine, IsDrainedForAsLongAgainWhenSomethingComes)
{
    PlcLine line(link, settings, statistics);
    link.arrivals = {{10, "a"}, {200, "b"}};  // 250 ms while the usual time is not known
    EXPECT_TRUE(line.drain(lineTimeoutMs, junk));
    EXPECT_EQ(junk, "ab");
    line.timeout().answered(10000);
    link.arrivals = {{link.nowMs + 10, "c"}, {link.nowMs + 100, "d"}};  // the 100 ms asked for
    EXPECT_TRUE(line.drain(lineTimeoutMs, junk));
    EXPECT_EQ(junk, "abcd");
}

TEST_F(TimedLine, IsHeardLastWhenAnythingButAnAckComes)
{
    PlcLine line(link, settings, statistics);
    link.arrivals = {{10, "a"}, {20, oneAck}};
    EXPECT_EQ(line.overhear(50), "a" + oneAck);
    EXPECT_EQ(line.heardUs(), 10000);
}

TEST_F(TimedLine, IsGreetedWithoutTheAcksToAnEarlierGreeting)
{
    PlcLine line(link, settings, statistics);
    EXPECT_FALSE(line.greet(junk));
    EXPECT_FALSE(line.owesAcks());
    for (const bool earlierComes : {true, false}) {
        if (earlierComes)
            link.arrivals = {{link.nowMs, oneAck}};
        link.answers = {oneAck, oneAck};
        EXPECT_TRUE(line.greet(junk));
        EXPECT_TRUE(link.arrivals.empty()) << earlierComes;
        EXPECT_FALSE(line.owesAcks());
    }
    EXPECT_EQ(link.enquiries, 1 + 2 + 2);
}

TEST_F(TimedLine, IsGreetedTenTimesWhereSomethingComesWithEachAck)
{
    PlcLine line(link, settings, statistics);
    link.answers.assign(20, "a" + oneAck);
    EXPECT_FALSE(line.greet(junk));
    EXPECT_EQ(link.enquiries, 10);
}

TEST_F(TimedLine, IsAskedNoMoreWhereThreeEnqsWereIgnored)
{
    PlcLine line(link, settings, statistics);
    for (int ignored = 0; ignored < 3; ++ignored)
        line.askAndOutwait(junk);
    EXPECT_FALSE(line.ask(junk, false));
    EXPECT_EQ(link.enquiries, 3);
    EXPECT_FALSE(line.owesAcks());
    link.answers = {oneAck};
    EXPECT_TRUE(line.ask(junk, true));
    EXPECT_FALSE(line.ask(junk, false));  // it has answered once
    EXPECT_EQ(link.enquiries, 5);
}
