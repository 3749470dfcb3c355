// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "write_book.h"

#include "plc_map.h"

#include <algorithm>

namespace fxsoak {

namespace {

bool isSameRequest(const BookedWrite& a, const BookedWrite& b)
{
    return a.type == b.type && a.first == b.first && a.count == b.count;
}

}  // namespace

void WriteBook::add(const fxtools::RegisterRange& range, const QVector<quint32>& values)
{
    for (int i = 0; i < values.size(); ++i)
        m_lastWritten[{range.type.name, range.first + i}] = values[i];
    const int mostRegisters = range.type.isBit() ? 1 : range.type.mostInFrame(m_wordsPerFrame);
    for (int done = 0; done < values.size(); done += mostRegisters) {
        const QVector<quint32> piece = values.mid(done, mostRegisters);
        queue({range.type.name, range.first + done, range.type.driverCount(piece.size()), piece});
    }
}

void WriteBook::queue(const BookedWrite& write)
{
    for (std::size_t i = m_writes.size(); i-- > 1;) {
        if (isSameRequest(m_writes[i], write)) {
            m_writes[i] = write;
            ++m_replaced;
            return;
        }
    }
    m_writes.push_back(write);
}

quint32 WriteBook::lastWritten(const QString& type, int number) const
{
    return m_lastWritten.at({type, number});
}

bool WriteBook::mayCover(const fxtools::RegisterType& type, int number) const
{
    return std::any_of(m_writes.begin(), m_writes.end(), [&](const BookedWrite& write) {
        if (write.type != type.name)
            return false;
        if (type.isBit())
            return write.first / bitsPerByte == number / bitsPerByte;
        return number >= write.first && number < write.first + write.values.size();
    });
}

}  // namespace fxsoak
