// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A day of values in bounded memory: no spike is hidden, and gaps stay gaps.

#include "tools/fxview/models/history.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace fxview;

namespace {

constexpr qint64 startMs = 1'700'000'000'000;
constexpr qint64 holdMs = 1000;

QString shown(const QVector<Extent>& extents)
{
    QStringList texts;
    for (const Extent& extent : extents)
        texts += extent.isEmpty() ? "-"
                                  : QString::number(extent.lowest) +
                                        (extent.highest == extent.lowest
                                             ? QString()
                                             : ".." + QString::number(extent.highest));
    return texts.join(' ');
}

// A day at 100 ms: a ramp with one spike.
void fillDay(History& history, qint64 spikeAtMs)
{
    for (qint64 atMs = 0; atMs < historyMs; atMs += finestBucketMs)
        history.add(startMs + atMs, atMs == spikeAtMs ? 1e6 : double(atMs % 1000), holdMs);
}

}  // namespace

TEST(Histories, AreEmptyBeforeAnythingWasRead)
{
    const History history(64);
    EXPECT_TRUE(history.isEmpty());
    EXPECT_EQ(shown(history.columns(startMs, startMs + 1000, 3)), "- - -");
    EXPECT_EQ(history.columns(startMs, startMs, 3).size(), 3);
    EXPECT_EQ(history.columns(startMs, startMs + 1000, 0).size(), 0);
}

TEST(Histories, HoldAValueUntilTheNext)
{
    History history(64);
    history.add(startMs, 5, holdMs);
    history.add(startMs + 500, 7, holdMs);
    EXPECT_EQ(shown(history.columns(startMs, startMs + 800, 8)), "5 5 5 5 5 7 - -");
}

TEST(Histories, KeepTheLowestAndTheHighestOfABucket)
{
    History history(64);
    for (const double value : {5, 9, 2})
        history.add(startMs, value, holdMs);
    EXPECT_EQ(shown({history.at(startMs)}), "2..9");
}

TEST(Histories, HaveGapsWhereNothingGoodWasRead)
{
    History history(64);
    history.add(startMs, 5, holdMs);
    history.addGap();
    history.add(startMs + 300, 6, holdMs);
    EXPECT_EQ(shown(history.columns(startMs, startMs + 400, 4)), "5 - - 6");
    history.add(startMs + 300 + holdMs + 100, 7, holdMs);  // too late to have been held
    EXPECT_EQ(shown(history.columns(startMs + 300, startMs + 600, 3)), "6 - -");
}

TEST(Histories, HideNoSpikeHoweverFarOneLooksBack)
{
    for (const int mostBuckets : {64, 4000, 864000}) {
        History history(mostBuckets);
        const qint64 spikeAtMs = historyMs / 3;
        fillDay(history, spikeAtMs);
        for (const int columns : {1, 10, 999}) {
            int spikes = 0;
            for (const Extent& extent : history.columns(startMs, startMs + historyMs, columns))
                spikes += extent.highest == 1e6;
            EXPECT_GE(spikes, 1) << columns << " columns";
            EXPECT_LE(spikes, mostBuckets == 864000 ? 2 : 20) << columns << " columns";
        }
    }
}

TEST(Histories, KeepADayInBoundedMemory)
{
    const int buckets = bucketsPerLevel(100, 128 << 20);
    History history(buckets);
    fillDay(history, 0);
    EXPECT_LT(history.bytes() * 100, qint64(140) << 20);
    const qint64 bytes = history.bytes();
    for (qint64 atMs = 0; atMs < historyMs; atMs += 60000)
        history.add(startMs + historyMs + atMs, 1, holdMs);
    EXPECT_LE(history.bytes(), bytes);
    EXPECT_FALSE(history.at(startMs + historyMs + 60000).isEmpty());
    EXPECT_EQ(bucketsPerLevel(8, 150 << 20), 864000);
    EXPECT_EQ(bucketsPerLevel(1000000, 1), 105);
}

TEST(Histories, BearAClockThatIsSet)
{
    History history(64);
    history.add(startMs, 1, holdMs);
    history.add(startMs + 300 * historyMs, 2, holdMs);
    EXPECT_EQ(shown({history.at(startMs + 300 * historyMs)}), "2");
    EXPECT_EQ(shown({history.at(startMs)}), "-");
    history.add(-5, 4, holdMs);
    history.add(startMs, 5, holdMs);
    EXPECT_EQ(shown({history.at(startMs + 300 * historyMs)}), "-");
    EXPECT_EQ(shown({history.at(startMs)}), "5");
}
