// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Formats the error report. The count shows as the request holds it.

#include "protocol/error_report.h"

#include "address/register_types.h"
#include "driver/mitsubishi_fx1s.h"

#include <charconv>

namespace {

constexpr int longestNumber = 11;  // "-2147483648", or eleven octal digits

// Writes `number` and then `end`; returns where the next character goes.
template <typename Number>
char* putNumber(char* next, Number number, int base, char end)
{
    next = std::to_chars(next, next + longestNumber, number, base).ptr;
    *next = end;
    return next + 1;
}

}  // namespace

QString getErrorInfo(QByteArray reply)
{
    if (driver.frames.isEmpty())
        return QString();
    const VARIABLE& request = driver.frames.at(0).variable;
    const RegisterType* type = findRegisterType(request.registerType);
    const int numberBase = type == nullptr ? 10 : type->numberBase;

    char station[longestNumber + 2];  // "1#"
    *putNumber(station, request.stationNo, 10, '#') = '\0';
    char numbers[3 * (longestNumber + 1) + 3];  // "100(2)(0)"
    char* next =
        putNumber(numbers, static_cast<unsigned int>(request.addressIndex), numberBase, '(');
    next = putNumber(next, request.count, 10, ')');
    *next++ = '(';
    *putNumber(next, static_cast<int>(reply.size()), 10, ')') = '\0';

    QString text;
    text.reserve(static_cast<int>(sizeof station + sizeof numbers) +
                 static_cast<int>(request.registerType.size()));
    text += QLatin1String(station);
    text += request.registerType;
    text += QLatin1String(numbers);
    return text;
}
