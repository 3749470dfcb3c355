// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Registers and their values in a CSV file: a line "address,value" for each, as `read --csv` prints
// them. A heading and lines that start with "#" are ignored. Dumps and recipes use this format.

#pragma once

#include "tools/library/addresses.h"

#include <QFile>

namespace fxtools {

// Neighbouring registers with their values.
struct RegisterRun
{
    RegisterRange range;
    QVector<quint32> values;
};

// The registers of a file in its order, neighbours joined up to `mostRegisters`. Throws Failure.
QVector<RegisterRun> readRegisterFile(const QString& path, const RegisterCatalogue& catalogue,
                                      int mostRegisters);

// Throws Failure if there are none or one of them is read-only.
void checkWritable(const QString& path, const QVector<RegisterRun>& runs);

// Throws Failure if the file cannot be written. Changes nothing.
void checkPlace(const QString& path);

// Writes all to the disk, or throws Failure.
void writeWhole(QFileDevice& file, const QByteArray& bytes);

// Writes a whole file. An existing file is replaced only if everything could be written. Throws
// Failure.
void saveRegisterFile(const QString& path, const QVector<RegisterRun>& runs);

// Writes a file line by line, so that an interruption loses nothing. A file to be replaced stays
// unchanged until the first value.
class RegisterFileWriter
{
public:
    enum class Mode
    {
        Replace,
        Append,  // after the last complete line
    };

    RegisterFileWriter(const QString& path, Mode mode);  // throws Failure, as all below
    ~RegisterFileWriter();                               // removes a new file without values
    RegisterFileWriter(const RegisterFileWriter&) = delete;
    RegisterFileWriter& operator=(const RegisterFileWriter&) = delete;

    void add(const QString& address, quint32 value);
    void addComment(const QString& text);  // written before the next value, or at the end
    void finish();

private:
    void begin();

    QFile m_file;
    Mode m_mode;
    bool m_isNew;
    bool m_begun = false;
    QStringList m_comments;
};

}  // namespace fxtools
