// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/tag.h"

#include "tools/quoted.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace fxtools {

namespace {

constexpr int mostExactDecimals = 6;
constexpr int mostDecimals = 12;
constexpr int digitsOfFloat = 7;
constexpr int digitsOfRaw = 12;  // of a quotient: enough for 32 bits and the halves between
constexpr int digitsOfDouble = 17;
constexpr int mostWrittenDigits = 14;  // by people; more digits are those of a quotient

double roundedTo(double number, int digits)
{
    return QString::number(number, 'g', digits).toDouble();
}

int decimalsOf(double number)
{
    const QString text = QString::number(number, 'f', QLocale::FloatingPointShortest);
    return text.contains('.') ? text.size() - text.indexOf('.') - 1 : 0;
}

int bitsOf(const Tag& tag)
{
    const RegisterRange& range = tag.asked.range;
    return tag.asked.isGroup ? range.count : bitsPerByte * range.type.valueBytes() * range.count;
}

ValueSpan rawLimits(const Tag& tag)
{
    const int bits = bitsOf(tag);
    const ValueFormat format = tag.style.format;
    if (format == ValueFormat::Float)
        return {-double(std::numeric_limits<float>::max()), std::numeric_limits<float>::max()};
    if (format == ValueFormat::Bcd)
        return {0, std::pow(10, bits / 4) - 1};
    const bool isSigned = (format == ValueFormat::Signed || format == ValueFormat::Long) &&
                          (bits == 16 || bits == 32);
    const double values = std::exp2(bits);
    return isSigned ? ValueSpan{-values / 2, values / 2 - 1} : ValueSpan{0, values - 1};
}

double largestValue(const Tag& tag)
{
    const ValueSpan span = tag.span();
    return std::max(std::abs(span.lowest), std::abs(span.highest));
}

QString withUnit(const Tag& tag, double value)
{
    const QString number = QString::number(value, 'g', digitsOfRaw);
    return tag.unit.isEmpty() ? number : number + ' ' + tag.unit;
}

[[noreturn]] void rejectValue(const Tag& tag, const QString& value, const QString& reason)
{
    throw Failure(ExitCode::Usage, quoted(tag.name + '=' + value) + ' ' + reason);
}

// The value is what the text says, or what it is rounded to.
void requireWithinLimits(const Tag& tag, const QString& text, double value)
{
    bool isDecimal = false;
    const bool isRounded = text.toDouble(&isDecimal) != value && isDecimal;
    const QString is =
        isRounded ? "becomes " + withUnit(tag, value) + ", which is " : QStringLiteral("is ");
    if (tag.min && value < *tag.min)
        rejectValue(tag, text, is + "below the minimum of " + withUnit(tag, *tag.min));
    if (tag.max && value > *tag.max)
        rejectValue(tag, text, is + "above the maximum of " + withUnit(tag, *tag.max));
}

// Of what the registers of a tag do not hold.
QString mistakeOf(const Tag& tag)
{
    const RegisterRange& range = tag.asked.range;
    if (tag.isOneBit())
        return QStringLiteral("is not a bit; use 0, 1, on or off");
    if (tag.style.format == ValueFormat::Text)
        return QStringLiteral("does not fit: up to %1 characters, each of one byte")
            .arg(range.type.valueBytes() * range.count);
    if (tag.style.format == ValueFormat::Float)
        return QStringLiteral("is not a number; use for example 71.5");
    const ValueSpan limits = rawLimits(tag);
    const bool isNumber = tag.isNumber();
    const auto digits = [&](double raw) {
        return isNumber ? QString::number(raw, 'f', 0)
                        : numberValue(static_cast<quint32>(raw), bitsOf(tag), tag.style.format)
                              .toString();
    };
    return "is not a number from " + digits(limits.lowest) + " to " + digits(limits.highest);
}

double rawFor(const Tag& tag, const QString& text, double value)
{
    double raw = tag.isScaled() ? (value - tag.offset) / tag.scale : value;
    if (tag.isScaled() && tag.style.format != ValueFormat::Float)
        raw = std::round(roundedTo(raw, digitsOfRaw));
    const ValueSpan limits = rawLimits(tag);
    if (raw < limits.lowest || raw > limits.highest) {
        const ValueSpan span = tag.span();
        rejectValue(tag, text,
                    "does not fit: " + withUnit(tag, span.lowest) + " to " +
                        withUnit(tag, span.highest));
    }
    return raw;
}

// The raw value as text; digits such as 0x1F are one already.
QString rawText(const Tag& tag, const QString& text)
{
    bool isDecimal = false;
    const double value = text.toDouble(&isDecimal);
    if (!tag.isNumber() || (!isDecimal && !tag.isScaled()))
        return text;
    if (!isDecimal || !std::isfinite(value))
        throw Failure(ExitCode::Usage,
                      tag.name + ": " + quoted(text) + " is not a number; use " +
                          (text.contains(',') ? "a decimal point" : "for example 71.5"));
    requireWithinLimits(tag, text, value);
    const double raw = rawFor(tag, text, value);
    if (tag.style.format == ValueFormat::Float)
        return QString::number(raw, 'g', digitsOfDouble);
    if (raw != std::floor(raw))
        rejectValue(tag, text, QStringLiteral("is not a whole number"));
    return QString::number(raw, 'f', 0);
}

// What goes round the tag, such as another width, is no advice for it.
Assignment assignmentOfRaw(const Tag& tag, const QString& text, const QString& raw,
                           const RegisterCatalogue& catalogue)
{
    try {
        return assignmentOf(takeApart(tag.asked.text()), raw, catalogue, tag.style);
    } catch (const Failure&) {
        rejectValue(tag, text, mistakeOf(tag));
    }
}

}  // namespace

bool Tag::isOneBit() const
{
    return asked.bit || (asked.range.type.isBit() && !asked.isGroup);
}

bool Tag::isNumber() const
{
    return !isOneBit() && style.format != ValueFormat::Hex && style.format != ValueFormat::Binary &&
           style.format != ValueFormat::Text;
}

// As many as the product has; where that are too many, two more than tell raw values apart.
int Tag::decimals() const
{
    const int exact = std::max(decimalsOf(scale), decimalsOf(offset));
    if (exact <= mostExactDecimals)
        return exact;
    return std::clamp(static_cast<int>(std::ceil(-std::log10(std::abs(scale)))) + 2, 0,
                      mostDecimals);
}

QJsonValue Tag::rawOf(const QVector<quint32>& registers) const
{
    return fxtools::valueOf(registers, asked, style);
}

QJsonValue Tag::valueOf(const QJsonValue& raw) const
{
    if (!isScaled() || !raw.isDouble())
        return raw;
    const double value = raw.toDouble() * scale + offset;
    return style.format == ValueFormat::Float ? roundedTo(value, digitsOfFloat)
                                              : QString::number(value, 'f', decimals()).toDouble();
}

bool Tag::isFinite() const
{
    return std::isfinite(largestValue(*this));
}

ValueSpan Tag::span() const
{
    const ValueSpan raw = rawLimits(*this);
    const auto ends = std::minmax({raw.lowest * scale + offset, raw.highest * scale + offset});
    return {roundedTo(ends.first, digitsOfRaw), roundedTo(ends.second, digitsOfRaw)};
}

// Only floating-point numbers have values between those of whole raw values.
bool Tag::hasWritable() const
{
    const ValueSpan all = span();
    const double low = std::max(min.value_or(all.lowest), all.lowest);
    const double high = std::min(max.value_or(all.highest), all.highest);
    if (low > high || style.format == ValueFormat::Float)
        return low <= high;
    const auto raw = std::minmax({(low - offset) / scale, (high - offset) / scale});
    return std::ceil(roundedTo(raw.first, digitsOfRaw)) <=
           std::floor(roundedTo(raw.second, digitsOfRaw));
}

// The errors of both products and of the decimals together stay below half a raw value.
QString Tag::alarmOf(const QJsonValue& value) const
{
    if (!value.isDouble())
        return {};
    if (alarmLow && value.toDouble() < *alarmLow)
        return QStringLiteral("low");
    return alarmHigh && value.toDouble() > *alarmHigh ? QStringLiteral("high") : QString();
}

bool Tag::isExact() const
{
    if (!isScaled() || style.format == ValueFormat::Float)
        return !isScaled();
    const double arithmetic =
        4 * std::numeric_limits<double>::epsilon() * (largestValue(*this) + std::abs(offset));
    const int decimals = this->decimals();
    const double rounding = decimals == mostDecimals ? std::pow(10, -decimals) : 0;
    return arithmetic + rounding < std::abs(scale) / 4;
}

Assignment assignmentOf(const Tag& tag, const QString& value, const RegisterCatalogue& catalogue)
{
    const QString text = tag.style.format == ValueFormat::Text ? value : value.trimmed();
    if (tag.isReadOnly())
        rejectValue(tag, text, QStringLiteral("is not written: the tag is read-only"));
    const RegisterType& type = tag.asked.range.type;
    if (!type.writable)
        rejectValue(tag, text, "is not written: " + type.name + " registers are read-only");
    Assignment assignment = assignmentOfRaw(tag, text, rawText(tag, text), catalogue);
    const QJsonValue written = tag.valueOf(tag.rawOf(assignment.valuesOver({0})));
    if (tag.isNumber() && written.isDouble())
        requireWithinLimits(tag, text, written.toDouble());
    assignment.written = text;
    return assignment;
}

double shortestDecimal(double number, double tolerance)
{
    if (std::abs(number) <= tolerance)
        return 0;
    for (int digits = 1; digits <= mostWrittenDigits; ++digits) {
        const double shorter = roundedTo(number, digits);
        if (std::abs(shorter - number) <= tolerance)
            return shorter;
    }
    return number;
}

}  // namespace fxtools
