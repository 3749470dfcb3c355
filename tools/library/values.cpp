// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/values.h"

#include <cstring>
#include <limits>

namespace fxtools {

namespace {

constexpr int bitsPerGroup = 8;
constexpr quint32 wordMask = 0xFFFF;
constexpr int wordBits = 16;

float floatOf(quint32 bits)
{
    float number = 0;
    static_assert(sizeof number == sizeof bits);
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

quint32 bitsOf(float number)
{
    quint32 bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

qint64 signedOf(quint32 value, const RegisterType& type)
{
    if (type.width == RegisterWidth::Word)
        return static_cast<qint16>(value);
    return static_cast<qint32>(value);
}

QVector<quint32> overTwoWords(quint32 bits)
{
    return {bits & wordMask, bits >> wordBits};
}

[[noreturn]] void reject(const QString& text, const QString& reason)
{
    throw Failure(ExitCode::Usage, "value '" + text + "' " + reason);
}

QVector<quint32> parseBit(const QString& text)
{
    const QString lower = text.toLower();
    if (lower == QLatin1String("1") || lower == QLatin1String("on"))
        return {1};
    if (lower == QLatin1String("0") || lower == QLatin1String("off"))
        return {0};
    reject(text, QStringLiteral("is not a bit; use 0, 1, on or off"));
}

QVector<quint32> parseFloat(const QString& text, const RegisterType& type)
{
    bool isNumber = false;
    const float number = text.toFloat(&isNumber);
    if (!isNumber)
        reject(text, QStringLiteral("is not a floating-point number, or is out of its range"));
    if (type.width != RegisterWidth::Word)
        reject(text, QStringLiteral("is a floating-point number, which needs 16-bit registers"));
    return overTwoWords(bitsOf(number));
}

struct NumberText
{
    QString digits;
    int base = 10;
};

NumberText withoutPrefix(const QString& text, ValueFormat format)
{
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        return {text.mid(2), 16};
    if (text.startsWith(QLatin1String("0b"), Qt::CaseInsensitive) && format != ValueFormat::Hex)
        return {text.mid(2), 2};
    if (format == ValueFormat::Hex)
        return {text, 16};
    return {text, format == ValueFormat::Binary ? 2 : 10};
}

qint64 parseInteger(const QString& text, ValueFormat format)
{
    bool isNumber = false;
    const NumberText number = withoutPrefix(text, format);
    const qint64 value = number.digits.toLongLong(&isNumber, number.base);
    if (!isNumber)
        reject(text, QStringLiteral("is not a number; use 123, -5, 0x1F, 0b101 or 1.5"));
    if (value < std::numeric_limits<qint32>::min() || value > std::numeric_limits<quint32>::max())
        reject(text, QStringLiteral("does not fit in 32 bits"));
    return value;
}

bool isFloatText(const QString& text)
{
    const bool isPrefixed = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    return !isPrefixed && (text.contains('.') || text.contains('e', Qt::CaseInsensitive));
}

}  // namespace

const std::map<std::string, ValueFormat>& valueFormats()
{
    static const std::map<std::string, ValueFormat> formats = {
        {"dec", ValueFormat::Unsigned}, {"signed", ValueFormat::Signed},
        {"hex", ValueFormat::Hex},      {"bin", ValueFormat::Binary},
        {"long", ValueFormat::Long},    {"float", ValueFormat::Float},
    };
    return formats;
}

int registersPerValue(const RegisterType& type, ValueFormat format)
{
    const bool isWide = format == ValueFormat::Long || format == ValueFormat::Float;
    return isWide && type.width == RegisterWidth::Word ? 2 : 1;
}

QJsonValue valueOf(const quint32* registers, const RegisterType& type, ValueFormat format)
{
    if (type.isBit())
        return static_cast<int>(registers[0]);
    quint32 value = registers[0];
    if (registersPerValue(type, format) == 2)
        value |= registers[1] << wordBits;
    switch (format) {
    case ValueFormat::Unsigned:
        return static_cast<qint64>(value);
    case ValueFormat::Signed:
        return signedOf(value, type);
    case ValueFormat::Long:
        return static_cast<qint64>(static_cast<qint32>(value));
    case ValueFormat::Float:
        return QString::number(static_cast<double>(floatOf(value)), 'g', 7).toDouble();
    case ValueFormat::Hex:
    case ValueFormat::Binary:
        return valueText(value, type, format);
    }
    return {};
}

QString valueText(quint32 value, const RegisterType& type, ValueFormat format)
{
    const int bits = 8 * type.valueBytes();
    if (format == ValueFormat::Hex && !type.isBit())
        return "0x" + QString::number(value, 16).toUpper().rightJustified(bits / 4, '0');
    if (format == ValueFormat::Binary && !type.isBit())
        return "0b" + QString::number(value, 2).rightJustified(bits, '0');
    return QString::number(format == ValueFormat::Signed ? signedOf(value, type)
                                                         : static_cast<qint64>(value));
}

QVector<quint32> parseValue(const QString& text, const RegisterType& type, ValueFormat format)
{
    if (type.isBit())
        return parseBit(text);
    const bool isPlain = format == ValueFormat::Unsigned || format == ValueFormat::Signed;
    if (format == ValueFormat::Float || (isPlain && isFloatText(text)))
        return parseFloat(text, type);
    const qint64 number = parseInteger(text, format);
    const auto bits = static_cast<quint32>(number);
    if (type.width == RegisterWidth::DoubleWord)
        return {bits};
    const bool fitsWord =
        number >= std::numeric_limits<qint16>::min() && number <= static_cast<qint64>(wordMask);
    return fitsWord && format != ValueFormat::Long ? QVector<quint32>{bits & wordMask}
                                                   : overTwoWords(bits);
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

}  // namespace fxtools
