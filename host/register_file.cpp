// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See register_file.h.

#include "host/register_file.h"

#include "host/values.h"

namespace fxhost {

namespace {

const QString titleLine = QStringLiteral("address,value");

[[noreturn]] void reject(const QFile& file, int line, const QString& reason)
{
    throw FileError(
        QStringLiteral("%1, line %2: %3").arg(file.fileName()).arg(line).arg(reason).toStdString());
}

struct FileRegister
{
    RegisterRange range;
    quint32 value = 0;
};

FileRegister parseLine(const QFile& file, int line, const QString& text,
                       const RegisterCatalogue& catalogue, const DriverLibrary& library)
{
    const QStringList fields = text.split(',');
    if (fields.size() < 2)
        reject(file, line, QStringLiteral("'%1' is not ADDRESS,VALUE").arg(text));
    try {
        FileRegister one;
        one.range = parseAddress(fields[0], catalogue, library);
        const QVector<quint32> values = parseValue(fields[1].trimmed(), one.range.type);
        if (one.range.count != 1 || values.size() != 1)
            reject(file, line, QStringLiteral("'%1' is more than one register").arg(text));
        one.value = values.first();
        return one;
    } catch (const AddressError& error) {
        reject(file, line, QString::fromUtf8(error.what()));
    } catch (const ValueError& error) {
        reject(file, line, QString::fromUtf8(error.what()));
    }
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
                                      const DriverLibrary& library, int mostRegisters)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw FileError((path + ": " + file.errorString()).toStdString());
    QVector<RegisterRun> runs;
    for (int line = 1; !file.atEnd(); ++line) {
        const QString text = QString::fromUtf8(file.readLine()).trimmed();
        const bool isTitle = line == 1 && text.startsWith(titleLine);
        if (!text.isEmpty() && !text.startsWith('#') && !isTitle)
            append(runs, parseLine(file, line, text, catalogue, library), mostRegisters);
    }
    return runs;
}

RegisterFileWriter::RegisterFileWriter(const QString& path, Mode mode) : m_file(path)
{
    const QIODevice::OpenMode how =
        mode == Mode::Append ? QIODevice::Append : QIODevice::WriteOnly | QIODevice::Truncate;
    if (!m_file.open(how | QIODevice::Text))
        throw FileError((path + ": " + m_file.errorString()).toStdString());
    if (m_file.size() == 0)
        put(titleLine);
}

void RegisterFileWriter::add(const QString& address, quint32 value)
{
    put(QStringLiteral("%1,%2").arg(address).arg(value));
}

void RegisterFileWriter::addComment(const QString& text)
{
    put("# " + text);
}

void RegisterFileWriter::put(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    if (m_file.write(bytes) != bytes.size() || !m_file.flush())
        throw FileError((m_file.fileName() + ": " + m_file.errorString()).toStdString());
}

}  // namespace fxhost
