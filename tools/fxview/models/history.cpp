// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/history.h"

#include <algorithm>

namespace fxview {

namespace {

constexpr int mostBuckets = historyMs / finestBucketMs;
constexpr int fewestBuckets = 64;
constexpr qint64 mostSetBackMs = 60000;  // by a clock; after more, the history begins anew

qint64 bucketMsOf(int level)
{
    return finestBucketMs << (2 * level);
}
static_assert(bucketGrowth == 1 << 2);

int bucketsIn(int level, int mostPerLevel)
{
    return std::min(mostPerLevel, static_cast<int>(historyMs / bucketMsOf(level)) + 1);
}

qint64 bytesOf(int mostPerLevel)
{
    qint64 buckets = 0;
    for (int level = 0; level < historyLevels; ++level)
        buckets += bucketsIn(level, mostPerLevel);
    return buckets * qint64(sizeof(Extent));
}

}  // namespace

void Extent::include(const Extent& other)
{
    lowest = std::fmin(lowest, other.lowest);
    highest = std::fmax(highest, other.highest);
}

int bucketsPerLevel(int histories, qint64 bytes)
{
    int buckets = mostBuckets;
    while (buckets / 2 >= fewestBuckets && bytesOf(buckets) * std::max(histories, 1) > bytes)
        buckets /= 2;
    return buckets;
}

HistoryLevel::HistoryLevel(qint64 bucketMs, int mostBuckets)
    : m_bucketMs(bucketMs),
      m_capacity((mostBuckets + chunkBuckets - 1) / chunkBuckets * qint64(chunkBuckets)),
      m_chunks(static_cast<size_t>(m_capacity / chunkBuckets))
{}

qint64 HistoryLevel::bytes() const
{
    const auto used = std::count_if(m_chunks.begin(), m_chunks.end(),
                                    [](const auto& chunk) { return chunk != nullptr; });
    return used * qint64(sizeof(Chunk)) + qint64(m_chunks.size() * sizeof m_chunks[0]);
}

std::unique_ptr<HistoryLevel::Chunk>& HistoryLevel::chunkOf(qint64 number)
{
    return m_chunks[static_cast<size_t>(number % m_capacity / chunkBuckets)];
}

Extent HistoryLevel::at(qint64 number) const
{
    const qint64 place = number % m_capacity;
    const std::unique_ptr<Chunk>& chunk = m_chunks[static_cast<size_t>(place / chunkBuckets)];
    return chunk ? (*chunk)[static_cast<size_t>(place % chunkBuckets)] : Extent();
}

// The places between had buckets that are too old now.
void HistoryLevel::advanceTo(qint64 number)
{
    if (number - m_newest >= m_capacity) {
        for (std::unique_ptr<Chunk>& chunk : m_chunks)
            chunk.reset();
        m_newest = number;
    }
    while (m_newest < number) {
        ++m_newest;
        if (const std::unique_ptr<Chunk>& chunk = chunkOf(m_newest))
            (*chunk)[static_cast<size_t>(m_newest % chunkBuckets)] = {};
    }
}

void HistoryLevel::add(qint64 timeMs, const Extent& extent)
{
    const qint64 number = timeMs / m_bucketMs;
    if (number < 0 || number <= m_newest - m_capacity)
        return;
    advanceTo(number);
    std::unique_ptr<Chunk>& chunk = chunkOf(number);
    if (!chunk)
        chunk = std::make_unique<Chunk>();
    (*chunk)[static_cast<size_t>(number % chunkBuckets)].include(extent);
}

void HistoryLevel::hold(qint64 fromMs, qint64 toMs, const Extent& extent)
{
    for (qint64 number = fromMs / m_bucketMs + 1; number < toMs / m_bucketMs; ++number)
        add(number * m_bucketMs, extent);
}

Extent HistoryLevel::between(qint64 fromMs, qint64 toMs) const
{
    Extent all;
    const qint64 first = std::max(fromMs / m_bucketMs, m_newest - m_capacity + 1);
    const qint64 last = std::min((toMs - 1) / m_bucketMs, m_newest);
    for (qint64 number = first; number <= last; ++number)
        all.include(at(number));
    return all;
}

History::History(int bucketsPerLevel) : m_bucketsPerLevel(bucketsPerLevel)
{
    for (int level = 0; level < historyLevels; ++level)
        m_levels.emplace_back(bucketMsOf(level), bucketsIn(level, bucketsPerLevel));
}

void History::add(qint64 timeMs, double value, qint64 holdMs)
{
    if (timeMs < m_lastMs - mostSetBackMs)
        *this = History(m_bucketsPerLevel);
    const bool isHeld = m_isHeld && timeMs - m_lastMs <= holdMs;
    for (HistoryLevel& level : m_levels) {
        if (isHeld)
            level.hold(m_lastMs, timeMs, {m_lastValue, m_lastValue});
        level.add(timeMs, {value, value});
    }
    m_lastMs = timeMs;
    m_lastValue = value;
    m_isHeld = true;
}

QVector<Extent> History::columns(qint64 fromMs, qint64 toMs, int columns) const
{
    QVector<Extent> extents(std::max(columns, 0));
    const qint64 spanMs = toMs - fromMs;
    if (spanMs <= 0 || columns <= 0)
        return extents;
    size_t finest = 0;
    while (finest + 1 < m_levels.size() && m_levels[finest + 1].bucketMs() * columns <= spanMs)
        ++finest;
    for (int column = 0; column < columns; ++column) {
        const qint64 startMs = fromMs + spanMs * column / columns;
        const qint64 endMs = std::max(fromMs + spanMs * (column + 1) / columns, startMs + 1);
        size_t level = finest;
        while (level + 1 < m_levels.size() && m_levels[level].oldestMs() > startMs)
            ++level;
        extents[column] = m_levels[level].between(startMs, endMs);
    }
    return extents;
}

Extent History::at(qint64 timeMs) const
{
    return columns(timeMs, timeMs + 1, 1).first();
}

qint64 History::bytes() const
{
    qint64 bytes = 0;
    for (const HistoryLevel& level : m_levels)
        bytes += level.bytes();
    return bytes;
}

}  // namespace fxview
