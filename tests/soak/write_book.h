// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host writes and one-off reads that have not ended yet, as the driver must hold them: cut into
// requests, in their order, a later one for the same registers in place of the earlier one unless
// that is the next to go. The soak compares every frame of theirs with the first of them.

#pragma once

#include "tools/library/registers.h"

#include <map>
#include <vector>

namespace fxsoak {

struct BookedRequest
{
    QString type;
    int first = 0;
    int count = 0;            // as it stands in a request, in the unit of its kind
    QVector<quint32> values;  // of a write, one a register

    bool isFor(const VARIABLE& request) const;
};

class RequestBook
{
public:
    bool isEmpty() const { return m_requests.empty(); }
    int size() const { return static_cast<int>(m_requests.size()); }
    const BookedRequest& next() const { return m_requests.front(); }
    void endNext() { m_requests.erase(m_requests.begin()); }
    void keepFirst(int requests);

    qint64 replaced() const { return m_replaced; }

protected:
    void queue(const BookedRequest& request);

    std::vector<BookedRequest> m_requests;

private:
    qint64 m_replaced = 0;
};

class ReadBook : public RequestBook
{
public:
    void add(const fxtools::RegisterRange& range);  // of one frame
};

class WriteBook : public RequestBook
{
public:
    explicit WriteBook(int wordsPerFrame) : m_wordsPerFrame(wordsPerFrame) {}

    void add(const fxtools::RegisterRange& range, const QVector<quint32>& values);

    // Whether a value in the cache may be one that waits to be written: of bits that goes for all
    // of a byte.
    bool mayCover(const fxtools::RegisterType& type, int number) const;

    quint32 lastWritten(const QString& type, int number) const;

private:
    int m_wordsPerFrame;
    std::map<std::pair<QString, int>, quint32> m_lastWritten;
};

}  // namespace fxsoak
