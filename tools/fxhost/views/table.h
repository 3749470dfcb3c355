// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Rows of texts lined up in columns, as wide as they need to be; numbers stand to the right.

#pragma once

#include <QStringList>
#include <QVector>

namespace fxtools {

enum class Align
{
    Left,
    Right,
};

class Table
{
public:
    struct Column
    {
        QString title;
        Align align = Align::Left;
    };

    explicit Table(const QVector<Column>& columns) : m_columns(columns) {}

    void add(const QStringList& cells) { m_rows.append(cells); }
    bool isEmpty() const { return m_rows.isEmpty(); }

    // The titles and a line for each row, two blanks in front and between.
    QStringList lines() const;

private:
    QString lineOf(const QStringList& cells, const QVector<int>& widths) const;

    QVector<Column> m_columns;
    QVector<QStringList> m_rows;
};

// Columns on the screen: colour codes take none.
int visibleWidth(const QString& text);

// No wider than that many columns; a text that was cut ends with "…".
QString clipped(const QString& text, int columns);

}  // namespace fxtools
