// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is counted of the exchanges, and how their times are sorted.

#include "tools/exchange/statistics.h"

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

Exchange exchangeOf(ExchangeKind kind, DriverAnswer answer, ReplyVerdict verdict)
{
    Exchange exchange;
    exchange.kind = kind;
    exchange.answer = answer;
    exchange.verdict = verdict;
    exchange.frame.frameLength = 11;
    exchange.wasSent = true;
    exchange.reply = "12345678";
    exchange.responseUs = 1000;
    exchange.tookUs = 1500;
    return exchange;
}

std::string countsOf(const KindCounts& counts)
{
    return QString("sent %1, accepted %2, repeated %3, failed %4")
        .arg(counts.sent)
        .arg(counts.accepted)
        .arg(counts.repeated)
        .arg(counts.failed)
        .toStdString();
}

}  // namespace

TEST(Statistics, CountEachKindByItsAnswer)
{
    Statistics statistics;
    const auto add = [&statistics](ExchangeKind kind, DriverAnswer answer) {
        statistics.add(exchangeOf(kind, answer, ReplyVerdict::Good));
    };
    add(ExchangeKind::CyclicRead, DriverAnswer::Accepted);
    add(ExchangeKind::CyclicRead, DriverAnswer::Repeat);
    add(ExchangeKind::CyclicRead, DriverAnswer::Repeat);
    add(ExchangeKind::CyclicRead, DriverAnswer::Failed);
    add(ExchangeKind::Write, DriverAnswer::Accepted);
    add(ExchangeKind::ConditionalRead, DriverAnswer::NoFrame);
    EXPECT_EQ(countsOf(statistics.of(ExchangeKind::CyclicRead)),
              "sent 4, accepted 1, repeated 2, failed 1");
    EXPECT_EQ(countsOf(statistics.of(ExchangeKind::Write)),
              "sent 1, accepted 1, repeated 0, failed 0");
    EXPECT_EQ(countsOf(statistics.of(ExchangeKind::ConditionalRead)),
              "sent 1, accepted 0, repeated 0, failed 0");
    EXPECT_EQ(countsOf(statistics.total()), "sent 6, accepted 2, repeated 2, failed 1");
}

TEST(Statistics, CountVerdictsAndLostLinks)
{
    Statistics statistics;
    for (const ReplyVerdict verdict :
         {ReplyVerdict::Late, ReplyVerdict::Late, ReplyVerdict::LinkLost})
        statistics.add(exchangeOf(ExchangeKind::CyclicRead, DriverAnswer::Repeat, verdict));
    EXPECT_EQ(statistics.of(ReplyVerdict::Late), 2);
    EXPECT_EQ(statistics.of(ReplyVerdict::LinkLost), 1);
    EXPECT_EQ(statistics.of(ReplyVerdict::Good), 0);
    EXPECT_EQ(statistics.linksLost, 1);
}

TEST(Statistics, CountBytesThatWereOfNoUseAndTheTimesOfGoodAnswersOnly)
{
    Statistics statistics;
    Exchange exchange =
        exchangeOf(ExchangeKind::CyclicRead, DriverAnswer::Accepted, ReplyVerdict::Good);
    statistics.add(exchange);
    EXPECT_EQ(statistics.bytesSent, 11);
    EXPECT_EQ(statistics.bytesReceived, 8);
    EXPECT_EQ(statistics.bytesThrownAway, 0);
    exchange.answer = DriverAnswer::Repeat;
    exchange.thrownAway = "123";
    exchange.responseUs = 9000;
    statistics.add(exchange);
    EXPECT_EQ(statistics.bytesSent, 22);
    EXPECT_EQ(statistics.bytesReceived, 8 + 8 + 3);
    EXPECT_EQ(statistics.bytesThrownAway, 8 + 3);
    EXPECT_EQ(statistics.responses.total(), 1);
    EXPECT_EQ(statistics.responses.largestUs(), 1000);
    EXPECT_EQ(statistics.acceptedUs, 1500);
}

TEST(Kinds, HaveTheirNames)
{
    QStringList names;
    for (const ExchangeKind kind : allExchangeKinds())
        names += kindText(kind);
    EXPECT_EQ(names.join('/').toStdString(),
              "write/one-off read/cyclic read/recipe download/recipe upload");
}

TEST(Times, PercentilesAreExactToABucket)
{
    Histogram times;
    EXPECT_EQ(times.percentileUs(50), 0);
    for (int value = 1; value <= 1000; ++value)
        times.add(value);
    EXPECT_EQ(times.total(), 1000);
    EXPECT_EQ(times.largestUs(), 1000);
    // 500 and 990, each rounded up to the end of its bucket, a sixteenth of a doubling.
    EXPECT_EQ(times.percentileUs(50), 512);
    EXPECT_EQ(times.percentileUs(99), 1000);
    EXPECT_EQ(times.percentileUs(100), 1000);
    EXPECT_EQ(times.percentileUs(0), 2);
}

TEST(Times, PercentilesOfFewAreThoseSeenAlsoOutsideTheBuckets)
{
    Histogram times;
    times.add(-5);
    times.add(0);
    EXPECT_EQ(times.percentileUs(100), 0);
    Histogram few;
    few.add(100);
    EXPECT_EQ(few.percentileUs(1), 100);
    EXPECT_EQ(few.percentileUs(100), 100);
    few.add(10000);
    EXPECT_EQ(few.percentileUs(50), 104);
    EXPECT_EQ(few.percentileUs(51), 10000);
    few.add(qint64(1) << 40);
    EXPECT_EQ(few.total(), 3);
    EXPECT_EQ(few.largestUs(), qint64(1) << 40);
}

TEST(Times, AreCountedBetweenTwoLimits)
{
    Histogram times;
    for (const qint64 valueUs : {900, 1000, 1100, 1900, 2100})
        times.add(valueUs);
    EXPECT_EQ(times.between(0, 1024), 2);
    EXPECT_EQ(times.between(1024, 2048), 2);
    EXPECT_EQ(times.between(2048, 4096), 1);
    EXPECT_EQ(times.between(4096, 8192), 0);
}
