// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The file in which each write stands, and what became of it: a JSON object a line, only ever
// appended. A file that was moved away is begun anew.

#pragma once

#include <QFile>
#include <QJsonObject>

namespace fxgate {

class AuditFile
{
public:
    void open(const QString& path);  // another one than before

    void append(const QJsonObject& line);
    void sync();  // a power cut no longer costs what was appended

    // Why the last of these did not succeed; empty: it did.
    QString problem() const { return m_problem; }

private:
    void reopenIfMoved();

    QFile m_file;
    QString m_problem;
    bool m_isSynced = true;
};

}  // namespace fxgate
