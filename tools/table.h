// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Rows of texts in columns that are as wide as they need to be; numbers are right-aligned. Below it
// what else lays out text: widths, cutting, singular and plural.

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
        bool onlyInJson = false;
    };

    explicit Table(const QVector<Column>& columns) : m_columns(columns) {}

    void add(const QStringList& cells) { m_rows.append(cells); }

    // The headings and a line for each row, with two blanks before each cell.
    QStringList lines() const;

private:
    QString lineOf(const QStringList& cells, const QVector<int>& widths) const;

    QVector<Column> m_columns;
    QVector<QStringList> m_rows;
};

// Columns on the screen: colour codes take none.
int visibleWidth(const QString& text);

// At most `columns` wide; a text that was cut ends with "…".
QString clipped(const QString& text, int columns);

// The text in lines of at most `columns`, broken at blanks; only a longer word stands out. Lines
// after the first one are indented.
QStringList wrapped(const QString& text, int columns, int indent = 0);

// "1 register", "2 registers".
QString counted(qint64 number, const char* noun);

}  // namespace fxtools
