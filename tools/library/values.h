// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values as people read and write them: decimal, signed, hexadecimal, binary, and 32 bits or
// floating point in two words, the lower word first. A value takes one register or two.

#pragma once

#include "tools/library/registers.h"

#include <QJsonValue>

#include <map>
#include <string>

namespace fxtools {

enum class ValueFormat
{
    Unsigned,
    Signed,
    Hex,
    Binary,
    Long,   // two words as 32 bits
    Float,  // two words as a floating-point number
};

// Their names on the command line.
const std::map<std::string, ValueFormat>& valueFormats();

int registersPerValue(const RegisterType& type, ValueFormat format);

// One value of the registers from `registers[0]` on: a number where JSON has one, else a text.
QJsonValue valueOf(const quint32* registers, const RegisterType& type, ValueFormat format);
QString valueText(quint32 value, const RegisterType& type, ValueFormat format);

// The register values for a written value. With a plain decimal format, a number with a point or an
// exponent becomes a floating-point number, and one too large for a word a 32-bit number, both in
// two words. Throws Failure.
QVector<quint32> parseValue(const QString& text, const RegisterType& type,
                            ValueFormat format = ValueFormat::Unsigned);

// Bits side by side, the lowest number first, in groups of eight.
QString bitsText(const QVector<quint32>& bits);

}  // namespace fxtools
