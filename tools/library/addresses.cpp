// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See addresses.h.

#include "tools/library/addresses.h"

#include <QRegularExpression>

#include <limits>

namespace fxtools {

namespace {

// What intf_checkAddrValidity answers.
enum class AddressCheck
{
    Valid = 0,
    WrongWidth = 1,
    OutOfRange = 2,
    UnknownType = 3,
    NoNumber = 4,
};

struct AddressParts
{
    QString whole;
    int station = 1;
    QString typeName;
    QString number;
    int count = 1;
};

[[noreturn]] void reject(const QString& address, const QString& reason)
{
    throw AddressError(("'" + address + "' " + reason).toStdString());
}

int wholeNumber(const QString& address, const QString& digits, const char* what)
{
    bool fits = false;
    const int number = digits.toInt(&fits);
    if (!fits || number < 1)
        reject(address, QStringLiteral("has %1 as %2; that is a number from 1 to %3")
                            .arg(digits, QLatin1String(what))
                            .arg(std::numeric_limits<int>::max()));
    return number;
}

AddressParts takeApart(const QString& text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(?:(\\d+)#)?(32CV|[A-Z]+)(\\d+)(?::(\\d+))?$"));
    const QRegularExpressionMatch match = pattern.match(text.trimmed().toUpper());
    if (!match.hasMatch())
        reject(text, QStringLiteral("is no address; write for example D100, X17, D100:32 or 2#M8"));
    AddressParts parts;
    parts.whole = text.trimmed();
    if (!match.captured(1).isEmpty())
        parts.station = wholeNumber(text, match.captured(1), "station");
    parts.typeName = match.captured(2);
    parts.number = match.captured(3);
    if (!match.captured(4).isEmpty())
        parts.count = wholeNumber(text, match.captured(4), "count");
    return parts;
}

// The names that the PLC's own handbook gives to the upper ends of three types.
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
        if (parts.typeName == QLatin1String(alias.written) && parts.number.toInt() >= alias.from)
            return QString::fromLatin1(alias.meant);
    }
    return parts.typeName;
}

QString typeNames(const RegisterCatalogue& catalogue)
{
    QStringList names;
    for (const RegisterType& type : catalogue.all())
        names += type.name;
    return names.join(' ');
}

void rejectNumber(const AddressParts& parts, const RegisterType& type, AddressCheck check)
{
    switch (check) {
    case AddressCheck::Valid:
        return;
    case AddressCheck::OutOfRange:
        reject(parts.whole, QStringLiteral("is out of range: ") + limitsText(type));
    case AddressCheck::NoNumber:
        reject(parts.whole, QStringLiteral("has a number that does not fit: ") + limitsText(type));
    case AddressCheck::WrongWidth:
    case AddressCheck::UnknownType:
        reject(parts.whole, QStringLiteral("is not accepted by the driver"));
    }
}

}  // namespace

QString limitsText(const RegisterType& type)
{
    const char* const base = type.numberBase == 8 ? "octal" : "decimal";
    return QStringLiteral("%1%2 to %1%3 in %4")
        .arg(type.name, type.numberText(type.lowest), type.numberText(type.highest), base);
}

RegisterRange parseAddress(const QString& text, const RegisterCatalogue& catalogue,
                           const DriverLibrary& library)
{
    const AddressParts parts = takeApart(text);
    const RegisterType* type = catalogue.find(driverName(parts));
    if (!type)
        reject(text,
               QStringLiteral("has no known register type; there are ") + typeNames(catalogue));
    RegisterRange range;
    range.type = *type;
    range.station = parts.station;
    range.count = parts.count;
    const int result = library.checkAddrValidity(type->name, parts.number, &range.first,
                                                 parts.count, type->isBit() ? 0 : 1);
    rejectNumber(parts, *type, static_cast<AddressCheck>(result));
    return range;
}

}  // namespace fxtools
