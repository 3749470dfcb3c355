// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values as people read and write them. One value is a bit, the number in one register, the 32-bit
// or floating-point number in two words, or the text in many. The format says which, never the
// value: what does not fit is an error that says what would.

#pragma once

#include "tools/library/addresses.h"

#include <QJsonValue>

namespace fxtools {

enum class ValueFormat
{
    Signed,
    Unsigned,
    Hex,
    Binary,
    Bcd,
    Long,   // two words as a signed number
    ULong,  // two words as an unsigned number
    Float,  // two words as a floating-point number
    Text,   // two characters in a word, the first one in its low byte
};

struct ValueStyle
{
    ValueFormat format = ValueFormat::Signed;
    bool swap = false;  // the high word is in the first of two registers
};

// The format with this name on the command line.
std::optional<ValueFormat> formatNamed(const QString& name);
QString formatName(ValueFormat format);
QString formatNames();  // "signed, unsigned, ... or text"

// How many of the registers from the first one on make one value.
int registersPerValue(const RegisterRange& range, ValueStyle style);
int registersPerValue(const AskedAddress& asked, ValueStyle style);

// Takes two words where one address names a value of two.
void widen(AskedAddress& asked, ValueStyle style);

// One value: a number where JSON has one, otherwise a text.
QJsonValue valueOf(const QVector<quint32>& registers, const RegisterType& type, ValueStyle style);
QJsonValue valueOf(const QVector<quint32>& registers, const AskedAddress& asked, ValueStyle style);
QJsonValue numberValue(quint32 number, int bits, ValueFormat format);
QString valueText(quint32 value, const RegisterType& type, ValueFormat format);

// The registers for a value as it is written. `target` are all registers of this one value: two
// words hold 32 bits in every format. All throw Failure.
QVector<quint32> parseValue(const QString& text, const RegisterRange& target, ValueStyle style);
quint32 parseNumber(const QString& text, int bits, ValueFormat format, const QString& hint = {});
quint32 parseBit(const QString& text);

// Bits side by side, the lowest number first, in groups of eight.
QString bitsText(const QVector<quint32>& bits);

}  // namespace fxtools
