// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The line between a host and the PLC as a matter of time: characters take their time in both
// directions, one after the other, and a PLC answers at the end of a scan. Pure: it is told the
// time (in microseconds of any clock that only moves forward) and sleeps nowhere. Every session has
// one; its link asks what is due and when to ask again.

#pragma once

#include <QByteArray>
#include <QQueue>

namespace fxsim {

constexpr int bitsPerCharacter = 10;  // start, seven data, even parity, stop
constexpr qint64 nothingDue = -1;
constexpr int mostQueuedPieces = 1000;  // a host that asks on and on and takes nothing gets no more

struct LineTiming
{
    int baud = 0;    // 0: characters take no time
    int scanMs = 0;  // 0: the PLC answers at once

    qint64 characterTimeUs() const;
    qint64 scanEndUs(qint64 atUs) const;  // the first end of a scan at or after `atUs`
};

class PacedLine
{
public:
    explicit PacedLine(const LineTiming& timing) : m_timing(timing) {}

    // When the last of `characters` is in, which begin to arrive now (or once those before them are
    // in).
    qint64 arrivalUs(int characters, qint64 nowUs);

    // Queues bytes whose first may leave at `notBeforeUs`, and after all that was queued before.
    // False: the queue is full and they are lost.
    bool send(const QByteArray& bytes, const QByteArray& note, qint64 notBeforeUs);

    struct Sent
    {
        QByteArray bytes;
        QByteArray note;
    };

    // What has left by now; pieces that became whole are appended to `whole`.
    QByteArray takeDue(qint64 nowUs, QVector<Sent>& whole);
    qint64 nextDueUs() const;  // or nothingDue
    qint64 queuedUntilUs() const { return m_sendingUntilUs; }
    void clear();

private:
    struct Piece
    {
        Sent sent;
        qint64 startUs = 0;
        int taken = 0;
    };

    LineTiming m_timing;
    qint64 m_receivingUntilUs = 0;
    qint64 m_sendingUntilUs = 0;
    QQueue<Piece> m_pieces;
};

}  // namespace fxsim
