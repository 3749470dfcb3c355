// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The changes of one form on their way to the broker, until it is known that they arrived.
//
// Nothing acknowledges a message of QoS 0. But a broker reads in order: when it has answered a
// barrier, something harmless that was sent last, it has read all that was sent before. A batch is
// what was sent between two barriers; it is confirmed when its barrier is answered and its messages
// of QoS 1 are acknowledged. When the connection ends, what is not confirmed is stored, marked as
// perhaps repeated.
//
// Times are given; there is no clock in here.

#pragma once

#include "tools/fxgate/store/store.h"

#include <QSet>

#include <deque>
#include <map>

namespace fxgate {

class Outbox
{
public:
    Outbox(Store& store, const QString& form);

    void keep(const Change& change);  // it cannot be sent now

    // What was sent: changes, rows of the store, messages that will be acknowledged.
    void sent(const QVector<Change>& changes);
    void sent(const QVector<StoredChange>& rows);
    void sent(int message);

    int batchSize() const;  // changes since the last barrier; a barrier is due sooner or later
    void barrierSent(int barrier, qint64 nowMs);
    void barrierAnswered(int barrier);
    void acknowledged(int message);
    void connectionEnded();

    int rowsUnderWay() const { return m_underWay.size(); }
    int unconfirmed() const;                     // changes
    bool isAllConfirmed() const;                 // no message and no barrier is open either
    qint64 oldestBarrierMs(qint64 nowMs) const;  // when it was sent; now if none is open

    // One commit: stores what is kept, removes what is confirmed, and returns what to send next, at
    // most so many, and none of these links. What was sent before it and is not confirmed yet must
    // be stored first, so it may wait for that.
    QVector<StoredChange> work(qint64 nowMs, int most, const QStringList& withoutLinks);
    void rewind() { m_lastTaken = 0; }  // what was left out may be taken now
    void drop(const QVector<qint64>& rows);
    qint64 dropKept();  // what could not be stored; returns how many changes that were

    qint64 dropped() const { return m_dropped + m_store.dropped(m_form); }
    qint64 waiting() const;  // to be sent

private:
    struct Batch
    {
        std::map<quint64, Change> changes;  // in the order of all changes
        QVector<qint64> rows;
        QSet<int> messages;          // not acknowledged yet
        std::optional<int> barrier;  // not sent yet, or
        bool isAnswered = false;
        qint64 barrierMs = 0;

        bool isConfirmed() const { return isAnswered && messages.isEmpty(); }
    };

    void removeConfirmed();

    Store& m_store;
    QString m_form;
    quint64 m_changes = 0;                   // so far; orders them
    std::map<quint64, StoredChange> m_kept;  // to be stored
    std::deque<Batch> m_batches;             // the last one has no barrier yet
    QVector<qint64> m_confirmedRows;         // to be removed
    QSet<qint64> m_underWay;                 // rows that were taken in this connection
    qint64 m_lastTaken = 0;
    qint64 m_dropped = 0;
};

}  // namespace fxgate
