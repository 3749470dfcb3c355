// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/records.h"

#include "tools/fxhost/views/console.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace fxtools {

namespace {

QString textOf(const QJsonValue& value)
{
    return value.toVariant().toString();
}

void putLine(const QByteArray& line)
{
    Console().line(QString::fromUtf8(line));
}

}  // namespace

QString csvField(const QString& text)
{
    static const QString special = QStringLiteral(",\"\r\n");
    for (const QChar character : text) {
        if (special.contains(character))
            return '"' + QString(text).replace('"', QLatin1String("\"\"")) + '"';
    }
    return text;
}

QString timestamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
}

Records::Records(const OutputOptions& options, const QVector<Table::Column>& columns, Shown shown)
    : m_options(options), m_columns(columns), m_shown(shown)
{
    if (m_options.timestamps)
        m_columns.prepend({QStringLiteral("time")});
    if (m_options.mode != OutputMode::Csv || m_options.quiet)
        return;
    QStringList titles;
    for (const Table::Column& column : m_columns)
        titles += csvField(column.title);
    Console().line(titles.join(','));
}

void Records::add(const QVector<QJsonValue>& values)
{
    QVector<QJsonValue> whole = values;
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
    QJsonArray array;
    for (const QVector<QJsonValue>& values : m_collected)
        array.append(objectOf(values));
    putLine(QJsonDocument(array).toJson().trimmed());
}

QJsonObject Records::objectOf(const QVector<QJsonValue>& values) const
{
    QJsonObject object;
    for (int column = 0; column < m_columns.size(); ++column) {
        if (!values.value(column).isUndefined())
            object.insert(m_columns[column].title, values.value(column));
    }
    return object;
}

QStringList Records::textsOf(const QVector<QJsonValue>& values) const
{
    QStringList texts;
    for (const QJsonValue& value : values)
        texts += textOf(value);
    return texts;
}

void Records::showAtOnce(const QVector<QJsonValue>& values)
{
    if (m_options.mode == OutputMode::Json)
        putLine(QJsonDocument(objectOf(values)).toJson(QJsonDocument::Compact));
    else
        Console().line(textsOf(values).join(QStringLiteral("  ")).trimmed());
}

void Records::showTable() const
{
    Table table(m_columns);
    for (const QVector<QJsonValue>& values : m_collected)
        table.add(textsOf(values));
    const QStringList lines = table.lines();
    for (int line = m_options.quiet ? 1 : 0; line < lines.size(); ++line)
        Console().line(lines[line]);
}

void Records::showCsvLine(const QVector<QJsonValue>& values) const
{
    QStringList fields;
    for (const QString& text : textsOf(values))
        fields += csvField(text);
    Console().line(fields.join(','));
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

}  // namespace fxtools
