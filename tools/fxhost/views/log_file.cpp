// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/log_file.h"

#include "tools/library/csv.h"

#include <QFileInfo>

#include <cmath>

namespace fxtools {

namespace {

// Which period of the local clock a time is in.
qint64 periodOf(const QDateTime& time, qint64 periodMs)
{
    return (time.toMSecsSinceEpoch() + qint64(1000) * time.offsetFromUtc()) / periodMs;
}

QString nameAfterRotation(const QString& name, const QDateTime& lastLine)
{
    const QFileInfo file(name);
    const QString stem = file.path() + '/' + file.completeBaseName() +
                         lastLine.toString(QStringLiteral("-yyyyMMddTHHmmss"));
    const QString ending = file.suffix().isEmpty() ? QString() : '.' + file.suffix();
    QString rotated = stem + ending;
    for (int copy = 2; QFileInfo::exists(rotated); ++copy)
        rotated = stem + '-' + QString::number(copy) + ending;
    return rotated;
}

// "boiler.flow low; boiler.temperature high"
QString alarmsOf(const LogRow& row, const QStringList& names)
{
    QStringList alarms;
    for (int column = 0; column < row.alarms.size(); ++column) {
        if (!row.alarms[column].isEmpty())
            alarms += names[column] + ' ' + row.alarms[column];
    }
    return alarms.join(QStringLiteral("; "));
}

}  // namespace

bool differs(const QJsonValue& value, const QJsonValue& before, double deadband)
{
    if (value.isDouble() && before.isDouble())
        return std::abs(value.toDouble() - before.toDouble()) > deadband;
    return value != before;
}

bool differs(const LogRow& row, const LogRow& before, const QVector<double>& deadbands)
{
    if (row.error != before.error || row.alarms != before.alarms)
        return true;
    for (int column = 0; column < row.values.size(); ++column) {
        if (differs(row.values[column], before.values[column], deadbands.value(column)))
            return true;
    }
    return false;
}

QByteArray LogFormat::heading() const
{
    if (m_output.mode == OutputMode::Json)
        return {};
    const QStringList last = m_hasAlarms ? QStringList{"alarms", "error"} : QStringList("error");
    return csvLine(QStringList("time") + m_names + last).toUtf8() + '\n';
}

QByteArray LogFormat::line(const LogRow& row) const
{
    if (m_output.mode == OutputMode::Json)
        return jsonLine(row);
    QStringList cells = {isoTime(row.time)};
    for (const QJsonValue& value : row.values)
        cells += value.toVariant().toString();
    if (m_hasAlarms)
        cells += alarmsOf(row, m_names);
    return csvLine(cells << row.error).toUtf8() + '\n';
}

QByteArray LogFormat::jsonLine(const LogRow& row) const
{
    QVector<JsonMember> values;
    for (int column = 0; column < m_names.size(); ++column)
        values.append({m_names[column], jsonText(row.values[column])});
    QVector<JsonMember> raws;
    for (int column = 0; column < row.raws.size(); ++column) {
        if (!row.raws[column].isUndefined())
            raws.append({m_names[column], jsonText(row.raws[column])});
    }
    QVector<JsonMember> alarms;
    for (int column = 0; column < row.alarms.size(); ++column) {
        if (!row.alarms[column].isEmpty())
            alarms.append({m_names[column], jsonText(row.alarms[column])});
    }
    QVector<JsonMember> members = {{"time", jsonText(isoTime(row.time))},
                                   {"values", jsonObject(values)}};
    if (!raws.isEmpty())
        members.append({"raw", jsonObject(raws)});
    if (!alarms.isEmpty())
        members.append({"alarms", jsonObject(alarms)});
    if (!row.error.isEmpty())
        members.append({"error", jsonText(row.error)});
    return jsonObject(members + m_output.plc) + '\n';
}

LogFile::LogFile(const Settings& settings, const QByteArray& heading,
                 const RegisterCatalogue& catalogue)
    : m_settings(settings), m_heading(heading), m_catalogue(catalogue)
{
    const QFileInfo file(settings.name);
    if (!file.exists() || !(settings.appends || settings.replaces)) {
        open(OutputFile::Mode::New);
        return;
    }
    open(OutputFile::Mode::Append);
    if (settings.replaces)
        return;  // with the first line
    m_bytes = QFileInfo(settings.name).size();
    if (m_bytes == 0)
        return;
    checkHeading();
    m_lastLine = file.lastModified();
}

void LogFile::open(OutputFile::Mode mode)
{
    m_file.reset();
    m_file = std::make_unique<OutputFile>(m_settings.name, mode, m_catalogue);
}

void LogFile::checkHeading() const
{
    QFile file(m_settings.name);
    if (!file.open(QIODevice::ReadOnly) || file.read(m_heading.size()) != m_heading)
        throw Failure(ExitCode::File, m_settings.name +
                                          ": cannot append to a file with other columns; name "
                                          "another one");
}

void LogFile::write(const QByteArray& line, const QDateTime& now)
{
    prepare(line.size(), now);
    const QByteArray bytes = m_bytes == 0 ? m_heading + line : line;
    m_file->write(bytes);
    m_file->sync();
    m_bytes += bytes.size();
    m_lastLine = now;
    ++m_lines;
}

// Makes place for a line: an old file goes, or gets the name of a complete one.
void LogFile::prepare(qint64 moreBytes, const QDateTime& now)
{
    const QString& name = m_settings.name;
    const bool replaces = m_settings.replaces && m_lines == 0 && QFileInfo(name).isFile();
    if (!replaces && !isDue(moreBytes, now))
        return;
    m_file.reset();
    if (replaces ? !QFile::remove(name) : !QFile::rename(name, nameAfterRotation(name, m_lastLine)))
        throw Failure(ExitCode::File, name + ": could not move the old file away");
    m_bytes = 0;
    open(OutputFile::Mode::New);
}

bool LogFile::isDue(qint64 moreBytes, const QDateTime& now) const
{
    const Rotation& rotation = m_settings.rotation;
    if (m_file->isStandardOutput() || !m_lastLine.isValid())
        return false;
    return (rotation.bytes > 0 && m_bytes + moreBytes > rotation.bytes) ||
           (rotation.periodMs > 0 &&
            periodOf(m_lastLine, rotation.periodMs) != periodOf(now, rotation.periodMs));
}

}  // namespace fxtools
