// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Times sorted into buckets whose width grows with them, about six per cent each, so that
// percentiles of any number of exchanges cost a fixed kilobyte or two.

#pragma once

#include <QtGlobal>

#include <array>

namespace fxtools {

class Histogram
{
public:
    void add(qint64 valueUs);

    qint64 total() const { return m_total; }
    qint64 largestUs() const { return m_largestUs; }

    // The value that `percent` of all values do not exceed, rounded up to its bucket's end; 0
    // when there is none yet.
    qint64 percentileUs(double percent) const;

    // Values from `fromUs` up to below `toUs`, as exact as the buckets are.
    qint64 between(qint64 fromUs, qint64 toUs) const;

private:
    static constexpr int bucketsPerDoubling = 16;
    static constexpr int doublings = 32;  // up to an hour
    static constexpr int buckets = bucketsPerDoubling * doublings;

    static int bucketOf(qint64 valueUs);
    static qint64 endOfBucketUs(int bucket);

    std::array<qint64, buckets> m_buckets = {};
    qint64 m_total = 0;
    qint64 m_largestUs = 0;
};

}  // namespace fxtools
