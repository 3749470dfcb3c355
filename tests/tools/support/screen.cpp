// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/support/screen.h"

#include <QRegularExpression>

#include <algorithm>

namespace tool_tests {

Screen::Screen(int columns, int rows)
    : m_decoder(QTextCodec::codecForName("UTF-8")->makeDecoder()), m_columns(columns), m_rows(rows)
{
    while (m_cells.size() < rows)
        m_cells += QString(columns, ' ');
}

void Screen::write(const QByteArray& bytes)
{
    m_pending += m_decoder->toUnicode(bytes);
    while (!m_pending.isEmpty()) {
        const QChar character = m_pending[0];
        if (character == QChar(0x1B)) {
            if (!takeSequence())
                return;
            continue;
        }
        m_pending.remove(0, 1);
        if (character == '\r')
            m_column = 0;
        else if (character == '\n')
            lineFeed();
        else
            print(character);
    }
}

// False when the rest of it has not come yet.
bool Screen::takeSequence()
{
    static const QRegularExpression whole("^\x1b\\[([?0-9;]*)([A-Za-z])");
    const QRegularExpressionMatch match = whole.match(m_pending);
    if (match.hasMatch()) {
        m_pending.remove(0, match.capturedLength());
        obey(match.captured(2)[0], match.captured(1));
        return true;
    }
    static const QRegularExpression begun("^\x1b(\\[[?0-9;]*)?$");
    if (begun.match(m_pending).hasMatch())
        return false;
    m_unknown += m_pending.left(2);
    m_pending.remove(0, 1);
    return true;
}

void Screen::obey(QChar order, const QString& argument)
{
    if (order == 'm') {
        m_isPlain = argument == "0" || argument.isEmpty();
    } else if (order == 'A') {
        m_row = std::max(m_row - std::max(argument.toInt(), 1), 0);
    } else if (order == 'K' && argument.isEmpty()) {
        m_cells[m_row] = m_cells[m_row].left(m_column).leftJustified(m_columns);
    } else if (order == 'J' && argument.isEmpty()) {
        clearFrom(m_row, m_column);
    } else if (order == 'J' && argument == "2") {
        clearFrom(0, 0);
    } else if (order == 'H' && argument.isEmpty()) {
        m_row = m_column = 0;
    } else if (argument == "?25" && (order == 'h' || order == 'l')) {
        m_cursorIsShown = order == 'h';
    } else {
        m_unknown += argument + order;
    }
}

void Screen::clearFrom(int row, int column)
{
    m_cells[row] = m_cells[row].left(column).leftJustified(m_columns);
    for (int below = row + 1; below < m_rows; ++below)
        m_cells[below] = QString(m_columns, ' ');
}

// The cursor waits behind the last column; only what follows goes to the next line.
void Screen::print(QChar character)
{
    if (m_column == m_columns) {
        m_column = 0;
        lineFeed();
    }
    m_cells[m_row][m_column++] = character;
}

void Screen::lineFeed()
{
    if (m_row + 1 < m_rows) {
        ++m_row;
        return;
    }
    m_cells.removeFirst();
    m_cells += QString(m_columns, ' ');
}

void Screen::resize(int columns, int rows)
{
    for (; m_row >= rows; --m_row)
        m_cells.removeFirst();
    while (m_cells.size() > rows)
        m_cells.removeLast();
    while (m_cells.size() < rows)
        m_cells += QString();
    for (QString& cells : m_cells)
        cells = cells.left(columns).leftJustified(columns);
    m_column = std::min(m_column, columns);
    m_columns = columns;
    m_rows = rows;
}

QStringList Screen::lines() const
{
    QStringList lines;
    for (QString cells : m_cells) {
        while (cells.endsWith(' '))
            cells.chop(1);
        lines += cells;
    }
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

}  // namespace tool_tests
