// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/statistics.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace fxtools {

const QVector<ExchangeKind>& allExchangeKinds()
{
    static const QVector<ExchangeKind> all = {
        ExchangeKind::Write, ExchangeKind::ConditionalRead, ExchangeKind::CyclicRead,
        ExchangeKind::RecipeDownload, ExchangeKind::RecipeUpload};
    return all;
}

QString kindText(ExchangeKind kind)
{
    switch (kind) {
    case ExchangeKind::Write:
        return QCoreApplication::translate("fxtools::ExchangeKind", "write");
    case ExchangeKind::ConditionalRead:
        return QCoreApplication::translate("fxtools::ExchangeKind", "one-off read");
    case ExchangeKind::CyclicRead:
        return QCoreApplication::translate("fxtools::ExchangeKind", "cyclic read");
    case ExchangeKind::RecipeDownload:
        return QCoreApplication::translate("fxtools::ExchangeKind", "recipe download");
    case ExchangeKind::RecipeUpload:
        return QCoreApplication::translate("fxtools::ExchangeKind", "recipe upload");
    }
    return {};
}

void Statistics::add(const Exchange& exchange)
{
    KindCounts& counts = kinds[exchange.kind];
    ++counts.sent;
    counts.accepted += exchange.answer == DriverAnswer::Accepted;
    counts.repeated += exchange.answer == DriverAnswer::Repeat;
    counts.failed += exchange.answer == DriverAnswer::Failed;
    ++verdicts[exchange.verdict];
    bytesSent += exchange.wasSent ? exchange.frame.frameLength : 0;
    bytesReceived += exchange.reply.size() + exchange.thrownAway.size();
    bytesThrownAway += exchange.thrownAway.size();
    linksLost += exchange.verdict == ReplyVerdict::LinkLost;
    if (exchange.answer != DriverAnswer::Accepted) {
        bytesThrownAway += exchange.reply.size();
        return;
    }
    responses.add(exchange.responseUs);
    acceptedCharacters += exchange.frame.frameLength + exchange.reply.size();
    acceptedUs += exchange.tookUs;
}

KindCounts Statistics::total() const
{
    KindCounts sum;
    for (const KindCounts& counts : kinds) {
        sum.sent += counts.sent;
        sum.accepted += counts.accepted;
        sum.repeated += counts.repeated;
        sum.failed += counts.failed;
    }
    return sum;
}

int Histogram::bucketOf(qint64 valueUs)
{
    const double doublingsUp = std::log2(static_cast<double>(std::max<qint64>(valueUs, 1)));
    return std::clamp(static_cast<int>(doublingsUp * bucketsPerDoubling), 0, buckets - 1);
}

qint64 Histogram::endOfBucketUs(int bucket)
{
    return static_cast<qint64>(std::ceil(std::exp2((bucket + 1.0) / bucketsPerDoubling)));
}

void Histogram::add(qint64 valueUs)
{
    ++m_buckets[static_cast<size_t>(bucketOf(valueUs))];
    ++m_total;
    m_largestUs = std::max(m_largestUs, valueUs);
}

qint64 Histogram::percentileUs(double percent) const
{
    const double wanted = percent / 100.0 * static_cast<double>(m_total);
    qint64 seen = 0;
    for (int bucket = 0; bucket < buckets; ++bucket) {
        seen += m_buckets[static_cast<size_t>(bucket)];
        if (seen > 0 && static_cast<double>(seen) >= wanted)
            return std::min(endOfBucketUs(bucket), m_largestUs);
    }
    return 0;
}

qint64 Histogram::between(qint64 fromUs, qint64 toUs) const
{
    qint64 sum = 0;
    for (int bucket = 0; bucket < buckets; ++bucket) {
        const qint64 endUs = endOfBucketUs(bucket);
        if (endUs > fromUs && endUs <= toUs)
            sum += m_buckets[static_cast<size_t>(bucket)];
    }
    return sum;
}

}  // namespace fxtools
