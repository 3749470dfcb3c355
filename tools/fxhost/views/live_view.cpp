// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/live_view.h"

#include "tools/table.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace fxtools {

namespace {

constexpr int trendColumns = 8;
constexpr int ageColumns = 7;  // "!12 min"
constexpr int indentColumns = 2;
constexpr int keptCycles = 60;
constexpr int shownSinceMs = 1000;  // how long the PLC has been away
const QString gap = QStringLiteral("  ");

// Numbers in a name count as such: D2 comes before D10.
QString sortKey(const QString& name)
{
    QString key;
    QString digits;
    for (const QChar character : name + ' ') {
        if (character.isDigit()) {
            digits += character;
            continue;
        }
        key += (digits.isEmpty() ? digits : digits.rightJustified(6, '0')) + character;
        digits.clear();
    }
    return key;
}

bool isChange(const Reading& before, const Reading& now, double deadband)
{
    if (before.number && now.number)
        return std::abs(*now.number - *before.number) > deadband;
    return now.text != before.text;
}

QString valueText(const Reading& reading)
{
    return reading.text.isEmpty() ? QStringLiteral("-") : reading.text;
}

}  // namespace

QString trendText(const QVector<double>& history, int columns)
{
    static const QString bars = QStringLiteral("▁▂▃▄▅▆▇█");
    const QVector<double> shown = history.mid(std::max(history.size() - columns, 0));
    const auto limits = std::minmax_element(shown.begin(), shown.end());
    if (shown.isEmpty() || *limits.first == *limits.second)
        return {};
    QString text;
    for (const double number : shown) {
        const double part = (number - *limits.first) / (*limits.second - *limits.first);
        text += bars[qRound(part * (bars.size() - 1))];
    }
    return text;
}

QString ageText(qint64 ageMs)
{
    struct Unit
    {
        qint64 sizeMs;
        const char* name;
    };
    constexpr Unit units[] = {{86400000, "d"}, {3600000, "h"}, {60000, "min"}, {1000, "s"}};
    if (ageMs < 0)
        return QStringLiteral("never");
    for (const Unit& unit : units) {
        if (ageMs >= unit.sizeMs)
            return QStringLiteral("%1 %2").arg(ageMs / unit.sizeMs).arg(QLatin1String(unit.name));
    }
    return QStringLiteral("now");
}

void LiveView::update(const QVector<Reading>& readings, qint64 nowMs, double deadband)
{
    m_cells.resize(readings.size());
    for (int index = 0; index < readings.size(); ++index) {
        Cell& cell = m_cells[index];
        const Reading& reading = readings[index];
        cell.isChanged = false;
        if (!reading.problem.isEmpty()) {  // the old value stays
            cell.reading.name = reading.name;
            cell.reading.problem = reading.problem;
            continue;
        }
        cell.isChanged = cell.readMs >= 0 &&
                         isChange(cell.reading, reading, reading.deadband.value_or(deadband));
        cell.reading = reading;
        cell.readMs = nowMs;
        if (cell.isChanged)
            cell.changedMs = nowMs;
        if (reading.number)
            cell.history = cell.history.mid(cell.history.size() >= keptCycles ? 1 : 0)
                           << *reading.number;
        if (reading.number)
            m_valueColumns = std::max(m_valueColumns, reading.text.size());
    }
}

void LiveView::markAllStale(const QString& problem)
{
    for (Cell& cell : m_cells)
        cell.reading.problem = problem;
}

void LiveView::setState(const QString& state, bool isGood, qint64 nowMs)
{
    if (m_isGood || isGood)
        m_badSinceMs = nowMs;
    m_state = state;
    m_isGood = isGood;
}

int LiveView::staleCells() const
{
    return static_cast<int>(std::count_if(m_cells.begin(), m_cells.end(), [](const Cell& cell) {
        return !cell.reading.problem.isEmpty();
    }));
}

LiveView::Wish LiveView::press(const Key& key)
{
    m_message.clear();
    return m_input ? edit(key) : command(key);
}

LiveView::Wish LiveView::command(const Key& key)
{
    if (key.kind != Key::Kind::Character) {
        scroll(key.kind);
        return Wish::Nothing;
    }
    switch (key.character.toLower().unicode()) {
    case 'q':
        return Wish::Quit;
    case ' ':
    case 'p':
        m_isPaused = !m_isPaused;
        break;
    case 's':
        m_order = m_order == Order::AsAsked  ? Order::ByName
                  : m_order == Order::ByName ? Order::LastChanged
                                             : Order::AsAsked;
        m_message = m_order == Order::AsAsked  ? "sorted as asked for"
                    : m_order == Order::ByName ? "sorted by address"
                                               : "sorted: last changed first";
        break;
    case 'w':
        if (m_settings.mayWrite)
            m_input = QString();
        else
            m_message = "to write, name the PLC: watch again with --link";
        break;
    default:
        break;
    }
    return Wish::Nothing;
}

void LiveView::scroll(Key::Kind kind)
{
    if (kind == Key::Kind::Up)
        --m_scrolled;
    else if (kind == Key::Kind::Down)
        ++m_scrolled;
    else if (kind == Key::Kind::PageUp)
        m_scrolled -= m_pageCells;
    else if (kind == Key::Kind::PageDown)
        m_scrolled += m_pageCells;
    else if (kind == Key::Kind::Home)
        m_scrolled = 0;
    else if (kind == Key::Kind::End)
        m_scrolled = m_cells.size();
    m_scrolled = std::clamp(m_scrolled, 0, std::max(m_cells.size() - m_pageCells, 0));
}

// Types an assignment, then asks whether to write it.
LiveView::Wish LiveView::edit(const Key& key)
{
    if (m_isAsking) {
        m_isAsking = false;
        if (key.kind == Key::Kind::Character && key.character.toLower() == 'y')
            return Wish::Write;
        m_message = "not written";
        m_input.reset();
    } else if (key.kind == Key::Kind::Character) {
        *m_input += key.character;
    } else if (key.kind == Key::Kind::Backspace) {
        m_input->chop(1);
    } else if (key.kind == Key::Kind::Enter && !m_input->trimmed().isEmpty()) {
        if (m_settings.mistakeIn)
            m_message = m_settings.mistakeIn(m_input->trimmed());
        m_isAsking = m_message.isEmpty();
        if (!m_isAsking)
            m_input.reset();
    } else {
        m_input.reset();
    }
    return Wish::Nothing;
}

QString LiveView::takeAssignment()
{
    QString assignment = m_input.value_or(QString()).trimmed();
    m_input.reset();
    return assignment;
}

LiveView::Layout LiveView::layoutFor(ScreenSize size) const
{
    Layout layout;
    layout.valueColumns = m_valueColumns;
    layout.middleColumns = m_valueColumns + gap.size() + trendColumns;
    for (const Cell& cell : m_cells) {
        layout.nameColumns = std::max(layout.nameColumns, cell.reading.name.size());
        layout.middleColumns = std::max(layout.middleColumns, cell.reading.text.size());
    }
    const int cellColumns = indentColumns + layout.nameColumns + gap.size() + layout.middleColumns +
                            gap.size() + ageColumns;
    const int free = size.rows - 1 - (m_settings.hasTitles ? 2 : 1);  // the cursor's, state, keys
    layout.rows = std::max(free, 1);
    const int needed = (m_cells.size() + layout.rows - 1) / layout.rows;
    layout.abreast = std::clamp(size.columns / cellColumns, 1, std::max(needed, 1));
    layout.rows = std::min(layout.rows, (m_cells.size() + layout.abreast - 1) / layout.abreast);
    return layout;
}

QVector<int> LiveView::order() const
{
    QVector<int> indexes(m_cells.size());
    std::iota(indexes.begin(), indexes.end(), 0);
    if (m_order == Order::ByName) {
        std::stable_sort(indexes.begin(), indexes.end(), [this](int a, int b) {
            return sortKey(m_cells[a].reading.name) < sortKey(m_cells[b].reading.name);
        });
    } else if (m_order == Order::LastChanged) {
        std::stable_sort(indexes.begin(), indexes.end(), [this](int a, int b) {
            return m_cells[a].changedMs > m_cells[b].changedMs;
        });
    }
    return indexes;
}

QString LiveView::cellText(const Console& console, const Cell& cell, const Layout& layout,
                           qint64 nowMs) const
{
    const Reading& reading = cell.reading;
    const bool isStale = !reading.problem.isEmpty();
    const bool isNumber = reading.number.has_value() || reading.text.isEmpty();
    const QString value =
        isNumber ? valueText(reading).rightJustified(layout.valueColumns) : valueText(reading);
    const QString trend = !isNumber ? QString()
                          : isStale ? reading.problem
                                    : trendText(cell.history, trendColumns);
    const QString middle = isNumber ? value + gap + trend : value;
    const QString padding(std::max(layout.middleColumns - middle.size(), 0), ' ');
    const QString age = (isStale ? "!" : "") + ageText(cell.readMs < 0 ? -1 : nowMs - cell.readMs);
    const QString name = reading.name.leftJustified(layout.nameColumns);
    if (isStale)
        return console.dim(gap + name + gap + middle + padding + gap +
                           age.leftJustified(ageColumns));
    const QString shown = reading.isAlarm  ? console.bad(value)
                          : cell.isChanged ? console.changed(value)
                                           : value;
    return gap + name + gap + shown + middle.mid(value.size()) + padding + gap +
           console.dim(age.leftJustified(ageColumns));
}

QString LiveView::stateLine(const Console& console, qint64 nowMs) const
{
    QString text = m_isPaused ? "paused; " + m_state : m_state;
    const int stale = staleCells();
    if (!m_isGood && nowMs - m_badSinceMs >= shownSinceMs)
        text += ", for " + ageText(nowMs - m_badSinceMs);
    else if (stale > 0)
        text += QStringLiteral("; %1 of %2 not read").arg(stale).arg(m_cells.size());
    return gap + console.bold(m_settings.link) + gap +
           (m_isGood && stale == 0 ? console.good(text) : console.bad(text));
}

QString LiveView::question() const
{
    const QString name = m_input->section('=', 0, 0).trimmed();
    const auto cell = std::find_if(m_cells.begin(), m_cells.end(), [&name](const Cell& one) {
        return one.reading.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    const QString now =
        cell == m_cells.end() ? QString() : QStringLiteral(" (now %1)").arg(cell->reading.text);
    return "write " + m_input->trimmed() + now + "? y/n";
}

// With the name of a value on the screen, which may be a tag.
QString LiveView::example() const
{
    const auto cell = std::find_if(m_cells.begin(), m_cells.end(),
                                   [](const Cell& one) { return one.reading.number.has_value(); });
    return (cell == m_cells.end() ? QStringLiteral("D100") : cell->reading.name) + "=5";
}

QString LiveView::keyLine() const
{
    if (m_input)
        return gap +
               (m_isAsking ? question() : "write, such as " + example() + ": " + *m_input + '_');
    if (!m_message.isEmpty())
        return gap + m_message;
    const QString keys = QStringLiteral("q quit  p pause  s sort  w write");
    const int count = m_cells.size();
    if (count <= m_pageCells)
        return gap + keys;
    return gap +
           QStringLiteral("%1-%2 of %3 ↑↓  ")
               .arg(m_scrolled + 1)
               .arg(std::min(m_scrolled + m_pageCells, count))
               .arg(count) +
           keys;
}

QStringList LiveView::lines(const Console& console, ScreenSize size, qint64 nowMs)
{
    const Layout layout = layoutFor(size);
    m_pageCells = std::max(layout.rows * layout.abreast, 1);
    scroll(Key::Kind::Character);  // only within what is there
    const QVector<int> shown = order().mid(m_scrolled, m_pageCells);
    QStringList lines = {stateLine(console, nowMs)};
    for (int row = 0; row < layout.rows; ++row) {
        QString line;
        for (int index = row; index < shown.size(); index += layout.rows)
            line += cellText(console, m_cells[shown[index]], layout, nowMs);
        lines += line;
    }
    if (m_settings.hasTitles && !m_hasEnded)
        lines += m_input || !m_message.isEmpty() ? keyLine() : console.dim(keyLine());
    return lines;
}

}  // namespace fxtools
