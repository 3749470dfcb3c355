// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/command.h"
#include "tools/quoted.h"

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

CLI::Validator notEmpty()
{
    return checked([](std::string& text) { return text.empty() ? "the value is empty" : ""; });
}

CLI::Validator within(Range limits)
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

CLI::Validator numberWithin(int least, int most)
{
    return checked([least, most](std::string& text) {
        bool isNumber = false;
        const double number = QString::fromStdString(text).toDouble(&isNumber);
        return isNumber && number >= least && number <= most
                   ? std::string()
                   : isNot(text, QStringLiteral("a number from %1 to %2").arg(least).arg(most));
    });
}

CLI::Validator oneOf(const QStringList& words)
{
    return checked([words](std::string& text) {
        return words.contains(QString::fromStdString(text))
                   ? std::string()
                   : isNot(text, words.join(QStringLiteral(" or ")));
    });
}

CLI::Validator timeWithin(Range limitsMs)
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
