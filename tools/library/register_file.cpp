// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/register_file.h"

#include "tools/library/values.h"

#include <QFileInfo>
#include <QSaveFile>

namespace fxtools {

namespace {

const QString titleLine = QStringLiteral("address,value");

QString quoted(const QString& text)
{
    constexpr int longest = 40;
    return text.size() > longest ? text.left(longest) + "…" : text;
}

struct FileRegister
{
    RegisterRange range;
    quint32 value = 0;
};

FileRegister parseLine(const QString& text, const RegisterCatalogue& catalogue)
{
    const QStringList fields = text.split(',');
    if (fields.size() < 2)
        throw Failure(ExitCode::File,
                      QStringLiteral("'%1': expected ADDRESS,VALUE").arg(quoted(text)));
    const RegisterRange range = parseAddress(fields[0], catalogue);
    const QVector<quint32> values = parseValue(fields[1].trimmed(), range.type);
    if (range.count != 1 || values.size() != 1)
        throw Failure(ExitCode::File,
                      QStringLiteral("'%1': expected one register and a value that fits in it")
                          .arg(quoted(text)));
    return {range, values.first()};
}

bool continues(const RegisterRun& run, const RegisterRange& next, int mostRegisters)
{
    return run.range.type.name == next.type.name && run.range.station == next.station &&
           run.range.first + run.range.count == next.first && run.range.count < mostRegisters;
}

void append(QVector<RegisterRun>& runs, const FileRegister& one, int mostRegisters)
{
    if (runs.isEmpty() || !continues(runs.last(), one.range, mostRegisters)) {
        runs.append({one.range, {one.value}});
        return;
    }
    ++runs.last().range.count;
    runs.last().values.append(one.value);
}

[[noreturn]] void fail(const QFileDevice& file)
{
    throw Failure(ExitCode::File, file.fileName() + ": " + file.errorString());
}

void checkOrdinary(const QFileInfo& file)
{
    if (file.exists() && !file.isDir() && !file.isFile())
        throw Failure(ExitCode::File, file.filePath() + ": not a regular file");
}

QByteArray lineOf(const QString& address, quint32 value)
{
    return QStringLiteral("%1,%2\n").arg(address).arg(value).toUtf8();
}

}  // namespace

QVector<RegisterRun> readRegisterFile(const QString& path, const RegisterCatalogue& catalogue,
                                      int mostRegisters)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        fail(file);
    QVector<RegisterRun> runs;
    for (int line = 1; !file.atEnd(); ++line) {
        const QString text = QString::fromUtf8(file.readLine()).trimmed();
        const bool isTitle = line == 1 && text.startsWith(titleLine);
        if (text.isEmpty() || text.startsWith('#') || isTitle)
            continue;
        try {
            append(runs, parseLine(text, catalogue), mostRegisters);
        } catch (const Failure& failure) {
            throw Failure(
                ExitCode::File,
                QStringLiteral("%1, line %2: %3").arg(path).arg(line).arg(failure.text()));
        }
    }
    return runs;
}

void checkWritable(const QString& path, const QVector<RegisterRun>& runs)
{
    if (runs.isEmpty())
        throw Failure(ExitCode::File, path + ": no registers in this file");
    for (const RegisterRun& run : runs) {
        if (!run.range.type.writable) {
            throw Failure(ExitCode::File,
                          path + ": " + run.range.text() + " is read-only; remove it");
        }
    }
}

// Opening to append changes nothing, and shows whether it will be possible.
void checkPlace(const QString& path)
{
    QFile file(path);
    const bool isNew = !file.exists();
    checkOrdinary(QFileInfo(path));
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append))
        fail(file);
    if (isNew)
        file.remove();
}

// After a partial write only a second attempt reports why the rest was not written.
void writeWhole(QFileDevice& file, const QByteArray& bytes)
{
    if (file.write(bytes) != bytes.size() || !(file.flush() || file.flush()))
        fail(file);
}

void saveRegisterFile(const QString& path, const QVector<RegisterRun>& runs)
{
    QByteArray text = titleLine.toUtf8() + '\n';
    for (const RegisterRun& run : runs) {
        for (int index = 0; index < run.range.count; ++index)
            text += lineOf(run.range.nameOf(index), run.values[index]);
    }
    QSaveFile file(path);
    file.setDirectWriteFallback(true);  // where no second file can be made beside it
    if (!file.open(QIODevice::WriteOnly))
        fail(file);
    writeWhole(file, text);
    if (!file.commit())
        fail(file);
}

RegisterFileWriter::RegisterFileWriter(const QString& path, Mode mode)
    : m_file(path), m_mode(mode), m_isNew(!m_file.exists())
{
    checkOrdinary(QFileInfo(path));
    // Opening to append changes nothing yet, and shows whether it will be possible.
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::Append))
        fail(m_file);
    if (mode == Mode::Replace)
        return;
    // Drop an incomplete last line.
    m_file.seek(0);
    if (!m_file.resize(m_file.readAll().lastIndexOf('\n') + 1))
        fail(m_file);
}

RegisterFileWriter::~RegisterFileWriter()
{
    if (m_isNew && !m_begun)
        QFile::remove(m_file.fileName());  // whatever could not be written to it
}

void RegisterFileWriter::add(const QString& address, quint32 value)
{
    begin();
    writeWhole(m_file, lineOf(address, value));
}

void RegisterFileWriter::addComment(const QString& text)
{
    m_comments += "# " + text;
}

void RegisterFileWriter::finish()
{
    if (m_begun)
        begin();
}

void RegisterFileWriter::begin()
{
    if (!m_begun && m_mode == Mode::Replace && !m_file.resize(0))
        fail(m_file);
    if (!m_begun && m_file.size() == 0)
        writeWhole(m_file, titleLine.toUtf8() + '\n');
    m_begun = true;
    for (const QString& comment : m_comments)
        writeWhole(m_file, comment.toUtf8() + '\n');
    m_comments.clear();
}

}  // namespace fxtools
