// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/records.h"

#include "tools/fxhost/views/console.h"
#include "tools/library/csv.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr int wrappedIndent = 4;  // of a row that is wider than the terminal

QString shownText(const QJsonValue& value, OutputMode mode)
{
    if (value.isBool() && mode == OutputMode::People)
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    return value.toVariant().toString();
}

// Without the columns in which no row has a text.
void removeEmpty(QVector<Table::Column>& columns, QVector<QStringList>& rows)
{
    for (int column = columns.size() - 1; column >= 0 && !rows.isEmpty(); --column) {
        if (std::any_of(rows.begin(), rows.end(),
                        [column](const QStringList& row) { return !row.value(column).isEmpty(); }))
            continue;
        columns.removeAt(column);
        for (QStringList& row : rows) {
            if (column < row.size())
                row.removeAt(column);
        }
    }
}

}  // namespace

QString isoTime(const QDateTime& time)
{
    const int minutes = time.offsetFromUtc() / 60;
    return time.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")) +
           QTime(0, 0).addSecs(60 * std::abs(minutes)).toString(minutes < 0 ? "-HH:mm" : "+HH:mm");
}

QJsonValue textOrNothing(const QString& text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Undefined) : QJsonValue(text);
}

QString timestamp()
{
    return isoTime(QDateTime::currentDateTime());
}

Records::Records(const OutputOptions& options, const QVector<Table::Column>& columns, Shown shown)
    : m_options(options), m_columns(columns), m_shown(shown)
{
    for (int column = m_columns.size() - 1; column >= 0 && m_options.mode != OutputMode::Json;
         --column) {
        if (m_columns[column].onlyInJson) {
            m_hidden.append(column);
            m_columns.removeAt(column);
        }
    }
    if (m_options.timestamps)
        m_columns.prepend({QStringLiteral("time")});
    if (m_options.mode != OutputMode::Csv || m_options.quiet)
        return;
    QStringList titles;
    for (const Table::Column& column : m_columns)
        titles += column.title;
    Console().line(csvLine(titles));
}

void Records::add(const QVector<QJsonValue>& values)
{
    QVector<QJsonValue> whole = values;
    for (const int column : m_hidden)
        whole.remove(column, column < whole.size() ? 1 : 0);
    if (m_options.timestamps)
        whole.prepend(timestamp());
    if (m_options.mode == OutputMode::Csv)
        showCsvLine(whole);
    else if (m_shown == Shown::AtOnce)
        showAtOnce(whole);
    else
        m_collected.append(whole);
}

void Records::finish()
{
    if (m_shown == Shown::AtOnce || m_options.mode == OutputMode::Csv)
        return;
    if (m_options.mode == OutputMode::People) {
        showTable();
        return;
    }
    QStringList objects;
    for (const QVector<QJsonValue>& values : m_collected)
        objects += "  " + jsonOf(values);
    Console().line("[\n" + objects.join(QStringLiteral(",\n")) + "\n]");
}

bool Records::hasColumn(const QString& title) const
{
    return std::any_of(m_columns.begin(), m_columns.end(),
                       [&title](const Table::Column& column) { return column.title == title; });
}

QString Records::jsonOf(const QVector<QJsonValue>& values) const
{
    QVector<JsonMember> members;
    for (int column = 0; column < values.size(); ++column) {
        if (!values[column].isUndefined())
            members.append({jsonName(m_columns[column].title), jsonText(values[column])});
    }
    for (const JsonMember& member : m_options.plc) {
        if (!hasColumn(member.first))
            members.append(member);
    }
    return QString::fromUtf8(jsonObject(members));
}

QStringList Records::textsOf(const QVector<QJsonValue>& values) const
{
    QStringList texts;
    for (const QJsonValue& value : values)
        texts += shownText(value, m_options.mode);
    return texts;
}

void Records::showAtOnce(const QVector<QJsonValue>& values)
{
    if (m_options.mode == OutputMode::Json)
        Console().line(jsonOf(values));
    else
        Console().line(textsOf(values).join(QStringLiteral("  ")).trimmed());
}

void Records::showTable() const
{
    QVector<Table::Column> columns = m_columns;
    QVector<QStringList> rows;
    for (const QVector<QJsonValue>& values : m_collected)
        rows.append(textsOf(values));
    removeEmpty(columns, rows);
    Table table(columns);
    for (const QStringList& row : rows)
        table.add(row);
    const QStringList lines = table.lines();
    for (int line = m_options.quiet ? 1 : 0; line < lines.size(); ++line)
        Console().paragraph(lines[line], wrappedIndent);
}

void Records::showCsvLine(const QVector<QJsonValue>& values) const
{
    Console().line(csvLine(textsOf(values)));
}

void showResult(const OutputOptions& options, const QString& words,
                const QVector<QPair<QString, QJsonValue>>& fields)
{
    if (options.mode == OutputMode::People) {
        if (!options.quiet)
            Console().line((options.timestamps ? timestamp() + "  " : QString()) + words);
        return;
    }
    QVector<Table::Column> columns;
    QVector<QJsonValue> values;
    for (const auto& field : fields) {
        columns.append({field.first});
        values.append(field.second);
    }
    Records records(options, columns);
    records.add(values);
    records.finish();
}

Progress progressOf(const OutputOptions& options, const QString& label)
{
    if (options.quiet || options.mode != OutputMode::People)
        return [](int, int) {};
    return [label](int done, int total) { Console().progress(label, done, total); };
}

Progress timedProgressOf(const OutputOptions& options, const QString& label)
{
    const Progress plain = progressOf(options, label + " (frames)");
    QElapsedTimer running;
    running.start();
    return [=](int done, int total) {
        const qint64 leftMs = done > 0 ? running.elapsed() * (total - done) / done : 0;
        if (leftMs < 1000)
            return plain(done, total);
        const QString left = QStringLiteral("%1 (frames, %2 s left)").arg(label).arg(leftMs / 1000);
        progressOf(options, left)(done, total);
    };
}

Progress lateProgressOf(const OutputOptions& options, const QString& label)
{
    if (options.quiet || options.mode != OutputMode::People || !Console().isTerminal())
        return [](int, int) {};
    QElapsedTimer running;
    running.start();
    return [label, running](int done, int total) {
        if (done < total && running.elapsed() >= 1000)
            Console().progress(label, done, total);
    };
}

}  // namespace fxtools
