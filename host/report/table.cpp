// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See table.h.

#include "host/report/table.h"

#include <QRegularExpression>

#include <algorithm>

namespace fxhost {

int visibleWidth(const QString& text)
{
    static const QRegularExpression colourCode(QStringLiteral("\x1b\\[[0-9;]*m"));
    return QString(text).remove(colourCode).size();
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

}  // namespace fxhost
