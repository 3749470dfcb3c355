// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/words.h"

#include "tools/quoted.h"

#include <QMap>
#include <QRegExp>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace fxtools {

namespace {

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
    static const QMap<QString, double> units = {{"", 1},       {"ms", 1},     {"s", 1e3},
                                                {"min", 60e3}, {"h", 3600e3}, {"d", 86400e3}};
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    const auto unit = units.find(QString(end).trimmed().toLower());
    const double timeMs = unit == units.end() ? HUGE_VAL : number * unit.value();
    if (end == text.c_str() || !(std::abs(timeMs) < 1e12))
        return std::nullopt;
    return std::llround(timeMs);
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
