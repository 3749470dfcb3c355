// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Registers and their values in a CSV file: a line "address,value" for each, as `read --csv` prints
// them, or with the columns that the first line names. Fields may be in quotes, and separated by ;
// as spreadsheets do. Lines that start with "#" are ignored. Dumps and recipes use this format.

#pragma once

#include "tools/library/addresses.h"
#include "tools/library/output_file.h"

namespace fxtools {

// Neighbouring registers with their values.
struct RegisterRun
{
    RegisterRange range;
    QVector<quint32> values;
};

// Joins `next` to the last run if it continues that and both have up to `mostRegisters`.
void append(QVector<RegisterRun>& runs, const RegisterRun& next, int mostRegisters);

struct RegisterFile
{
    QVector<RegisterRun> runs;  // in the file's order, neighbours joined
    int withoutValue = 0;       // rows that have an error instead
};

// Joins up to `mostRegisters` neighbours. Throws Failure with the line of a mistake.
RegisterFile readRegisterFile(const QString& path, const RegisterCatalogue& catalogue,
                              int mostRegisters);

// Throws Failure if there are none.
void requireRegisters(const QString& path, const QVector<RegisterRun>& runs);

// Throws Failure if there are none or one of them is read-only.
void checkWritable(const QString& path, const QVector<RegisterRun>& runs);

// Writes registers into a file one by one. A comment is held back until the next value or the end,
// so that a file without values stays empty if it is not finished.
class RegisterFileWriter
{
public:
    explicit RegisterFileWriter(OutputFile& file) : m_file(file) {}

    // All throw Failure if the disk does not take it.
    void add(const RegisterRun& run);
    void addComment(const QString& text);
    void finish();

private:
    void writeAbove();

    OutputFile& m_file;
    QByteArray m_comments;
};

}  // namespace fxtools
