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

// In every exchange: QString::number() would take memory for each number.
template <typename Number>
void appendNumber(QString& text, Number number, int base = 10)
{
    char digits[longestNumber + 1] = {};
    std::to_chars(digits, digits + longestNumber, number, base);
    text += QLatin1String(digits);
}

}  // namespace

QString getErrorInfo(QByteArray reply)
{
    if (driver.frames.isEmpty())
        return QString();
    const VARIABLE& request = driver.frames.at(0).variable;
    const RegisterType* type = findRegisterType(request.registerType);
    QString text;
    text.reserve(5 * longestNumber);  // enough for any report of a known type
    appendNumber(text, request.stationNo);
    text += QLatin1Char('#');
    text += request.registerType;
    appendNumber(text, static_cast<unsigned int>(request.addressIndex),
                 type == nullptr ? 10 : type->numberBase);
    text += QLatin1Char('(');
    appendNumber(text, request.count);
    text += QLatin1String(")(");
    appendNumber(text, static_cast<int>(reply.size()));
    text += QLatin1Char(')');
    return text;
}
