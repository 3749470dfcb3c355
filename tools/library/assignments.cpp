// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/assignments.h"

#include "tools/quoted.h"

#include <QRegularExpression>

namespace fxtools {

namespace {

// "3,14" may be two values, or one with a decimal comma.
QString commaHint(const QString& address, const QStringList& values)
{
    static const QRegularExpression digits(QStringLiteral("^-?\\d+$"));
    const bool mayBeDecimal = values.size() == 2 && digits.match(values[0]).hasMatch() &&
                              digits.match(values[1]).hasMatch();
    if (!mayBeDecimal)
        return {};
    return QStringLiteral("; a decimal number has a point: %1=%2 --as float")
        .arg(address, values.join('.'));
}

// How many registers each value takes, of the registers that were named.
int registersEach(const AskedAddress& asked, const QStringList& values, ValueStyle style,
                  const QString& whole)
{
    const int each = registersPerValue(asked.range, style);
    const int named = asked.range.count;
    if (values.size() * each == named)
        return each;
    if (values.size() == 1 && named == 2 && asked.range.type.width == RegisterWidth::Word)
        return 2;
    const QString first = asked.range.nameOf(0);
    reject(whole, QStringLiteral("names %1, but %2 %3; use %4:%3=%5%6")
                      .arg(named == 1 ? "1 register" : QStringLiteral("%1 registers").arg(named),
                           values.size() == 1 ? "1 value takes"
                                              : QStringLiteral("%1 values take").arg(values.size()))
                      .arg(values.size() * each)
                      .arg(first, values.join(','), commaHint(first, values)));
}

QVector<quint32> bitsOfNumber(quint32 number, int bits)
{
    QVector<quint32> values;
    for (int bit = 0; bit < bits; ++bit)
        values.append(number >> bit & 1);
    return values;
}

void parseList(const QString& text, ValueStyle style, const QString& whole, Assignment& assignment)
{
    AskedAddress& asked = assignment.asked;
    const bool isText = style.format == ValueFormat::Text;
    const QStringList values = isText ? QStringList{text} : text.split(',');
    asked.range.together = registersEach(asked, values, style, whole);
    for (const QString& value : values)
        assignment.values +=
            parseValue(isText ? value : value.trimmed(),
                       asked.range.part(assignment.values.size(), asked.range.together), style);
}

}  // namespace

QVector<quint32> Assignment::valuesOver(const QVector<quint32>& before) const
{
    if (!asked.bit)
        return values;
    const quint32 mask = quint32(1) << *asked.bit;
    return {values[0] ? before.value(0) | mask : before.value(0) & ~mask};
}

Assignment assignmentOf(const AddressParts& address, const QString& values,
                        const RegisterCatalogue& catalogue, ValueStyle style)
{
    const QString whole = address.written + '=' + values;
    Assignment assignment{askedAddress(address, catalogue), {}, values};
    AskedAddress& asked = assignment.asked;
    if (!asked.range.type.writable)
        throw Failure(ExitCode::Usage,
                      quoted(whole) + ": " + asked.range.type.name + " registers are read-only");
    if (asked.bit) {
        assignment.values = {parseBit(values.trimmed())};
    } else if (asked.isGroup) {
        const int bits = asked.range.count;
        asked.range.together = bits;
        assignment.values = bitsOfNumber(parseNumber(values.trimmed(), bits, style.format), bits);
    } else {
        widen(asked, style);
        parseList(values, style, whole, assignment);
    }
    return assignment;
}

Assignment parseAssignment(const QString& text, const RegisterCatalogue& catalogue,
                           ValueStyle style)
{
    const int equals = text.indexOf('=');
    if (equals < 1 || equals + 1 == text.size())
        reject(text, QStringLiteral("has no value; use for example D100=5 or M0=on"));
    return assignmentOf(takeApart(text.left(equals)), text.mid(equals + 1), catalogue, style);
}

void requireOwnMemory(const RegisterRange& range, const RegisterCatalogue& catalogue)
{
    if (const std::optional<Alias> alias = catalogue.aliasIn(range))
        throw Failure(ExitCode::Usage, alias->text() + "; to write there anyway use --force");
}

}  // namespace fxtools
