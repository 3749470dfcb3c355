// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See values.h.

#include "host/values.h"

namespace fxhost {

namespace {

constexpr int bitsPerGroup = 8;

QString signedText(quint32 value, RegisterWidth width)
{
    if (width == RegisterWidth::Word)
        return QString::number(static_cast<qint16>(value));
    return QString::number(static_cast<qint32>(value));
}

}  // namespace

QString valueText(quint32 value, const RegisterType& type, ValueFormat format)
{
    if (type.isBit())
        return QString::number(value);
    const int bits = 8 * type.valueBytes();
    switch (format) {
    case ValueFormat::Unsigned:
        return QString::number(value);
    case ValueFormat::Signed:
        return signedText(value, type.width);
    case ValueFormat::Hex:
        return "0x" + QString::number(value, 16).toUpper().rightJustified(bits / 4, '0');
    case ValueFormat::Bits:
        return "0b" + QString::number(value, 2).rightJustified(bits, '0');
    }
    return {};
}

QString bitsText(const QVector<quint32>& bits)
{
    QString text;
    for (int index = 0; index < bits.size(); ++index) {
        if (index > 0 && index % bitsPerGroup == 0)
            text += ' ';
        text += bits[index] ? QStringLiteral("●") : QStringLiteral("○");
    }
    return text;
}

}  // namespace fxhost
