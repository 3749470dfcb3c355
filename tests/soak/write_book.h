// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host writes that have not ended yet, as the driver must hold them: cut into requests, in
// their order, a later one for the same registers in place of the earlier one unless that is the
// next to go. The soak compares every write frame with the first of them.

#pragma once

#include "tools/library/registers.h"

#include <map>
#include <vector>

namespace fxsoak {

struct BookedWrite
{
    QString type;
    int first = 0;
    int count = 0;            // as it stands in a request: 1 bit, or words
    QVector<quint32> values;  // one a register
};

class WriteBook
{
public:
    explicit WriteBook(int wordsPerFrame) : m_wordsPerFrame(wordsPerFrame) {}

    void add(const fxtools::RegisterRange& range, const QVector<quint32>& values);

    bool isEmpty() const { return m_writes.empty(); }
    std::size_t size() const { return m_writes.size(); }
    const BookedWrite& next() const { return m_writes.front(); }
    void endNext() { m_writes.erase(m_writes.begin()); }

    // Whether a value in the cache may be one that waits to be written: of bits that goes for all
    // of a byte.
    bool mayCover(const fxtools::RegisterType& type, int number) const;

    quint32 lastWritten(const QString& type, int number) const;

    qint64 replaced() const { return m_replaced; }

private:
    void queue(const BookedWrite& write);

    int m_wordsPerFrame;
    std::vector<BookedWrite> m_writes;
    std::map<std::pair<QString, int>, quint32> m_lastWritten;
    qint64 m_replaced = 0;
};

}  // namespace fxsoak
