// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "write_book.h"

#include "plc_map.h"

#include <algorithm>

namespace fxsoak {

bool BookedRequest::isFor(const VARIABLE& request) const
{
    return type == request.registerType && first == request.addressIndex && count == request.count;
}

void RequestBook::keepFirst(int requests)
{
    m_requests.resize(std::min(m_requests.size(), static_cast<std::size_t>(requests)));
}

void RequestBook::queue(const BookedRequest& request)
{
    for (std::size_t i = m_requests.size(); i-- > 1;) {
        BookedRequest& waiting = m_requests[i];
        if (waiting.type == request.type && waiting.first == request.first &&
            waiting.count == request.count) {
            waiting = request;
            ++m_replaced;
            return;
        }
    }
    m_requests.push_back(request);
}

void ReadBook::add(const fxtools::RegisterRange& range)
{
    const int bytes = (range.count + bitsPerByte - 1) / bitsPerByte;
    queue({range.type.name, range.first, range.type.isBit() ? bytes : range.count, {}});
}

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

quint32 WriteBook::lastWritten(const QString& type, int number) const
{
    return m_lastWritten.at({type, number});
}

bool WriteBook::mayCover(const fxtools::RegisterType& type, int number) const
{
    return std::any_of(m_requests.begin(), m_requests.end(), [&](const BookedRequest& write) {
        if (write.type != type.name)
            return false;
        if (type.isBit())
            return write.first / bitsPerByte == number / bitsPerByte;
        return number >= write.first && number < write.first + write.values.size();
    });
}

}  // namespace fxsoak
