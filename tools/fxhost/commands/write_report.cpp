// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/write_report.h"

#include "tools/exchange/blocks.h"

namespace fxtools {

namespace {

// Neighbours as one range.
QStringList joined(const QVector<RegisterRange>& ranges)
{
    QVector<RegisterRange> whole;
    for (const RegisterRange& range : ranges) {
        if (!whole.isEmpty() && whole.last().first + whole.last().count == range.first)
            whole.last().count += range.count;
        else
            whole.append(range);
    }
    QStringList texts;
    for (const RegisterRange& range : whole)
        texts += fromToText(range);
    return texts;
}

}  // namespace

QString failureText(const WriteOutcome& outcome)
{
    QStringList parts;
    if (!outcome.acknowledged.isEmpty())
        parts += joined(outcome.acknowledged).join(QStringLiteral(", ")) + " written";
    if (!outcome.uncertain.isEmpty())
        parts += joined(outcome.uncertain).join(QStringLiteral(", ")) + " possibly written";
    if (!parts.isEmpty())
        parts += QStringLiteral("nothing else");
    const QString text = QStringLiteral("%1 of %2 frames written: %3")
                             .arg(outcome.acknowledged.size())
                             .arg(outcome.frames)
                             .arg(verdictText(*outcome.problem));
    return parts.isEmpty() ? text : text + "; " + parts.join(QStringLiteral(", "));
}

}  // namespace fxtools
