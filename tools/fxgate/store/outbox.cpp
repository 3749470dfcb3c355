// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/store/outbox.h"

#include <algorithm>

namespace fxgate {

namespace {

constexpr std::size_t mostKept = 10000;  // in memory, while the store cannot be written

}  // namespace

Outbox::Outbox(Store& store, const QString& form) : m_store(store), m_form(form), m_batches(1) {}

void Outbox::keep(const Change& change)
{
    m_kept[m_changes++] = {0, change, false};
}

void Outbox::sent(const QVector<Change>& changes)
{
    for (const Change& change : changes)
        m_batches.back().changes[m_changes++] = change;
}

void Outbox::sent(const QVector<StoredChange>& rows)
{
    for (const StoredChange& stored : rows)
        m_batches.back().rows.append(stored.row);
}

void Outbox::sent(int message)
{
    m_batches.back().messages.insert(message);
}

int Outbox::batchSize() const
{
    const Batch& batch = m_batches.back();
    return static_cast<int>(batch.changes.size()) + batch.rows.size() + batch.messages.size();
}

void Outbox::barrierSent(int barrier, qint64 nowMs)
{
    m_batches.back().barrier = barrier;
    m_batches.back().barrierMs = nowMs;
    m_batches.emplace_back();
}

void Outbox::barrierAnswered(int barrier)
{
    for (Batch& batch : m_batches)
        if (batch.barrier == barrier)
            batch.isAnswered = true;
    removeConfirmed();
}

void Outbox::acknowledged(int message)
{
    for (Batch& batch : m_batches)
        batch.messages.remove(message);
    removeConfirmed();
}

void Outbox::removeConfirmed()
{
    while (m_batches.front().isConfirmed()) {  // the last one never is
        m_confirmedRows += m_batches.front().rows;
        m_batches.pop_front();
    }
}

void Outbox::connectionEnded()
{
    for (const Batch& batch : m_batches)
        for (const auto& [order, change] : batch.changes)
            m_kept[order] = {0, change, true};
    m_batches.clear();
    m_batches.emplace_back();
    m_underWay.clear();
}

int Outbox::unconfirmed() const
{
    int changes = 0;
    for (const Batch& batch : m_batches)
        changes += static_cast<int>(batch.changes.size()) + batch.rows.size();
    return changes;
}

bool Outbox::isAllConfirmed() const
{
    return m_batches.size() == 1 && batchSize() == 0;
}

qint64 Outbox::oldestBarrierMs(qint64 nowMs) const
{
    return m_batches.front().barrier ? m_batches.front().barrierMs : nowMs;
}

QVector<StoredChange> Outbox::work(qint64 nowMs, int most, const QStringList& withoutLinks)
{
    // A change may be stored when no change before it is still unconfirmed.
    quint64 oldest = m_changes;
    for (const Batch& batch : m_batches)
        if (!batch.changes.empty())
            oldest = std::min(oldest, batch.changes.begin()->first);
    QVector<StoredChange> toStore;
    for (auto kept = m_kept.begin(); kept != m_kept.lower_bound(oldest); ++kept)
        toStore.append(kept->second);

    const bool takes = most > 0 && (!toStore.isEmpty() || m_lastTaken < m_store.lastRow());
    if (toStore.isEmpty() && m_confirmedRows.isEmpty() && !takes)
        return {};
    QVector<StoredChange> taken;
    const bool isDone = m_store.inOneCommit([&] {
        m_store.remove(m_form, m_confirmedRows);
        m_store.add(m_form, toStore, nowMs);
        if (takes)
            taken = m_store.take(m_form, m_lastTaken, most, withoutLinks);
    });
    if (!isDone) {
        for (; m_kept.size() > mostKept; ++m_dropped)
            m_kept.erase(m_kept.begin());
        return {};
    }
    for (const qint64 row : qAsConst(m_confirmedRows))
        m_underWay.remove(row);
    m_confirmedRows.clear();
    m_kept.erase(m_kept.begin(), m_kept.lower_bound(oldest));
    if (takes)
        m_lastTaken = taken.size() == most ? taken.last().row : m_store.lastRow();
    taken.erase(std::remove_if(
                    taken.begin(), taken.end(),
                    [this](const StoredChange& stored) { return m_underWay.contains(stored.row); }),
                taken.end());
    for (const StoredChange& stored : qAsConst(taken))
        m_underWay.insert(stored.row);
    return taken;
}

void Outbox::drop(const QVector<qint64>& rows)
{
    m_confirmedRows += rows;
    m_dropped += rows.size();
}

qint64 Outbox::dropKept()
{
    const auto changes = static_cast<qint64>(m_kept.size());
    m_kept.clear();
    m_dropped += changes;
    return changes;
}

qint64 Outbox::waiting() const
{
    return m_store.rows(m_form) + static_cast<qint64>(m_kept.size());
}

}  // namespace fxgate
