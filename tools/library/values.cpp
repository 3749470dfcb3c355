// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/values.h"

#include "tools/quoted.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace fxtools {

namespace {

constexpr int bitsPerGroup = 8;
constexpr quint32 wordMask = 0xFFFF;
constexpr int wordBits = 16;
constexpr int doubleWordBits = 32;
constexpr int bitsPerDigit = 4;  // of hexadecimal and BCD numbers
constexpr int charactersPerWord = 2;

// In the order of ValueFormat.
constexpr std::array<const char*, 9> names = {"signed", "unsigned", "hex",   "bin", "bcd",
                                              "long",   "ulong",    "float", "text"};
static_assert(names.size() == static_cast<size_t>(ValueFormat::Text) + 1);

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

QVector<quint32> overTwoWords(quint32 bits, bool swap)
{
    const quint32 low = bits & wordMask;
    const quint32 high = bits >> wordBits;
    return swap ? QVector<quint32>{high, low} : QVector<quint32>{low, high};
}

quint32 fromTwoWords(const QVector<quint32>& words, bool swap)
{
    return swap ? words[0] << wordBits | words[1] : words[1] << wordBits | words[0];
}

[[noreturn]] void rejectValue(const QString& text, const QString& reason)
{
    throw Failure(ExitCode::Usage, "value " + quoted(text) + ' ' + reason);
}

QString digitsOf(quint32 number, int bits, int base)
{
    const int digits = base == 2 ? bits : bits / bitsPerDigit;
    return QString::number(number, base).toUpper().rightJustified(digits, '0');
}

QJsonValue bcdValue(quint32 number, int bits)
{
    bool isDecimal = false;
    const qint64 value = QString::number(number, 16).toLongLong(&isDecimal);
    return isDecimal ? QJsonValue(value) : "not BCD: 0x" + digitsOf(number, bits, 16);
}

QJsonValue floatValue(quint32 bits)
{
    const auto number = static_cast<double>(floatOf(bits));
    const QString text = QString::number(number, 'g', 7);
    return std::isfinite(number) ? QJsonValue(text.toDouble()) : text;
}

// Up to the first zero; what cannot be printed shows as a point.
QString characters(const QVector<quint32>& words)
{
    QString text;
    for (const quint32 word : words) {
        for (const quint32 code : {word & 0xFF, word >> 8}) {
            if (code == 0)
                return text;
            const QChar character = QChar::fromLatin1(static_cast<char>(code));
            text += character.isPrint() ? character : QChar('.');
        }
    }
    return text;
}

QVector<quint32> parseText(const QString& text, const RegisterRange& target)
{
    if (target.type.width != RegisterWidth::Word)
        rejectValue(text, QStringLiteral("is a text, which needs 16-bit registers"));
    QByteArray bytes = text.toLatin1();
    if (QString::fromLatin1(bytes) != text)
        rejectValue(text, QStringLiteral("has characters that take more than one byte"));
    const int most = charactersPerWord * target.count;
    if (bytes.size() > most) {
        rejectValue(text, QStringLiteral("has %1 characters, but %2 holds %3; %4")
                              .arg(bytes.size())
                              .arg(target.text())
                              .arg(most)
                              .arg(QStringLiteral("use %1:%2")
                                       .arg(target.nameOf(0))
                                       .arg((bytes.size() + 1) / charactersPerWord)));
    }
    bytes.append(QByteArray(most - bytes.size(), '\0'));
    QVector<quint32> words;
    for (int at = 0; at < most; at += charactersPerWord)
        words.append(static_cast<quint32>(static_cast<uchar>(bytes[at]) |
                                          static_cast<uchar>(bytes[at + 1]) << 8));
    return words;
}

quint32 parseFloat(const QString& text)
{
    bool isNumber = false;
    const float number = text.toFloat(&isNumber);
    if (!isNumber)
        rejectValue(text, QStringLiteral("is not a floating-point number, or is out of its range"));
    return bitsOf(number);
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

// The number that is in the register for a written one of decimal digits.
std::optional<quint32> bcdOf(qint64 value, int bits)
{
    bool isNumber = false;
    const QString digits = QString::number(value);
    const quint32 number = digits.toUInt(&isNumber, 16);
    if (!isNumber || digits.size() > bits / bitsPerDigit)
        return std::nullopt;
    return number;
}

struct Limits
{
    qint64 lowest;
    qint64 highest;
};

// A number without a sign may use all bits; the others may show it as a negative one.
Limits limitsOf(int bits, ValueFormat format)
{
    const bool isSigned = format == ValueFormat::Signed || format == ValueFormat::Long;
    return {isSigned && bits >= wordBits ? -(qint64(1) << (bits - 1)) : 0, (qint64(1) << bits) - 1};
}

bool isFloatText(const QString& text)
{
    bool isNumber = false;
    text.toDouble(&isNumber);
    return isNumber && (text.contains('.') || text.contains('e', Qt::CaseInsensitive));
}

qint64 parseInteger(const QString& text, ValueFormat format)
{
    bool isNumber = false;
    const NumberText number = withoutPrefix(text, format);
    const qint64 value = number.digits.toLongLong(&isNumber, number.base);
    if (!isNumber && isFloatText(text))
        rejectValue(text,
                    QStringLiteral("is not a whole number; for a floating-point number in two "
                                   "words use --as float"));
    if (!isNumber)
        rejectValue(text, QStringLiteral("is not a number; use 123, -5, 0x1F or 0b101"));
    return value;
}

bool isWide(ValueFormat format)
{
    return format == ValueFormat::Long || format == ValueFormat::ULong ||
           format == ValueFormat::Float;
}

// What to write instead of a number that one word cannot hold.
QString widerHint(const QString& text, const RegisterRange& target)
{
    return QStringLiteral("; for 32 bits use %1:2=%2 or %1=%2 --as long")
        .arg(target.nameOf(0), text);
}

}  // namespace

std::optional<ValueFormat> formatNamed(const QString& name)
{
    const auto* const found = std::find(names.begin(), names.end(), name.toLower());
    return found == names.end() ? std::nullopt
                                : std::optional(static_cast<ValueFormat>(found - names.begin()));
}

QString formatName(ValueFormat format)
{
    return QLatin1String(names.at(static_cast<size_t>(format)));
}

QString formatNames()
{
    QStringList all(names.begin(), names.end());
    const QString last = all.takeLast();
    return all.join(QStringLiteral(", ")) + " or " + last;
}

int registersPerValue(const RegisterRange& range, ValueStyle style)
{
    if (range.type.width != RegisterWidth::Word)
        return 1;
    if (style.format == ValueFormat::Text)
        return range.count;
    return isWide(style.format) ? 2 : 1;
}

int registersPerValue(const AskedAddress& asked, ValueStyle style)
{
    if (asked.isGroup)
        return asked.range.count;
    return asked.bit ? 1 : registersPerValue(asked.range, style);
}

void widen(AskedAddress& asked, ValueStyle style)
{
    RegisterRange& range = asked.range;
    if (!asked.isCounted && registersPerValue(asked, style) == 2 &&
        range.first < range.type.highest)
        range.count = 2;
}

QJsonValue valueOf(const QVector<quint32>& registers, const RegisterType& type, ValueStyle style)
{
    if (type.isBit())
        return static_cast<int>(registers[0]);
    if (style.format == ValueFormat::Text && type.width == RegisterWidth::Word)
        return characters(registers);
    if (registers.size() == 2)
        return numberValue(fromTwoWords(registers, style.swap), doubleWordBits, style.format);
    return numberValue(registers[0], bitsPerByte * type.valueBytes(), style.format);
}

QJsonValue valueOf(const QVector<quint32>& registers, const AskedAddress& asked, ValueStyle style)
{
    if (asked.bit)
        return static_cast<int>(registers[0] >> *asked.bit & 1);
    if (!asked.isGroup)
        return valueOf(registers, asked.range.type, style);
    quint32 number = 0;
    for (int bit = 0; bit < registers.size(); ++bit)
        number |= registers[bit] << bit;
    return numberValue(number, registers.size(), style.format);
}

QJsonValue numberValue(quint32 number, int bits, ValueFormat format)
{
    switch (format) {
    case ValueFormat::Signed:
    case ValueFormat::Long:
        if (bits == wordBits)
            return static_cast<qint16>(number);
        return bits == doubleWordBits ? qint64(static_cast<qint32>(number)) : qint64(number);
    case ValueFormat::Unsigned:
    case ValueFormat::ULong:
    case ValueFormat::Text:
        return static_cast<qint64>(number);
    case ValueFormat::Hex:
        return "0x" + digitsOf(number, bits, 16);
    case ValueFormat::Binary:
        return "0b" + digitsOf(number, bits, 2);
    case ValueFormat::Bcd:
        return bcdValue(number, bits);
    case ValueFormat::Float:
        return bits == doubleWordBits ? floatValue(number)
                                      : QJsonValue(static_cast<qint64>(number));
    }
    return {};
}

QString valueText(quint32 value, const RegisterType& type, ValueFormat format)
{
    return valueOf({value}, type, {format}).toVariant().toString();
}

quint32 parseBit(const QString& text)
{
    const QString lower = text.toLower();
    if (lower == QLatin1String("1") || lower == QLatin1String("on"))
        return 1;
    if (lower == QLatin1String("0") || lower == QLatin1String("off"))
        return 0;
    rejectValue(text, QStringLiteral("is not a bit; use 0, 1, on or off"));
}

quint32 parseNumber(const QString& text, int bits, ValueFormat format, const QString& hint)
{
    const qint64 value = parseInteger(text, format);
    if (format == ValueFormat::Bcd) {
        if (const std::optional<quint32> bcd = bcdOf(value, bits))
            return *bcd;
        rejectValue(text, QStringLiteral("does not fit in %1 BCD digits").arg(bits / bitsPerDigit) +
                              hint);
    }
    const Limits limits = limitsOf(bits, format);
    if (value < limits.lowest || value > limits.highest) {
        rejectValue(text, QStringLiteral("does not fit in %1 bits: %2 to %3")
                                  .arg(bits)
                                  .arg(limits.lowest)
                                  .arg(limits.highest) +
                              hint);
    }
    return static_cast<quint32>(value & limits.highest);
}

QVector<quint32> parseValue(const QString& text, const RegisterRange& target, ValueStyle style)
{
    if (target.type.isBit())
        return {parseBit(text)};
    if (style.format == ValueFormat::Text)
        return parseText(text, target);
    const int bits = bitsPerByte * target.type.valueBytes() * target.count;
    if (style.format == ValueFormat::Float && target.count != 2)
        rejectValue(text,
                    QStringLiteral("is a floating-point number, which needs 16-bit registers"));
    const QString hint = bits == wordBits ? widerHint(text, target) : QString();
    const quint32 number = style.format == ValueFormat::Float
                               ? parseFloat(text)
                               : parseNumber(text, bits, style.format, hint);
    return target.count == 2 ? overTwoWords(number, style.swap) : QVector<quint32>{number};
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
