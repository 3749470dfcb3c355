// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/register_file.h"

#include "tools/library/values.h"

#include <QFile>

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

}  // namespace

QVector<RegisterRun> readRegisterFile(const QString& path, const RegisterCatalogue& catalogue,
                                      int mostRegisters)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw Failure(ExitCode::File, path + ": " + file.errorString());
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

void RegisterFileWriter::add(const QString& address, quint32 value)
{
    writeAbove();
    m_file.write(QStringLiteral("%1,%2\n").arg(address).arg(value).toUtf8());
}

void RegisterFileWriter::add(const RegisterRun& run)
{
    for (int index = 0; index < run.range.count; ++index)
        add(run.range.nameOf(index), run.values[index]);
}

void RegisterFileWriter::addComment(const QString& text)
{
    m_comments += "# " + text.toUtf8() + '\n';
}

void RegisterFileWriter::finish()
{
    writeAbove();
    m_file.commit();
}

void RegisterFileWriter::writeAbove()
{
    if (m_file.isEmpty())
        m_comments.prepend(titleLine.toUtf8() + '\n');
    if (!m_comments.isEmpty())
        m_file.write(m_comments);
    m_comments.clear();
}

}  // namespace fxtools
