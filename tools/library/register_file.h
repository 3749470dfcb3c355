// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Registers and their values in a CSV file: a line "address,value" each, as `read --csv` prints
// them; lines that start with "#" and a title line are passed over. Dumps and recipes are kept so.

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

// Throws Failure when there are none, or one of them cannot be written.
void checkWritable(const QString& path, const QVector<RegisterRun>& runs);

// Throws Failure when it is certain that nothing can be written there. Changes nothing.
void checkPlace(const QString& path);

// Writes all to the disk, or throws Failure.
void writeWhole(QFileDevice& file, const QByteArray& bytes);

// Writes such a file at once: one that is there stays as it is unless all was written. Throws
// Failure.
void saveRegisterFile(const QString& path, const QVector<RegisterRun>& runs);

// Writes such a file line by line, so that what was written survives an interruption. A file that
// is to be replaced keeps what it held until there is a first value for it.
class RegisterFileWriter
{
public:
    enum class Mode
    {
        Replace,
        Append,  // behind the last whole line
    };

    RegisterFileWriter(const QString& path, Mode mode);  // throws Failure, as all below
    ~RegisterFileWriter();                               // a new file without a value goes
    RegisterFileWriter(const RegisterFileWriter&) = delete;
    RegisterFileWriter& operator=(const RegisterFileWriter&) = delete;

    void add(const QString& address, quint32 value);
    void addComment(const QString& text);  // goes out with the next value, or at the end
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
