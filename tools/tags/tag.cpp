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

double roundedTo(double number, int digits)
{
    return QString::number(number, 'g', digits).toDouble();
}

int decimalsOf(double number)
{
    const QString text = QString::number(number, 'f', QLocale::FloatingPointShortest);
    return text.contains('.') ? text.size() - text.indexOf('.') - 1 : 0;
}

// As many as the product has; where that are too many, two more than tell raw values apart.
int decimalsOf(const Tag& tag)
{
    const int exact = std::max(decimalsOf(tag.scale), decimalsOf(tag.offset));
    if (exact <= mostExactDecimals)
        return exact;
    return std::clamp(static_cast<int>(std::ceil(-std::log10(std::abs(tag.scale)))) + 2, 0,
                      mostDecimals);
}

struct RawLimits
{
    double lowest;
    double highest;
};

RawLimits rawLimits(const Tag& tag)
{
    const RegisterRange& range = tag.asked.range;
    const int bits =
        tag.asked.isGroup ? range.count : bitsPerByte * range.type.valueBytes() * range.count;
    const ValueFormat format = tag.style.format;
    if (format == ValueFormat::Float)
        return {-double(std::numeric_limits<float>::max()), std::numeric_limits<float>::max()};
    if (format == ValueFormat::Bcd)
        return {0, std::pow(10, bits / 4) - 1};
    const bool isSigned = (format == ValueFormat::Signed || format == ValueFormat::Long) &&
                          (bits == 16 || bits == 32);
    const double values = std::exp2(bits);
    return isSigned ? RawLimits{-values / 2, values / 2 - 1} : RawLimits{0, values - 1};
}

double largestValue(const Tag& tag)
{
    const RawLimits raw = rawLimits(tag);
    return std::max(std::abs(raw.lowest * tag.scale + tag.offset),
                    std::abs(raw.highest * tag.scale + tag.offset));
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

void requireWithinLimits(const Tag& tag, const QString& text, double value)
{
    if (tag.min && value < *tag.min)
        rejectValue(tag, text, "is below the minimum of " + withUnit(tag, *tag.min));
    if (tag.max && value > *tag.max)
        rejectValue(tag, text, "is above the maximum of " + withUnit(tag, *tag.max));
}

double rawFor(const Tag& tag, const QString& text, double value)
{
    double raw = tag.isScaled() ? (value - tag.offset) / tag.scale : value;
    if (tag.isScaled() && tag.style.format != ValueFormat::Float)
        raw = std::round(roundedTo(raw, digitsOfRaw));
    const RawLimits limits = rawLimits(tag);
    if (raw < limits.lowest || raw > limits.highest) {
        const auto ends = std::minmax(
            {limits.lowest * tag.scale + tag.offset, limits.highest * tag.scale + tag.offset});
        rejectValue(tag, text,
                    "does not fit: " + withUnit(tag, ends.first) + " to " +
                        withUnit(tag, ends.second));
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

QJsonValue Tag::rawOf(const QVector<quint32>& registers) const
{
    return fxtools::valueOf(registers, asked, style);
}

QJsonValue Tag::valueOf(const QJsonValue& raw) const
{
    if (!isScaled() || !raw.isDouble())
        return raw;
    const double value = raw.toDouble() * scale + offset;
    return style.format == ValueFormat::Float
               ? roundedTo(value, digitsOfFloat)
               : QString::number(value, 'f', decimalsOf(*this)).toDouble();
}

bool Tag::isFinite() const
{
    return std::isfinite(largestValue(*this));
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
    const int decimals = decimalsOf(*this);
    const double rounding = decimals == mostDecimals ? std::pow(10, -decimals) : 0;
    return arithmetic + rounding < std::abs(scale) / 4;
}

Assignment assignmentOf(const Tag& tag, const QString& value, const RegisterCatalogue& catalogue)
{
    const QString text = tag.style.format == ValueFormat::Text ? value : value.trimmed();
    if (tag.isReadOnly())
        rejectValue(tag, text, QStringLiteral("is not written: the tag is read-only"));
    Assignment assignment =
        assignmentOf(takeApart(tag.asked.text()), rawText(tag, text), catalogue, tag.style);
    const QJsonValue written = tag.valueOf(tag.rawOf(assignment.valuesOver({0})));
    if (tag.isNumber() && written.isDouble())
        requireWithinLimits(tag, text, written.toDouble());
    assignment.written = text;
    return assignment;
}

double shortestDecimal(double number, double tolerance)
{
    for (int digits = 1; digits < digitsOfDouble; ++digits) {
        const double shorter = roundedTo(number, digits);
        if (std::abs(shorter - number) <= tolerance)
            return shorter;
    }
    return number;
}

}  // namespace fxtools
