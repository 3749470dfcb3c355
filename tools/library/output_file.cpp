// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/output_file.h"

#include "tools/library/addresses.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace fxtools {

namespace {

const QString standardOutput = QStringLiteral("-");

[[noreturn]] void fail(const QFileDevice& file, const QString& whatNow = {})
{
    const QString name = file.fileName().isEmpty() ? "standard output" : file.fileName();
    throw Failure(ExitCode::File, name + ": " + file.errorString() + whatNow);
}

// Such as a disk that is full; there is no room for the old file and the new one.
[[noreturn]] void failInTheMiddle(const QFileDevice& file)
{
    const bool replacesAnother = qobject_cast<const QSaveFile*>(&file) != nullptr;
    fail(file, replacesAnother ? QStringLiteral("; the old file is unchanged, and what was read is "
                                                "lost: make room or name another file")
                               : QString());
}

// What an interrupted program wrote of its last line is dropped.
void dropIncompleteLine(QFile& file)
{
    qint64 end = file.size();
    char last = 0;
    while (end > 0 && file.seek(end - 1) && file.getChar(&last) && last != '\n')
        --end;
    if (!file.resize(end))
        fail(file);
}

}  // namespace

OutputFile::OutputFile(const QString& name, Mode mode, const RegisterCatalogue& catalogue)
    : m_name(name), m_isNew(name != standardOutput && !QFileInfo::exists(name))
{
    if (isAddress(name, catalogue))
        throw Failure(ExitCode::Usage, "'" + name + "' is an address; name a file first");
    const QFileInfo file(name);
    if (file.exists() && !isStandardOutput() && !file.isDir() && !file.isFile())
        throw Failure(ExitCode::File, name + ": not a regular file");
    if (file.isFile() && mode == Mode::New && !isStandardOutput())
        throw Failure(ExitCode::File, name + " exists; replace it with --force");
    m_file = openedFile(mode);
    m_isEmpty = m_file->size() == 0;
}

std::unique_ptr<QFileDevice> OutputFile::openedFile(Mode mode) const
{
    if (mode == Mode::Replace && !m_isNew && !isStandardOutput()) {
        auto beside = std::make_unique<QSaveFile>(m_name);
        if (!beside->open(QIODevice::WriteOnly))
            fail(*beside);
        return beside;
    }
    auto file = std::make_unique<QFile>(m_name);
    const bool isOpen = isStandardOutput() ? file->open(STDOUT_FILENO, QIODevice::WriteOnly)
                                           : file->open(QIODevice::ReadWrite | QIODevice::Append);
    if (!isOpen)
        fail(*file);
    if (mode == Mode::Append && !isStandardOutput())
        dropIncompleteLine(*file);
    return file;
}

OutputFile::~OutputFile()
{
    if (m_isNew && !m_isCommitted && isEmpty())
        QFile::remove(m_name);
}

bool OutputFile::isStandardOutput() const
{
    return m_name == standardOutput;
}

// After a partial write only a second attempt reports why the rest was not written.
void OutputFile::write(const QByteArray& bytes)
{
    if (m_file->write(bytes) != bytes.size() || !(m_file->flush() || m_file->flush()))
        failInTheMiddle(*m_file);
    m_isEmpty = false;
}

// Standard output may be something that cannot be synchronised.
void OutputFile::sync()
{
    if (fdatasync(m_file->handle()) != 0 && errno != EINVAL && errno != EROFS)
        throw Failure(ExitCode::File, m_name + ": " + QString::fromLocal8Bit(strerror(errno)));
}

void OutputFile::commit()
{
    auto* const beside = qobject_cast<QSaveFile*>(m_file.get());
    if (beside && !beside->commit())
        failInTheMiddle(*beside);
    m_isCommitted = true;
}

bool writeWhole(QFileDevice& file, const QByteArray& bytes)
{
    for (qint64 taken = 0; taken < bytes.size();) {
        const qint64 more = file.write(bytes.constData() + taken, bytes.size() - taken);
        if (more <= 0)
            return false;
        taken += more;
    }
    return true;
}

}  // namespace fxtools
