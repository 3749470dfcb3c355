// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a terminal of some size shows of the bytes written to it: as much of one as the programs
// here use. A sequence it does not know is kept, so that a test can say that there was none.

#pragma once

#include <QString>
#include <QStringList>
#include <QTextCodec>

#include <memory>

namespace tool_tests {

class Screen
{
public:
    Screen(int columns, int rows);

    void write(const QByteArray& bytes);
    void resize(int columns, int rows);  // keeps what stands above the cursor, cut at the width

    QStringList lines() const;  // from the top to the last that is not empty, no blanks at the end
    QString text() const { return lines().join('\n'); }
    int cursorColumn() const { return m_column; }
    bool cursorIsShown() const { return m_cursorIsShown; }
    bool isPlain() const { return m_isPlain; }  // no colour or weight is left on
    const QStringList& unknown() const { return m_unknown; }

private:
    bool takeSequence();
    void obey(QChar order, const QString& argument);
    void print(QChar character);
    void lineFeed();
    void clearFrom(int row, int column);

    std::unique_ptr<QTextDecoder> m_decoder;
    QString m_pending;  // not yet interpreted: a sequence may come in two parts
    QStringList m_cells;
    int m_columns;
    int m_rows;
    int m_column = 0;
    int m_row = 0;
    bool m_cursorIsShown = true;
    bool m_isPlain = true;
    QStringList m_unknown;
};

}  // namespace tool_tests
