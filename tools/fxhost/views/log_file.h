// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The file of a log. Each line is on the disk before the next one comes, so that a power cut costs
// one at most. A file that has become too large or too old is renamed after its last line and a new
// one begun: plc.csv becomes plc-20260131T130500.csv.

#pragma once

#include "tools/library/output_file.h"

#include <QDateTime>

namespace fxtools {

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
