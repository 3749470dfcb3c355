// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/writes/audit_file.h"

#include <QJsonDocument>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace fxgate {

void AuditFile::open(const QString& path)
{
    m_file.close();
    m_file.setFileName(path);
    m_problem.clear();
    const bool isNew = !m_file.exists();
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        m_problem = m_file.errorString();
    else if (isNew)
        m_file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                              QFileDevice::ReadGroup);
}

void AuditFile::reopenIfMoved()
{
    struct stat named = {};
    struct stat opened = {};
    const bool isSame = m_file.isOpen() &&
                        ::stat(QFile::encodeName(m_file.fileName()).constData(), &named) == 0 &&
                        ::fstat(m_file.handle(), &opened) == 0 && named.st_dev == opened.st_dev &&
                        named.st_ino == opened.st_ino;
    if (!isSame)
        open(m_file.fileName());
}

void AuditFile::append(const QJsonObject& line)
{
    reopenIfMoved();
    if (!m_file.isOpen())
        return;
    // What a full disk cut off does not take the next line with it.
    const QByteArray bytes = (m_problem.isEmpty() ? QByteArray() : QByteArray("\n")) +
                             QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    m_isSynced = false;
    m_problem = m_file.write(bytes) == bytes.size() ? QString() : m_file.errorString();
}

void AuditFile::sync()
{
    if (m_isSynced || !m_file.isOpen())
        return;
    m_isSynced = true;
    // A device cannot be synchronised, and need not be.
    if (::fdatasync(m_file.handle()) != 0 && errno != EINVAL)
        m_problem = QString::fromLocal8Bit(std::strerror(errno));
}

}  // namespace fxgate
