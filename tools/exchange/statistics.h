// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is counted while a link is in use. The exchange loop adds to it; `stats`, the demo and the
// closing lines of other commands show it.

#pragma once

#include "tools/exchange/exchange.h"

#include <QMap>

#include <array>

namespace fxtools {

// Times sorted into buckets whose width grows with them, about six per cent each, so that
// percentiles of any number of exchanges cost a fixed kilobyte or two.
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

struct KindCounts
{
    qint64 sent = 0;  // frames, repeats included
    qint64 accepted = 0;
    qint64 repeated = 0;  // rejected, but sent again
    qint64 failed = 0;    // rejected once too often
};

struct Statistics
{
    QMap<ExchangeKind, KindCounts> kinds;
    QMap<ReplyVerdict, qint64> verdicts;
    qint64 bytesSent = 0;
    qint64 bytesReceived = 0;
    qint64 bytesThrownAway = 0;  // late, double or damaged: never handed to the driver as data
    qint64 enquiriesSent = 0;
    qint64 enquiriesAnswered = 0;
    qint64 linksLost = 0;
    qint64 reconnects = 0;
    qint64 busyUs = 0;    // from sending to the end of the reply, including resynchronisation
    Histogram responses;  // of good replies
    qint64 acceptedCharacters = 0;  // of these exchanges, requests and replies
    qint64 acceptedUs = 0;          // that they took

    void add(const Exchange& exchange);

    KindCounts of(ExchangeKind kind) const { return kinds.value(kind); }
    qint64 of(ReplyVerdict verdict) const { return verdicts.value(verdict); }
    KindCounts total() const;
    bool plcHasAnswered() const { return total().accepted > 0; }
};

}  // namespace fxtools
