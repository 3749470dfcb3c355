// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values as people read and write them: decimal, signed, hexadecimal, and floating point over two
// words. A value is a number of as many bits as its register has.

#pragma once

#include "host/registers.h"

#include <optional>

namespace fxhost {

enum class ValueFormat
{
    Unsigned,
    Signed,
    Hex,
    Bits,
};

QString valueText(quint32 value, const RegisterType& type, ValueFormat format);

// Bits side by side, the lowest number first, in groups of eight.
QString bitsText(const QVector<quint32>& bits);

}  // namespace fxhost
