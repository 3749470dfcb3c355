// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The rows of a log. In CSV it is wide: a row for each time, a column for each register, and at the
// end alarms of tags and the reason for empty cells. In JSON each line is an object.
//
// The file of a log. Each line is on the disk before the next one comes, so that a power cut costs
// one at most. A file that has become too large or too old is renamed after its last line and a new
// one begun: plc.csv becomes plc-20260131T130500.csv.

#pragma once

#include "tools/fxhost/views/records.h"
#include "tools/library/output_file.h"

namespace fxtools {

struct LogRow
{
    QDateTime time;
    QVector<QJsonValue> values;     // undefined: not read
    QString error;                  // empty if all were read
    QVector<QJsonValue> raws = {};  // of tags; undefined for others
    QStringList alarms = {};        // "low", "high" or none
};

// Whether a row has other values than the one before it, other alarms or another error. Numbers
// that differ by the deadband of their column or less are the same.
bool differs(const LogRow& row, const LogRow& before, const QVector<double>& deadbands);

// The same for one value.
bool differs(const QJsonValue& value, const QJsonValue& before, double deadband);

class LogFormat
{
public:
    LogFormat(const OutputOptions& output, const QStringList& names, bool hasAlarms = false)
        : m_output(output), m_names(names), m_hasAlarms(hasAlarms)
    {}

    QByteArray heading() const;  // "time,D0,D1,error"; none in JSON
    QByteArray line(const LogRow& row) const;

private:
    QByteArray jsonLine(const LogRow& row) const;

    OutputOptions m_output;
    QStringList m_names;
    bool m_hasAlarms;  // a column for them
};

struct Rotation
{
    qint64 bytes = 0;     // 0: of any size
    qint64 periodMs = 0;  // by the local clock: 1h ends at the full hour, 1d at midnight; 0: never
};

class LogFile
{
public:
    struct Settings
    {
        QString name;
        bool replaces = false;  // an existing file
        bool appends = false;   // to a file with the same heading
        Rotation rotation;
    };

    // Throws Failure, as write() does. Nothing is changed before the first line.
    LogFile(const Settings& settings, const QByteArray& heading,
            const RegisterCatalogue& catalogue);

    void write(const QByteArray& line, const QDateTime& now);
    int lines() const { return m_lines; }

private:
    void open(OutputFile::Mode mode);
    void checkHeading() const;
    void prepare(qint64 moreBytes, const QDateTime& now);
    bool isDue(qint64 moreBytes, const QDateTime& now) const;

    Settings m_settings;
    QByteArray m_heading;
    const RegisterCatalogue& m_catalogue;
    std::unique_ptr<OutputFile> m_file;
    qint64 m_bytes = 0;    // in the file
    QDateTime m_lastLine;  // invalid: none yet
    int m_lines = 0;       // written by this object
};

}  // namespace fxtools
