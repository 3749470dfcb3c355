// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/command.h"
#include "tools/quoted.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

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

// How many letters to insert, drop, replace or swap with the next one (Damerau-Levenshtein).
int distance(const QString& from, const QString& to)
{
    QVector<QVector<int>> steps(from.size() + 1, QVector<int>(to.size() + 1));
    std::iota(steps[0].begin(), steps[0].end(), 0);
    for (int i = 1; i <= from.size(); ++i) {
        steps[i][0] = i;
        for (int j = 1; j <= to.size(); ++j) {
            const int replaced = steps[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            steps[i][j] = std::min({replaced, steps[i - 1][j] + 1, steps[i][j - 1] + 1});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
        }
    }
    return steps.last().last();
}

// The beginning of exactly one name, or a third of its letters wrong, of three at least.
QString nearest(const QString& typed, const QStringList& known)
{
    const QStringList begun = known.filter(QRegExp('^' + QRegExp::escape(typed)));
    if (begun.size() == 1)
        return begun.first();
    QString best;
    int leastSteps = typed.size() / 3 + 1;
    for (const QString& name : known) {
        const int steps = distance(typed.toLower(), name);
        if (steps < leastSteps) {
            best = name;
            leastSteps = steps;
        }
    }
    return best;
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

QString didYouMean(const QString& typed, const QStringList& known)
{
    const QString meant = nearest(typed, known);
    return meant.isEmpty() ? QString() : "; did you mean '" + meant + "'?";
}

QString unknownName(const char* kind, const QString& typed, const QStringList& known)
{
    const QString hint = didYouMean(typed, known);
    return QStringLiteral("unknown %1 %2%3")
        .arg(QLatin1String(kind), quoted(typed),
             hint.isEmpty() ? "; known: " + known.join(QStringLiteral(", ")) : hint);
}

}  // namespace fxtools
