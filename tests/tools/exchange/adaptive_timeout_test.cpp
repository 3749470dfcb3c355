// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How long the host waits, to the millisecond, for the answers that came so far.

#include "tools/exchange/adaptive_timeout.h"

#include <gtest/gtest.h>

#include <vector>

using namespace fxtools;

namespace {

constexpr qint64 timedOut = -1;  // in place of an answer

struct History
{
    const char* name;
    std::vector<qint64> answersUs;
    int timeoutMs;
};

const std::vector<qint64> hundredQuick(100, 100);
const std::vector<qint64> hundredOf25Ms(100, 25000);
const std::vector<qint64> hundredOf5S(100, 5000000);

// The first answer of 100 ms: expected 100, varying by 50. A later one moves what is expected by
// an eighth of its deviation, and what it varies by a quarter.
const History histories[] = {
    {"nothing is known", {}, 1000},
    {"one answer", {100000}, 301},    // 100 + 4 * 50 + 1
    {"one quick answer", {100}, 50},  // cannot be a slow line
    {"one answer at once", {0}, 50},
    {"one between quick and slow", {8000}, 160},   // 20 * 8
    {"the floor", {40000}, 250},                   // 40 + 4 * 20 + 1 is less
    {"a late one", {100000, 140000}, 296},         // 105 + 4 * 47.5 + 1
    {"an early one", {100000, 60000}, 286},        // 95 + 4 * 47.5 + 1
    {"the same again", {100000, 100000}, 251},     // 100 + 4 * 37.5 + 1
    {"a large deviation", {100000, 400000}, 588},  // 137.5 + 4 * 112.5 + 1
    {"a time-out", {100000, timedOut}, 602},
    {"two time-outs", {8000, timedOut, timedOut}, 640},
    {"time-outs up to the ceiling", {100000, timedOut, timedOut}, 1000},
    {"an answer after a time-out", {100000, timedOut, 100000}, 251},
    {"always quick", hundredQuick, 50},
    {"always as at 9600 baud", hundredOf25Ms, 250},
    {"always slow", hundredOf5S, 5000},
    {"a slow one", {1500000}, 4501},  // 1500 + 4 * 750 + 1
    {"a slow one among quick ones", {100000, 1500000}, 1826},
};

void apply(AdaptiveTimeout& timeout, const std::vector<qint64>& answersUs)
{
    for (const qint64 answerUs : answersUs) {
        if (answerUs == timedOut)
            timeout.timedOut();
        else
            timeout.answered(answerUs);
    }
}

}  // namespace

TEST(AdaptiveTimeout, FollowsTheAnswersExactly)
{
    for (const History& history : histories) {
        AdaptiveTimeout timeout(TimeoutLimits{});
        apply(timeout, history.answersUs);
        EXPECT_EQ(timeout.milliseconds(), history.timeoutMs) << history.name;
    }
}

TEST(AdaptiveTimeout, KeepsToOtherLimits)
{
    AdaptiveTimeout wide(TimeoutLimits{300, 100000, 100000, 10});
    EXPECT_EQ(wide.milliseconds(), 100000);
    apply(wide, {100});
    EXPECT_EQ(wide.milliseconds(), 10);
    apply(wide, {timedOut, timedOut, timedOut, timedOut, timedOut, timedOut, timedOut});
    EXPECT_EQ(wide.milliseconds(), 320);  // five doublings
    AdaptiveTimeout fixed(TimeoutLimits::fixed(70));
    for (const qint64 answerUs : {100, 1000000}) {
        EXPECT_EQ(fixed.milliseconds(), 70);
        fixed.timedOut();
        EXPECT_EQ(fixed.milliseconds(), 70);
        fixed.answered(answerUs);
    }
}

TEST(AdaptiveTimeout, KnowsTheTypicalResponse)
{
    AdaptiveTimeout timeout(TimeoutLimits{});
    EXPECT_EQ(timeout.typicalResponseUs(), 0);
    timeout.answered(0);
    EXPECT_EQ(timeout.typicalResponseUs(), 1);  // something is known
    timeout.answered(801);
    EXPECT_EQ(timeout.typicalResponseUs(), 101);
    timeout.timedOut();
    EXPECT_EQ(timeout.typicalResponseUs(), 101);
}
