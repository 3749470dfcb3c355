// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/line/frame_reader.h"

namespace fxsim {

QVector<LineEvent> FrameReader::receive(const QByteArray& bytes)
{
    QVector<LineEvent> events;
    for (const char character : bytes) {
        if (m_frame.isEmpty())
            outside(character, events);
        else
            inside(character, events);
    }
    flushJunk(events);
    return events;
}

void FrameReader::reset()
{
    m_frame.clear();
    m_junk.clear();
    m_sumDigitsWanted = 0;
}

void FrameReader::outside(char character, QVector<LineEvent>& events)
{
    if (character == enq) {
        flushJunk(events);
        events.append({LineEvent::Kind::Enquiry, QByteArray(1, enq)});
    } else if (character == stx) {
        flushJunk(events);
        m_frame = QByteArray(1, stx);
    } else {
        m_junk.append(character);
    }
}

void FrameReader::inside(char character, QVector<LineEvent>& events)
{
    if (character == stx || character == enq) {
        giveUp(events);
        outside(character, events);
        return;
    }
    m_frame.append(character);
    if (m_sumDigitsWanted > 0) {
        if (--m_sumDigitsWanted == 0) {
            events.append({LineEvent::Kind::Frame, m_frame});
            m_frame.clear();
        }
    } else if (character == etx) {
        m_sumDigitsWanted = sumDigits;
    } else if (m_frame.size() == longestFrame) {
        events.append({LineEvent::Kind::Overlong, m_frame});
        reset();
    }
}

void FrameReader::giveUp(QVector<LineEvent>& events)
{
    m_junk.append(m_frame);
    m_frame.clear();
    m_sumDigitsWanted = 0;
    flushJunk(events);
}

void FrameReader::flushJunk(QVector<LineEvent>& events)
{
    if (m_junk.isEmpty())
        return;
    events.append({LineEvent::Kind::Junk, m_junk});
    m_junk.clear();
}

int hexDigitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

int hexNumber(std::string_view digits)
{
    int number = 0;
    for (const char digit : digits) {
        const int value = hexDigitValue(digit);
        if (value < 0)
            return -1;
        number = number << 4 | value;
    }
    return number;
}

QByteArray hexOfBytes(const QByteArray& bytes)
{
    return bytes.toHex().toUpper();
}

QByteArray bytesOfHex(std::string_view digits)
{
    return QByteArray::fromHex(
        QByteArray::fromRawData(digits.data(), static_cast<int>(digits.size())));
}

quint8 sumOf(std::string_view fromCommandToEtx)
{
    quint8 sum = 0;
    for (const char character : fromCommandToEtx)
        sum = static_cast<quint8>(sum + static_cast<quint8>(character));
    return sum;
}

QByteArray framed(const QByteArray& content)
{
    QByteArray frame = stx + content + etx;
    const quint8 sum =
        sumOf(std::string_view(frame.constData(), static_cast<size_t>(frame.size())).substr(1));
    return frame += hexOfBytes(QByteArray(1, static_cast<char>(sum)));
}

}  // namespace fxsim
