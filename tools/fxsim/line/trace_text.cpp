// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/line/trace_text.h"

#include "tools/fxsim/line/characters.h"

namespace fxsim {

namespace {

QByteArray nameOf(char character)
{
    switch (character) {
    case stx:
        return "<STX>";
    case etx:
        return "<ETX>";
    case enq:
        return "<ENQ>";
    case ack:
        return "<ACK>";
    case nak:
        return "<NAK>";
    }
    if (character >= ' ' && character <= '~')
        return QByteArray(1, character);
    return '<' + hexOfBytes(QByteArray(1, character)) + '>';
}

const char* arrow(TraceEntry::Direction direction)
{
    switch (direction) {
    case TraceEntry::Direction::FromHost:
        return ">";
    case TraceEntry::Direction::ToHost:
        return "<";
    case TraceEntry::Direction::Note:
        return "*";
    }
    return "";
}

}  // namespace

QByteArray readable(const QByteArray& bytes)
{
    QByteArray text;
    for (const char character : bytes)
        text += nameOf(character);
    return text;
}

QByteArray traceLine(const TraceEntry& entry)
{
    const QByteArray us = QByteArray::number(entry.atUs % usPerSecond).rightJustified(6, '0');
    QByteArray line = QByteArray::number(entry.atUs / usPerSecond).rightJustified(5) + '.' + us +
                      ' ' + entry.client + ' ' + arrow(entry.direction);
    if (!entry.bytes.isEmpty())
        line += ' ' + entry.bytes.toHex(' ').toUpper() + " | " + readable(entry.bytes);
    if (!entry.text.isEmpty())
        line += (entry.bytes.isEmpty() ? " " : " | ") + entry.text;
    return line;
}

}  // namespace fxsim
