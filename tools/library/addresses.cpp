// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/addresses.h"

#include "tools/quoted.h"

#include <QRegularExpression>

namespace fxtools {

namespace {

constexpr int bitsPerGroupDigit = 4;
constexpr int bitsPerWord = 16;

int wholeNumber(const QString& address, const QString& digits, const char* what)
{
    bool fits = false;
    const int number = digits.toInt(&fits);
    if (!fits || number < 1)
        reject(
            address,
            QStringLiteral("has an invalid %1 %2; use 1 or more").arg(QLatin1String(what), digits));
    return number;
}

// The PLC's manual has other names for the upper ends of three types.
struct OtherName
{
    const char* written;
    int from;
    const char* meant;
};

constexpr OtherName otherNames[] = {{"M", 8000, "SM"}, {"D", 8000, "SD"}, {"CV", 200, "32CV"}};

QString driverName(const QString& type, const QString& number)
{
    for (const OtherName& name : otherNames) {
        if (type == QLatin1String(name.written) && number.toInt() >= name.from)
            return QString::fromLatin1(name.meant);
    }
    return type;
}

QString typeNames(const RegisterCatalogue& catalogue)
{
    QStringList names;
    for (const RegisterType& type : catalogue.all())
        names += type.name;
    return names.join(' ');
}

QString spanText(const RegisterType& type, const QString& name)
{
    return QStringLiteral("%1%2 to %1%3")
        .arg(name, type.numberText(type.lowest), type.numberText(type.highest));
}

// All registers of a type, those with another name included.
QString limitsText(const QString& name, const RegisterCatalogue& catalogue)
{
    QString text = spanText(*catalogue.find(name), name);
    for (const OtherName& other : otherNames) {
        if (name == QLatin1String(other.written))
            text += " or " + spanText(*catalogue.find(other.meant), name);
    }
    return text + (catalogue.find(name)->numberBase == 8 ? ", in octal" : "");
}

bool isDecimalOctal(const RegisterType& type, const QString& digits)
{
    static const QRegularExpression decimal(QStringLiteral("^[0-9]+$"));
    return type.numberBase == 8 && decimal.match(digits).hasMatch();
}

// The number of a register that exists, with `count` of them.
int checkedNumber(const AddressParts& parts, const QString& digits, const RegisterType& type,
                  int count, const RegisterCatalogue& catalogue)
{
    int number = 0;
    const int check = catalogue.library().checkAddrValidity(
        type.name, digits, &number, count, type.isBit() ? fxBitAccess : fxWordAccess);
    // The driver accepts one register more of some types than it has.
    if (check == fxAddressOutOfRange ||
        (check == fxAddressValid && number > type.highest - count + 1))
        reject(parts.written, "is out of range: " + limitsText(parts.type, catalogue));
    if (check == fxNotANumber && isDecimalOctal(type, digits))
        reject(parts.written, QStringLiteral("has an invalid number; %1 is octal: after %1%2 comes "
                                             "%1%3")
                                  .arg(type.name, type.numberText(15), type.numberText(16)));
    if (check == fxNotANumber)
        reject(parts.written, "has an invalid number; use " + limitsText(parts.type, catalogue));
    if (check != fxAddressValid)
        reject(parts.written, QStringLiteral("is not accepted by the driver"));
    return number;
}

int countOf(const AddressParts& parts, const RegisterType& type, int first,
            const RegisterCatalogue& catalogue)
{
    if (parts.groupDigits > 0)
        return bitsPerGroupDigit * parts.groupDigits;
    if (parts.last.isEmpty())
        return parts.count.value_or(1);
    if (!parts.lastType.isEmpty() && parts.lastType != parts.type)
        reject(parts.written, QStringLiteral("has two register types"));
    const int last = checkedNumber(parts, parts.last, type, 1, catalogue);
    if (last < first)
        reject(parts.written, QStringLiteral("ends before it begins"));
    return last - first + 1;
}

int stationOf(const AddressParts& parts, const RegisterCatalogue& catalogue)
{
    const int own = catalogue.ownStation().value_or(parts.station.value_or(1));
    if (parts.station.value_or(own) != own)
        reject(parts.written, QStringLiteral("names another station than %1, the one of this link; "
                                             "each PLC needs a link of its own")
                                  .arg(own));
    return own;
}

// Decimal, or one hexadecimal digit as in the PLC's own notation.
int bitNumber(const AddressParts& parts)
{
    const bool isLetter = parts.bit.size() == 1;
    const int bit = parts.bit.toInt(nullptr, isLetter ? 16 : 10);
    if (bit >= bitsPerWord)
        reject(parts.written, QStringLiteral("has no such bit; a word has the bits 0 to 15"));
    return bit;
}

}  // namespace

QString limitsText(const RegisterType& type)
{
    return spanText(type, type.name) + (type.numberBase == 8 ? ", in octal" : "");
}

QString AskedAddress::nameOf(int index) const
{
    QString name = range.nameOf(index);
    if (bit)
        return QStringLiteral("%1.%2").arg(name).arg(*bit);
    if (!isGroup)
        return name;
    const int typeAt = name.indexOf('#') + 1;
    return name.left(typeAt) + 'K' + QString::number(range.count / bitsPerGroupDigit) +
           name.mid(typeAt);
}

QString AskedAddress::text() const
{
    return bit || isGroup ? nameOf(0) : range.text();
}

AddressParts takeApart(const QString& text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(?:(\\d+)#)?(?:K(\\d+))?(32CV|[A-Z]+)(\\d+)"
                       "(?::(\\d+)|(?:\\.\\.|-)(32CV|[A-Z]+)?(\\d+)|\\.(\\d+|[A-F]))?$"));
    const QRegularExpressionMatch match = pattern.match(text.trimmed().toUpper());
    if (!match.hasMatch())
        reject(text,
               QStringLiteral("is not an address; use for example D100, X17, D100:32 or D0-D9"));
    AddressParts parts;
    parts.written = text.trimmed();
    if (!match.captured(1).isEmpty())
        parts.station = wholeNumber(text, match.captured(1), "station");
    if (!match.captured(2).isEmpty())
        parts.groupDigits = wholeNumber(text, match.captured(2), "group K");
    parts.type = match.captured(3);
    parts.number = match.captured(4);
    if (!match.captured(5).isEmpty())
        parts.count = wholeNumber(text, match.captured(5), "count");
    parts.lastType = match.captured(6);
    parts.last = match.captured(7);
    parts.bit = match.captured(8);
    return parts;
}

AskedAddress askedAddress(const AddressParts& parts, const RegisterCatalogue& catalogue)
{
    const RegisterType* type = catalogue.find(driverName(parts.type, parts.number));
    if (!type || !catalogue.find(parts.type))
        reject(parts.written,
               QStringLiteral("has an unknown register type; use one of ") + typeNames(catalogue));
    AskedAddress asked;
    asked.range = {*type, stationOf(parts, catalogue), 0, 1, {}};
    if (parts.type != type->name)
        asked.range.askedType = parts.type;
    asked.isGroup = parts.groupDigits > 0;
    asked.isCounted = parts.count || !parts.last.isEmpty();
    if (asked.isGroup && (!type->isBit() || asked.isCounted || parts.groupDigits > 8))
        reject(parts.written, QStringLiteral("is not a group of bits; use K1 to K8 and one bit, "
                                             "such as K4M0 for M0 to M15"));
    if (!parts.bit.isEmpty()) {
        if (type->width != RegisterWidth::Word)
            reject(parts.written, QStringLiteral("names a bit, which only 16-bit registers have"));
        asked.bit = bitNumber(parts);
    }
    asked.range.first = checkedNumber(parts, parts.number, *type, 1, catalogue);
    asked.range.count = countOf(parts, *type, asked.range.first, catalogue);
    checkedNumber(parts, parts.number, *type, asked.range.count, catalogue);
    return asked;
}

RegisterRange parseAddress(const QString& text, const RegisterCatalogue& catalogue)
{
    return askedAddress(takeApart(text), catalogue).range;
}

bool isAddress(const QString& text, const RegisterCatalogue& catalogue)
{
    try {
        for (const QString& address : text.split(',')) {
            if (!catalogue.find(takeApart(address).type))
                return false;
        }
        return true;
    } catch (const Failure&) {
        return false;
    }
}

}  // namespace fxtools
