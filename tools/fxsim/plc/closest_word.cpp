// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/plc/closest_word.h"

#include <QVector>

#include <algorithm>
#include <numeric>

namespace fxsim {

namespace {

constexpr int mostEdits = 2;
constexpr int longestWord = 40;

// How many characters must be put in, taken out or changed.
int editsBetween(const QString& from, const QString& to)
{
    QVector<int> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar character : from) {
        int diagonal = row[0]++;
        for (int column = 1; column <= to.size(); ++column) {
            const int changed = diagonal + (character == to[column - 1] ? 0 : 1);
            diagonal = row[column];
            row[column] = std::min({changed, row[column] + 1, row[column - 1] + 1});
        }
    }
    return row.last();
}

}  // namespace

QString didYouMean(const QString& word, const QStringList& known)
{
    QString closest;
    int fewest = mostEdits + 1;
    for (const QString& candidate : known) {
        const int edits = editsBetween(word.left(longestWord), candidate);
        if (edits < fewest && edits < candidate.size() - 1)
            closest = candidate;
        fewest = std::min(fewest, edits);
    }
    return closest.isEmpty() ? QString() : QString(" (did you mean %1?)").arg(closest);
}

}  // namespace fxsim
