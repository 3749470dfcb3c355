// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Zooming, panning and stopping a trend, and the marks of its axes.

#include "tests/tools/fxview/view_support.h"
#include "tools/fxview/models/trend_span.h"

#include <gtest/gtest.h>

using namespace fxview;
using view_tests::nowMs;

TEST(TrendSpans, FollowTheClockUntilTheyAreStopped)
{
    TrendSpan span;
    EXPECT_EQ(span.endMs(nowMs), nowMs);
    EXPECT_EQ(span.beginMs(nowMs), nowMs - 60000);
    span.stop(nowMs);
    EXPECT_TRUE(span.isStopped());
    EXPECT_EQ(span.endMs(nowMs + 5000), nowMs);
    span.follow();
    EXPECT_EQ(span.endMs(nowMs + 5000), nowMs + 5000);
}

TEST(TrendSpans, ZoomRoundTheMomentThatIsPointedAt)
{
    TrendSpan span;
    span.stop(nowMs);
    const qint64 pointedMs = nowMs - 15000;
    span.zoom(0.5, pointedMs);
    EXPECT_EQ(span.lengthMs(), 30000);
    EXPECT_EQ(span.endMs(nowMs), pointedMs + 7500);
    span.zoom(1e-9, pointedMs);
    EXPECT_EQ(span.lengthMs(), TrendSpan::shortestMs);
    span.zoom(1e9, pointedMs);
    EXPECT_EQ(span.lengthMs(), TrendSpan::longestMs);
}

TEST(TrendSpans, PanIntoThePastAndBackToThePresent)
{
    TrendSpan span;
    span.pan(-20000, nowMs);
    EXPECT_EQ(span.endMs(nowMs + 1000), nowMs - 20000);
    span.pan(25000, nowMs + 1000);
    EXPECT_FALSE(span.isStopped());
    span.pan(-10 * TrendSpan::longestMs, nowMs);
    EXPECT_EQ(span.endMs(nowMs), nowMs - TrendSpan::longestMs);
}

TEST(Marks, AreRoundNumbers)
{
    EXPECT_EQ(marksBetween(0, 10, 5), QVector<double>({0, 5, 10}));
    EXPECT_EQ(marksBetween(0, 10, 6), QVector<double>({0, 2, 4, 6, 8, 10}));
    EXPECT_EQ(marksBetween(-30, 47, 5), QVector<double>({-20, 0, 20, 40}));
    EXPECT_EQ(marksBetween(1, 1, 5), QVector<double>());
    for (const double width : {1e-9, 0.37, 4.2, 99.0, 1e12}) {
        const int marks = marksBetween(-width / 3, width, 5).size();
        EXPECT_GE(marks, 2) << width;
        EXPECT_LE(marks, 5) << width;
    }
}

TEST(Marks, AreRoundTimesOfTheClockOnTheWall)
{
    constexpr qint64 hourMs = 3600000;
    constexpr qint64 halfPastTwoMs = 2 * hourMs + hourMs / 2;
    EXPECT_EQ(timeMarks(halfPastTwoMs, halfPastTwoMs + 5 * hourMs, 3, hourMs / 2),
              QVector<qint64>({hourMs * 7 / 2, hourMs * 11 / 2, hourMs * 15 / 2}));
    EXPECT_EQ(timeMarks(1500, 4500, 5, 0), QVector<qint64>({2000, 3000, 4000}));
    EXPECT_LE(timeMarks(nowMs - TrendSpan::longestMs, nowMs, 1, 0).size(), 2);
}
