// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/addresses.h"

#include <QRegularExpression>

#include <limits>

namespace fxtools {

namespace {

[[noreturn]] void reject(const QString& address, const QString& reason)
{
    throw Failure(ExitCode::Usage, "'" + address + "' " + reason);
}

int wholeNumber(const QString& address, const QString& digits, const char* what)
{
    bool fits = false;
    const int number = digits.toInt(&fits);
    if (!fits || number < 1)
        reject(address, QStringLiteral("has the %1 %2; use a number from 1 to %3")
                            .arg(QLatin1String(what), digits)
                            .arg(std::numeric_limits<int>::max()));
    return number;
}

// The PLC's manual has other names for the upper ends of three types.
QString driverName(const AddressParts& parts)
{
    struct Alias
    {
        const char* written;
        int from;
        const char* meant;
    };
    static constexpr Alias aliases[] = {{"M", 8000, "SM"}, {"D", 8000, "SD"}, {"CV", 200, "32CV"}};
    for (const Alias& alias : aliases) {
        if (parts.type == QLatin1String(alias.written) && parts.number.toInt() >= alias.from)
            return QString::fromLatin1(alias.meant);
    }
    return parts.type;
}

QString typeNames(const RegisterCatalogue& catalogue)
{
    QStringList names;
    for (const RegisterType& type : catalogue.all())
        names += type.name;
    return names.join(' ');
}

}  // namespace

QString limitsText(const RegisterType& type)
{
    const char* const base = type.numberBase == 8 ? "octal" : "decimal";
    return QStringLiteral("%1%2 to %1%3 in %4")
        .arg(type.name, type.numberText(type.lowest), type.numberText(type.highest), base);
}

AddressParts takeApart(const QString& text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(?:(\\d+)#)?(32CV|[A-Z]+)(\\d+)(?::(\\d+))?$"));
    const QRegularExpressionMatch match = pattern.match(text.trimmed().toUpper());
    if (!match.hasMatch())
        reject(text,
               QStringLiteral("is not an address; use for example D100, X17, D100:32 or 2#M8"));
    AddressParts parts;
    parts.written = text.trimmed();
    if (!match.captured(1).isEmpty())
        parts.station = wholeNumber(text, match.captured(1), "station");
    parts.type = match.captured(2);
    parts.number = match.captured(3);
    if (!match.captured(4).isEmpty())
        parts.count = wholeNumber(text, match.captured(4), "count");
    return parts;
}

RegisterRange rangeOf(const AddressParts& parts, const RegisterCatalogue& catalogue)
{
    const RegisterType* type = catalogue.find(driverName(parts));
    if (!type)
        reject(parts.written,
               QStringLiteral("has an unknown register type; use one of ") + typeNames(catalogue));
    RegisterRange range{*type, parts.station, 0, parts.count.value_or(1)};
    const int check =
        catalogue.library().checkAddrValidity(type->name, parts.number, &range.first, range.count,
                                              type->isBit() ? fxBitAccess : fxWordAccess);
    if (check == fxAddressOutOfRange)
        reject(parts.written, QStringLiteral("is out of range: ") + limitsText(*type));
    if (check == fxNotANumber)
        reject(parts.written, QStringLiteral("has an invalid number; use ") + limitsText(*type));
    if (check != fxAddressValid)
        reject(parts.written, QStringLiteral("is not accepted by the driver"));
    return range;
}

RegisterRange parseAddress(const QString& text, const RegisterCatalogue& catalogue)
{
    return rangeOf(takeApart(text), catalogue);
}

bool isAddress(const QString& text, const RegisterCatalogue& catalogue)
{
    try {
        return catalogue.find(driverName(takeApart(text))) != nullptr;
    } catch (const Failure&) {
        return false;
    }
}

}  // namespace fxtools
