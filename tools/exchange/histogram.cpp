// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/histogram.h"

#include <algorithm>
#include <cmath>

namespace fxtools {

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
