// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The timing of the line between a host and the PLC: each character takes its time, in both
// directions, and the PLC answers at the end of a scan. Pure: it is told the time (in microseconds
// of any clock that only moves forward) and never sleeps. Every session has one; its link asks what
// is due and when to ask again.

#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QQueue>

namespace fxsim {

constexpr qint64 usPerMs = 1000;
constexpr qint64 usPerSecond = 1000000;
constexpr int bitsPerCharacter = 10;  // start, seven data, even parity, stop
constexpr qint64 nothingDue = -1;
constexpr int mostQueuedPieces = 1000;  // for a host that keeps asking and reads nothing

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

    // When the last of `characters` has arrived; the first starts now, or after those before it.
    qint64 arrivalUs(int characters, qint64 nowUs);

    // Queues bytes to leave from `notBeforeUs` on, after all that was queued before. False: the
    // queue is full and they are lost.
    bool send(const QByteArray& bytes, const QByteArray& note, qint64 notBeforeUs);

    struct Sent
    {
        QByteArray bytes;
        QByteArray note;
    };

    // What leaves until now; pieces of which nothing is left are appended to `whole`.
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

// The simulator's one clock: microseconds since it was made.
class Clock
{
public:
    Clock() { m_timer.start(); }
    qint64 nowUs() const { return m_timer.nsecsElapsed() / 1000; }

private:
    QElapsedTimer m_timer;
};

}  // namespace fxsim
