// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/csv.h"

#include "tools/failure.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

#include <optional>

namespace fxtools {

namespace {

// Tens of thousands of lines; a PLC has fewer than ten thousand registers.
constexpr qint64 mostFileBytes = 4 << 20;

// Spreadsheets separate by ; where the comma is a decimal one.
std::optional<QChar> separatorIn(const QString& line)
{
    static const QRegularExpression inQuotes(QStringLiteral("\"[^\"]*\""));
    const QString bare = QString(line).remove(inQuotes);
    for (const char separator : {';', '\t', ','}) {
        if (bare.contains(separator))
            return separator;
    }
    return std::nullopt;
}

CsvRow rowOf(int number, const QString& line, QChar separator)
{
    CsvRow row{number, line, {QString()}, false};
    for (int at = 0; at < line.size(); ++at) {
        const bool isDoubled = row.isOpen && line.midRef(at, 2) == QLatin1String("\"\"");
        if (isDoubled)
            row.fields.last() += line[at++];
        else if (line[at] == '"')
            row.isOpen = !row.isOpen;
        else if (line[at] == separator && !row.isOpen)
            row.fields.append(QString());
        else
            row.fields.last() += line[at];
    }
    for (QString& field : row.fields)
        field = field.trimmed();
    return row;
}

QString quotedField(const QString& text)
{
    static const QRegularExpression special(QStringLiteral("[,;\t\"\r\n]|^\\s|^#|\\s$"));
    return text.contains(special) ? '"' + QString(text).replace('"', QLatin1String("\"\"")) + '"'
                                  : text;
}

}  // namespace

QString csvLine(const QStringList& fields)
{
    QStringList texts;
    for (const QString& field : fields)
        texts += quotedField(field);
    return texts.join(',');
}

CsvFile readCsv(const QString& path, const char* kind)
{
    QFile file(path);
    const QFileInfo info(path);
    if (info.exists() && !info.isDir() && !info.isFile())
        throw Failure(ExitCode::File, path + ": not a regular file");
    if (file.size() > mostFileBytes) {
        throw Failure(ExitCode::File, QStringLiteral("%1: %2 bytes are too many for a %3")
                                          .arg(path)
                                          .arg(file.size())
                                          .arg(QLatin1String(kind)));
    }
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw Failure(ExitCode::File, path + ": " + file.errorString());
    QTextStream lines(&file);  // without the mark that spreadsheets put in front
    lines.setCodec("UTF-8");
    CsvFile csv;
    std::optional<QChar> separator;
    for (int number = 1; !lines.atEnd(); ++number) {
        const QString line = lines.readLine();
        const QString text = line.trimmed();
        if (text.isEmpty() || text.startsWith('#'))
            continue;
        if (!separator)
            separator = separatorIn(line);
        csv.separator = separator.value_or(',');
        csv.rows.append(rowOf(number, line, csv.separator));
    }
    return csv;
}

}  // namespace fxtools
