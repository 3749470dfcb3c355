// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A day of one value in bounded memory. Time is cut into buckets of 100 ms, and coarser ones of
// four times the length each, up to hours; a bucket has the lowest and the highest value of its
// time, so that no spike is lost, however coarse the bucket. The fine levels reach back as far as
// memory allows, the coarse ones a day.
//
// A value counts as held until the next one; where the quality was not good, buckets are empty.
// Times are UTC, in milliseconds since 1970.

#pragma once

#include <QVector>
#include <QtGlobal>

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace fxview {

constexpr qint64 finestBucketMs = 100;
constexpr int bucketGrowth = 4;
constexpr int historyLevels = 9;  // the buckets of the last one: 1 h 49 min
constexpr qint64 historyMs = qint64(24) * 60 * 60 * 1000;

struct Extent
{
    double lowest = std::numeric_limits<double>::quiet_NaN();
    double highest = std::numeric_limits<double>::quiet_NaN();

    bool isEmpty() const { return std::isnan(lowest); }
    void include(const Extent& other);
};

// How many buckets a level of the history has at most, so that `histories` of them keep within
// `bytes`; a few are kept in any case.
int bucketsPerLevel(int histories, qint64 bytes);

class HistoryLevel
{
public:
    HistoryLevel(qint64 bucketMs, int mostBuckets);

    qint64 bucketMs() const { return m_bucketMs; }
    qint64 oldestMs() const { return (m_newest - m_capacity + 1) * m_bucketMs; }
    qint64 bytes() const;

    void add(qint64 timeMs, const Extent& extent);
    void hold(qint64 fromMs, qint64 toMs, const Extent& extent);  // in the buckets between the two
    Extent between(qint64 fromMs, qint64 toMs) const;

private:
    static constexpr int chunkBuckets = 64;
    using Chunk = std::array<Extent, chunkBuckets>;

    std::unique_ptr<Chunk>& chunkOf(qint64 number);
    Extent at(qint64 number) const;
    void advanceTo(qint64 number);

    qint64 m_bucketMs;
    qint64 m_capacity;
    qint64 m_newest = std::numeric_limits<qint32>::min();  // its number
    std::vector<std::unique_ptr<Chunk>> m_chunks;          // a ring; null: all of them are empty
};

class History
{
public:
    explicit History(int bucketsPerLevel);

    // `holdMs`: a value that is older than this is held no longer.
    void add(qint64 timeMs, double value, qint64 holdMs);
    void addGap() { m_isHeld = false; }

    // What was there in each of so many equal parts of a time.
    QVector<Extent> columns(qint64 fromMs, qint64 toMs, int columns) const;
    Extent at(qint64 timeMs) const;

    bool isEmpty() const { return m_lastMs == 0; }
    qint64 newestMs() const { return m_lastMs; }
    qint64 bytes() const;

private:
    int m_bucketsPerLevel;
    std::vector<HistoryLevel> m_levels;  // the finest first
    qint64 m_lastMs = 0;
    double m_lastValue = 0;
    bool m_isHeld = false;
};

}  // namespace fxview
