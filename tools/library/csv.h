// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tables as spreadsheets save them: UTF-8, or UTF-16 with its mark; fields separated by commas,
// semicolons or tabs, and in quotes where they hold one of these. A row is one line; a quote within
// quotes stands twice.

#pragma once

#include <QStringList>
#include <QVector>

namespace fxtools {

struct CsvRow
{
    int line = 0;         // of the file, the first one is 1
    QString text;         // the whole line
    QStringList fields;   // without the blanks round them
    bool isOpen = false;  // a quote of the last field is not closed
};

struct CsvFile
{
    QVector<CsvRow> rows;  // without empty lines and those that start with "#"
    QChar separator = ',';
};

// Throws Failure if the file cannot be read, is no regular file, or is larger than any `kind`, such
// as "file of registers".
CsvFile readCsv(const QString& path, const char* kind);

// A row, with quotes round the fields that need them.
QString csvLine(const QStringList& fields);

}  // namespace fxtools
