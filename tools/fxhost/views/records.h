// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The output of a command as records of named fields: a table for people, JSON or CSV for programs.
// A result is collected and shown at the end; a stream is shown record by record.

#pragma once

#include "tools/exchange/exchange.h"
#include "tools/fxhost/views/json_text.h"
#include "tools/table.h"

#include <QDateTime>

#include <functional>
#include <optional>

namespace fxtools {

enum class OutputMode
{
    People,
    Json,
    Csv,
};

struct OutputOptions
{
    OutputMode mode = OutputMode::People;
    bool timestamps = false;
    bool quiet = false;       // no headings, no summary
    QVector<JsonMember> plc;  // which one answers: behind the columns of every JSON record
};

class Records
{
public:
    enum class Shown
    {
        AtTheEnd,  // one table, or one JSON array
        AtOnce,    // a line for each; in JSON one object on each line
    };

    Records(const OutputOptions& options, const QVector<Table::Column>& columns,
            Shown shown = Shown::AtTheEnd);

    // One value for each column; undefined ones are left out of JSON and empty elsewhere.
    void add(const QVector<QJsonValue>& values);
    void finish();

private:
    bool hasColumn(const QString& title) const;
    QString jsonOf(const QVector<QJsonValue>& values) const;
    void showAtOnce(const QVector<QJsonValue>& values);
    void showTable() const;
    void showCsvLine(const QVector<QJsonValue>& values) const;
    QStringList textsOf(const QVector<QJsonValue>& values) const;

    OutputOptions m_options;
    QVector<Table::Column> m_columns;
    QVector<int> m_hidden;  // columns that are not shown in this mode, the last one first
    Shown m_shown;
    QVector<QVector<QJsonValue>> m_collected;
};

// A text, or what JSON leaves out.
QJsonValue textOrNothing(const QString& text);

// What a command has done, as one record: a line of words for people.
void showResult(const OutputOptions& options, const QString& words,
                const QVector<QPair<QString, QJsonValue>>& fields);

// The time as records carry it: 2026-01-31T13:05:00.123+01:00.
QString isoTime(const QDateTime& time);
QString timestamp();  // now

// The progress bar of a long transfer. Does nothing if the output is for programs or quiet.
Progress progressOf(const OutputOptions& options, const QString& label);

// The same for what is quick as a rule: on a terminal from the second second on, and nothing is
// left of it at the end.
Progress lateProgressOf(const OutputOptions& options, const QString& label);

// The same with the time left, as far as the time so far tells it.
Progress timedProgressOf(const OutputOptions& options, const QString& label);

}  // namespace fxtools
