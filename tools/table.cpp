// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/table.h"

#include <QRegularExpression>

#include <algorithm>

namespace fxtools {

namespace {

const QRegularExpression& colourCode()
{
    static const QRegularExpression code(QStringLiteral("\x1b\\[[0-9;]*m"));
    return code;
}

}  // namespace

int visibleWidth(const QString& text)
{
    return QString(text).remove(colourCode()).size();
}

QString clipped(const QString& text, int columns)
{
    if (visibleWidth(text) <= columns)
        return text;
    QString kept;
    int shown = 0;
    int position = 0;
    while (position < text.size()) {
        const QRegularExpressionMatch code =
            colourCode().match(text, position, QRegularExpression::NormalMatch,
                               QRegularExpression::AnchoredMatchOption);
        if (code.hasMatch()) {
            kept += code.captured();  // also after the cut: a colour must end
            position = code.capturedEnd();
            continue;
        }
        if (++shown < columns)
            kept += text[position];
        else if (shown == columns)
            kept += QStringLiteral("…");
        ++position;
    }
    return kept;
}

QStringList wrapped(const QString& text, int columns, int indent)
{
    QStringList lines;
    for (const QString& word : text.split(' ')) {
        const bool fits =
            !lines.isEmpty() && visibleWidth(lines.last()) + 1 + visibleWidth(word) <= columns;
        if (fits)
            lines.last() += ' ' + word;
        else
            lines += QString(lines.isEmpty() ? 0 : indent, ' ') + word;
    }
    return lines;
}

QString counted(qint64 number, const char* noun)
{
    return QStringLiteral("%1 %2%3").arg(number).arg(QLatin1String(noun), number == 1 ? "" : "s");
}

QString Table::lineOf(const QStringList& cells, const QVector<int>& widths) const
{
    QString text;
    for (int column = 0; column < m_columns.size(); ++column) {
        const QString cell = cells.value(column);
        const QString padding(widths[column] - visibleWidth(cell), ' ');
        text += QStringLiteral("  ");
        text += m_columns[column].align == Align::Right ? padding + cell : cell + padding;
    }
    while (text.endsWith(' '))
        text.chop(1);
    return text;
}

QStringList Table::lines() const
{
    QStringList titles;
    QVector<int> widths;
    for (int column = 0; column < m_columns.size(); ++column) {
        titles += m_columns[column].title;
        int width = titles.last().size();
        for (const QStringList& row : m_rows)
            width = std::max(width, visibleWidth(row.value(column)));
        widths += width;
    }
    QStringList lines = {lineOf(titles, widths)};
    for (const QStringList& row : m_rows)
        lines += lineOf(row, widths);
    return lines;
}

}  // namespace fxtools
