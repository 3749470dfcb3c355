// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/line/paced_line.h"

#include <algorithm>

namespace fxsim {

qint64 LineTiming::characterTimeUs() const
{
    return baud > 0 ? bitsPerCharacter * usPerSecond / baud : 0;
}

qint64 LineTiming::scanEndUs(qint64 atUs) const
{
    const qint64 scanUs = scanMs * usPerMs;
    return scanUs > 0 ? (atUs + scanUs - 1) / scanUs * scanUs : atUs;
}

qint64 PacedLine::arrivalUs(int characters, qint64 nowUs)
{
    m_receivingUntilUs =
        std::max(nowUs, m_receivingUntilUs) + characters * m_timing.characterTimeUs();
    return m_receivingUntilUs;
}

bool PacedLine::send(const QByteArray& bytes, const QByteArray& note, qint64 notBeforeUs)
{
    if (bytes.isEmpty())
        return true;
    if (m_pieces.size() == mostQueuedPieces)
        return false;
    const qint64 startUs = std::max(notBeforeUs, m_sendingUntilUs);
    m_pieces.enqueue({{bytes, note}, startUs, 0});
    m_sendingUntilUs = startUs + bytes.size() * m_timing.characterTimeUs();
    return true;
}

QByteArray PacedLine::takeDue(qint64 nowUs, QVector<Sent>& whole)
{
    const qint64 characterUs = m_timing.characterTimeUs();
    QByteArray due;
    while (!m_pieces.isEmpty() && nowUs >= m_pieces.head().startUs) {
        Piece& piece = m_pieces.head();
        const qint64 size = piece.sent.bytes.size();
        const qint64 left =
            characterUs > 0 ? std::min(size, (nowUs - piece.startUs) / characterUs) : size;
        due += piece.sent.bytes.mid(piece.taken, static_cast<int>(left) - piece.taken);
        piece.taken = static_cast<int>(left);
        if (left < size)
            break;
        whole.append(m_pieces.dequeue().sent);
    }
    return due;
}

qint64 PacedLine::nextDueUs() const
{
    if (m_pieces.isEmpty())
        return nothingDue;
    const Piece& piece = m_pieces.head();
    return piece.startUs + (piece.taken + 1) * m_timing.characterTimeUs();
}

void PacedLine::clear()
{
    m_pieces.clear();
    m_sendingUntilUs = 0;
}

}  // namespace fxsim
