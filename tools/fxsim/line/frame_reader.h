// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Cuts a stream of characters into what the PLC acts on: an ENQ, or a frame from STX to the second
// sum digit. Bytes may come one by one or many frames at once. Everything between frames is junk,
// which is ignored and counted. ENQ or STX inside a frame ends it unanswered: neither can occur in
// a frame, so the host has started again.

#pragma once

#include <QByteArray>
#include <QVector>

namespace fxsim {

// Far above the longest frame with a meaning (STX, command, 4 + 2 digits, 255 bytes as digits, ETX,
// sum = 521), so that a frame which merely asks for too much still gets its answer.
constexpr int longestFrame = 2048;

struct LineEvent
{
    enum class Kind
    {
        Enquiry,
        Frame,     // `bytes` from STX to the second sum digit
        Overlong,  // longer than any frame may be; the rest of it will be junk
        Junk,      // `bytes` outside a frame, or of one that was given up
    };
    Kind kind = Kind::Junk;
    QByteArray bytes;
};

class FrameReader
{
public:
    QVector<LineEvent> receive(const QByteArray& bytes);
    void reset();

private:
    void outside(char character, QVector<LineEvent>& events);
    void inside(char character, QVector<LineEvent>& events);
    void giveUp(QVector<LineEvent>& events);
    void flushJunk(QVector<LineEvent>& events);

    QByteArray m_frame;  // empty while outside a frame
    QByteArray m_junk;
    int m_sumDigitsWanted = 0;  // above 0 once ETX was seen
};

}  // namespace fxsim
