// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/command.h"
#include "tools/quoted.h"

#include <cmath>
#include <cstdlib>

namespace fxtools {

namespace {

CLI::Validator checked(const std::function<std::string(std::string&)>& check)
{
    return CLI::Validator(check, "");
}

std::string isNot(const std::string& text, const QString& wanted)
{
    return (quoted(QString::fromStdString(text)) + " is not " + wanted).toStdString();
}

}  // namespace

std::optional<qint64> parseTimeMs(const std::string& text)
{
    static const std::map<std::string, double> units = {
        {"", 1}, {"ms", 1}, {"s", 1e3}, {"min", 60e3}, {"h", 3600e3}, {"d", 86400e3}};
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    const auto unit = units.find(CLI::detail::to_lower(CLI::detail::trim_copy(end)));
    const double timeMs = unit == units.end() ? HUGE_VAL : number * unit->second;
    if (end == text.c_str() || !(std::abs(timeMs) < 1e12))
        return std::nullopt;
    return std::llround(timeMs);
}

CLI::Validator within(Limits limits)
{
    return checked([limits](std::string& text) {
        bool isNumber = false;
        const qint64 number = QString::fromStdString(text).toLongLong(&isNumber);
        return isNumber && number >= limits.least && number <= limits.most
                   ? std::string()
                   : isNot(text, QStringLiteral("a whole number from %1 to %2")
                                     .arg(limits.least)
                                     .arg(limits.most));
    });
}

CLI::Validator timeWithin(Limits limitsMs)
{
    return checked([limitsMs](std::string& text) {
        const std::optional<qint64> timeMs = parseTimeMs(text);
        if (!timeMs)
            return isNot(text, QStringLiteral("a time; use 500, 500ms, 1.5s, 10min, 8h or 1d"));
        if (*timeMs < limitsMs.least || *timeMs > limitsMs.most)
            return isNot(text, QStringLiteral("a time from %1 ms to %2 s")
                                   .arg(limitsMs.least)
                                   .arg(limitsMs.most / 1000));
        text = std::to_string(*timeMs);
        return std::string();
    });
}

}  // namespace fxtools
