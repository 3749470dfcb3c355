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

#include <string_view>

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

// The characters of the FX programming port: control characters, upper-case hex digits and the sum
// that ends a frame.
constexpr char stx = 0x02;
constexpr char etx = 0x03;
constexpr char enq = 0x05;
constexpr char ack = 0x06;
constexpr char nak = 0x15;

constexpr int sumDigits = 2;

// -1 when the character is not a digit; the port speaks upper case only.
int hexDigitValue(char digit);

// The number that up to four digits spell, or -1 when one of them is not a digit.
int hexNumber(std::string_view digits);

QByteArray hexOfBytes(const QByteArray& bytes);  // two digits a byte
QByteArray bytesOfHex(std::string_view digits);  // digits that were checked before

// The sum over everything after STX up to ETX, both given to it; a frame ends with its two digits.
quint8 sumOf(std::string_view fromCommandToEtx);

QByteArray framed(const QByteArray& content);  // STX, content, ETX, sum

}  // namespace fxsim
