// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/tag_columns.h"

#include "tools/quoted.h"

#include <QLocale>
#include <QRegularExpression>

#include <cmath>

namespace fxtools {

namespace {

constexpr int mostNameCharacters = 64;
// Nothing that separates names, makes them patterns, or means something to a shell.
const QRegularExpression notInNames(QStringLiteral("[\\s\\p{C},;='\"*?\\[\\]#$`()&|<>\\\\!{}~]+"));
constexpr int longestPeriodMs = 86400000;

QString limitText(const std::optional<double>& number)
{
    return number ? numberText(*number) : QString();
}

double number(const QString& text, const FieldReading& reading)
{
    bool isNumber = false;
    const QString point = reading.hasDecimalComma ? QString(text).replace(',', '.') : text;
    const double number = point.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        reject(text, QStringLiteral("is not a number; use for example 0.1"));
    return number;
}

void takeName(Tag& tag, const QString& text, const FieldReading& reading)
{
    const QString mistake = nameMistake(text, reading.catalogue);
    if (!mistake.isEmpty())
        reject(text, mistake);
    tag.name = text;
}

void takeScale(Tag& tag, const QString& text, const FieldReading& reading)
{
    tag.scale = number(text, reading);
    if (tag.scale == 0)
        reject(text, QStringLiteral("makes every value the same; use for example 0.1"));
}

void takeDeadband(Tag& tag, const QString& text, const FieldReading& reading)
{
    tag.deadband = number(text, reading);
    if (*tag.deadband < 0)
        reject(text, QStringLiteral("is below 0"));
}

void takePeriod(Tag& tag, const QString& text, const FieldReading& /*reading*/)
{
    if (!isPeriod(text))
        reject(text, QStringLiteral("is not a time in ms; use 1 to %1").arg(longestPeriodMs));
    tag.periodMs = text.toInt();
}

void takeAccess(Tag& tag, const QString& text, const FieldReading& /*reading*/)
{
    const QString access = text.toLower().remove('/');
    if (access == QLatin1String("ro") || access == QLatin1String("r"))
        tag.access = TagAccess::ReadOnly;
    else if (access == QLatin1String("rw"))
        tag.access = TagAccess::ReadWrite;
    else
        reject(text, QStringLiteral("is not an access; use ro or rw"));
}

QString accessText(const Tag& tag)
{
    switch (tag.access) {
    case TagAccess::NotSaid:
        return {};
    case TagAccess::ReadOnly:
        return QStringLiteral("ro");
    case TagAccess::ReadWrite:
        return QStringLiteral("rw");
    }
    return {};
}

void takeType(Tag& tag, const QString& text, const FieldReading& /*reading*/)
{
    if (text.toLower() == bitTypeText)
        return;
    const QStringList words = text.toLower().split(' ', Qt::SkipEmptyParts);
    const std::optional<ValueFormat> format = formatNamed(words.value(0));
    tag.style = {format.value_or(ValueFormat::Signed), words.value(1) == QLatin1String("swap")};
    const bool isWide =
        format == ValueFormat::Long || format == ValueFormat::ULong || format == ValueFormat::Float;
    if (!format || words.size() > (isWide && tag.style.swap ? 2 : 1))
        reject(text, "is not a type; use " + formatNames() +
                         ", for two words with the high one first for example float swap");
}

template <std::optional<double> Tag::*member>
void takeNumber(Tag& tag, const QString& text, const FieldReading& reading)
{
    tag.*member = number(text, reading);
}

template <std::optional<double> Tag::*member>
QString textOfNumber(const Tag& tag)
{
    return limitText(tag.*member);
}

template <QString Tag::*member>
void takeText(Tag& tag, const QString& text, const FieldReading& /*reading*/)
{
    tag.*member = text;
}

template <QString Tag::*member>
QString textOf(const Tag& tag)
{
    return tag.*member;
}

const std::vector<TagColumn> columns = {
    {"name", false, takeName, textOf<&Tag::name>},
    {"address", false,
     [](Tag& tag, const QString& text, const FieldReading& reading) {
         tag.asked = askedAddress(takeApart(text), reading.catalogue);
     },
     [](const Tag& tag) { return tag.asked.text(); }},
    {"type", false, takeType, [](const Tag& tag) { return typeText(tag.style); }},
    {"scale", true, takeScale,
     [](const Tag& tag) { return tag.scale == 1 ? QString() : numberText(tag.scale); }},
    {"offset", true,
     [](Tag& tag, const QString& text, const FieldReading& reading) {
         tag.offset = number(text, reading);
     },
     [](const Tag& tag) { return tag.offset == 0 ? QString() : numberText(tag.offset); }},
    {"unit", false, takeText<&Tag::unit>, textOf<&Tag::unit>},
    {"deadband", true, takeDeadband, textOfNumber<&Tag::deadband>},
    {"period_ms", false, takePeriod,
     [](const Tag& tag) { return tag.periodMs ? QString::number(*tag.periodMs) : QString(); }},
    {"access", false, takeAccess, accessText},
    {"min", true, takeNumber<&Tag::min>, textOfNumber<&Tag::min>},
    {"max", true, takeNumber<&Tag::max>, textOfNumber<&Tag::max>},
    {"alarm_low", true, takeNumber<&Tag::alarmLow>, textOfNumber<&Tag::alarmLow>},
    {"alarm_high", true, takeNumber<&Tag::alarmHigh>, textOfNumber<&Tag::alarmHigh>},
    {"link", false, takeText<&Tag::link>, textOf<&Tag::link>},
    {"description", false, takeText<&Tag::description>, textOf<&Tag::description>},
};

}  // namespace

const std::vector<TagColumn>& tagColumns()
{
    return columns;
}

QString numberText(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

QString nameMistake(const QString& name, const RegisterCatalogue& catalogue)
{
    if (name.isEmpty() || name.startsWith('-') || name.contains(notInNames))
        return QStringLiteral("is not a name; use letters, digits, dots, - and _");
    if (name.size() > mostNameCharacters)
        return QStringLiteral("is longer than %1 characters").arg(mostNameCharacters);
    return isAddress(name, catalogue) ? QStringLiteral("is an address, so it cannot be a name")
                                      : QString();
}

QString asName(const QString& text)
{
    QString name = text.trimmed();
    name.replace(notInNames, QStringLiteral("_"));
    return (name.startsWith('-') ? '_' + name : name).left(mostNameCharacters);
}

QString typeText(ValueStyle style)
{
    if (style.format == ValueFormat::Signed)
        return {};
    return formatName(style.format) + (style.swap ? " swap" : "");
}

bool isPeriod(const QString& text)
{
    bool isNumber = false;
    const int periodMs = text.toInt(&isNumber);
    return isNumber && periodMs >= 1 && periodMs <= longestPeriodMs;
}

}  // namespace fxtools
