// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/wrapped_text.h"

#include <algorithm>

namespace fxview {

QStringList wrapped(const QString& text, int width, const QFontMetrics& metrics)
{
    QStringList lines;
    for (const QString& word : text.split(' ', Qt::SkipEmptyParts)) {
        if (metrics.horizontalAdvance(word) > width)
            return {};
        const QString longer = lines.isEmpty() ? word : lines.last() + ' ' + word;
        if (lines.isEmpty() || metrics.horizontalAdvance(longer) > width)
            lines.append(word);
        else
            lines.last() = longer;
    }
    return lines;
}

int widthOfTwoLines(const QString& text, const QFontMetrics& metrics)
{
    int width = metrics.horizontalAdvance(text);
    for (int space = text.indexOf(' '); space >= 0; space = text.indexOf(' ', space + 1))
        width = std::min(width, std::max(metrics.horizontalAdvance(text.left(space)),
                                         metrics.horizontalAdvance(text.mid(space + 1))));
    return width;
}

QStringList firstThatFits(const QVector<WrappedText>& texts, int width, const QFontMetrics& metrics)
{
    QString last;
    for (const WrappedText& each : texts) {
        if (each.text.isEmpty())
            continue;
        last = each.text;
        QStringList lines = wrapped(last, width, metrics);
        if (!lines.isEmpty() && lines.size() <= each.mostLines)
            return lines;
    }
    return last.isEmpty() ? QStringList()
                          : QStringList(metrics.elidedText(last, Qt::ElideRight, width));
}

}  // namespace fxview
