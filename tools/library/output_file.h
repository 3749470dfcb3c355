// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A file that a command writes. It never costs an older one: an existing file is replaced only if
// the user says so, and only when the new one is complete. `-` is standard output.

#pragma once

#include "tools/library/registers.h"

#include <QFileDevice>

#include <memory>

namespace fxtools {

class OutputFile
{
public:
    enum class Mode
    {
        New,      // written in place; an existing file is an error
        Replace,  // written beside an existing file, which commit() replaces
        Append,   // goes on after the last complete line
    };

    // Throws Failure, also if the name is an address: then the file was forgotten.
    OutputFile(const QString& name, Mode mode, const RegisterCatalogue& catalogue);
    ~OutputFile();  // removes a new file that nothing was written to, or that is discarded
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool isStandardOutput() const;
    bool isEmpty() const { return m_isEmpty; }

    void write(const QByteArray& bytes);  // all of them, to the system; throws Failure
    void sync();                          // a power cut no longer costs them; throws Failure
    void commit();                        // the file is complete; throws Failure
    void discard() { m_isEmpty = true; }  // unless it is: a part of it is of no use

private:
    std::unique_ptr<QFileDevice> openedFile(Mode mode) const;

    QString m_name;
    bool m_isNew;
    bool m_isCommitted = false;
    bool m_isEmpty = true;
    std::unique_ptr<QFileDevice> m_file;
};

// All of it, to a file without a buffer. A disk that fills up takes a part, and says why no more
// only when it is asked again.
bool writeWhole(QFileDevice& file, const QByteArray& bytes);

}  // namespace fxtools
