// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "shaken_line.h"

#include <utility>

namespace fxsoak {

namespace {

QByteArray firstOf(const QByteArray& bytes, double share)
{
    return bytes.left(static_cast<int>(share * bytes.size()));
}

}  // namespace

void ShakenLine::cut(double share, qint64 forUs)
{
    m_share = share;
    m_cutUntilUs = nowUs() + forUs;
}

void ShakenLine::close(qint64 forUs)
{
    m_share.reset();
    m_isCut = true;
    m_cutUntilUs = nowUs() + forUs;
}

void ShakenLine::open()
{
    m_isCut = false;
    while (m_isSerial && VirtualLine::isOpen() && nowUs() < m_cutUntilUs)
        VirtualLine::receive(static_cast<int>((m_cutUntilUs - nowUs()) / fxsim::usPerMs + 1));
    if (!m_isSerial || !VirtualLine::isOpen()) {
        rest(std::max<qint64>(m_cutUntilUs - nowUs(), 0));
        VirtualLine::open();
    }
}

bool ShakenLine::send(const QByteArray& bytes)
{
    onCall();
    if (!isOpen())
        return false;
    if (!m_share)
        return deliver(bytes);
    deliver(firstOf(bytes, *std::exchange(m_share, std::nullopt)));
    m_isCut = true;
    ++m_cuts[true];
    return false;
}

QByteArray ShakenLine::receive(int timeoutMs)
{
    onCall();
    if (!isOpen())
        return {};
    const QByteArray bytes = VirtualLine::receive(timeoutMs);
    if (!m_share)
        return bytes;
    m_isCut = true;
    ++m_cuts[false];
    return firstOf(bytes, *std::exchange(m_share, std::nullopt));
}

bool ShakenLine::deliver(const QByteArray& bytes)
{
    const qint64 before = writesCarriedOut();
    const bool isSent = bytes.isEmpty() || VirtualLine::send(bytes);
    if (bytes.size() > 1)
        m_attempts.push_back({memory(), writesCarriedOut() > before});
    return isSent;
}

// The simulator counts a request before a fault refuses it.
qint64 ShakenLine::writesCarriedOut()
{
    const fxsim::Statistics& counted = plc().statistics();
    return counted.writes + counted.forces - counted.faults[int(fxsim::FaultKind::Nak)];
}

}  // namespace fxsoak
