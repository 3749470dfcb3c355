// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/register_file.h"

#include "tools/library/csv.h"
#include "tools/library/values.h"
#include "tools/quoted.h"

#include <QHash>

namespace fxtools {

namespace {

const QString titleLine = QStringLiteral("address,value");

// Where a line has its address and its value.
struct Columns
{
    int address = 0;
    int value = 1;
};

// Nothing for a register that has an error instead of a value.
std::optional<RegisterRun> parseRow(const CsvRow& row, const Columns& columns,
                                    const RegisterCatalogue& catalogue)
{
    const QStringList& fields = row.fields;
    if (fields.size() <= columns.value)
        throw Failure(ExitCode::File, quoted(row.text) + ": expected ADDRESS,VALUE");
    const AskedAddress asked = askedAddress(takeApart(fields[columns.address]), catalogue);
    if (asked.range.count != 1 || asked.bit)
        throw Failure(ExitCode::File, quoted(row.text) + ": expected one register");
    if (fields[columns.value].isEmpty() && !fields.value(columns.value + 1).isEmpty())
        return std::nullopt;
    return RegisterRun{asked.range, parseValue(fields[columns.value], asked.range, {})};
}

// Reads the rows of a file one after the other.
class Reader
{
public:
    Reader(const RegisterCatalogue& catalogue, int mostRegisters)
        : m_catalogue(catalogue), m_mostRegisters(mostRegisters)
    {}

    void read(const CsvRow& row);
    const RegisterFile& file() const { return m_file; }

private:
    bool isTitle(const CsvRow& row);

    const RegisterCatalogue& m_catalogue;
    int m_mostRegisters;
    Columns m_columns;
    QHash<QString, int> m_lineOf;  // by the register's identity
    RegisterFile m_file;
};

bool Reader::isTitle(const CsvRow& row)
{
    const QStringList& titles = row.fields;
    if (row.line != 1 || !titles.contains(QLatin1String("address")))
        return false;
    m_columns.address = titles.indexOf(QStringLiteral("address"));
    m_columns.value = titles.indexOf(QStringLiteral("value"), m_columns.address);
    if (m_columns.value < 0)
        throw Failure(ExitCode::File, QStringLiteral("no column 'value' after 'address'"));
    if (titles.contains(QLatin1String("tag")))
        throw Failure(ExitCode::File,
                      QStringLiteral("values of tags are scaled; read the registers "
                                     "by their addresses"));
    return true;
}

void Reader::read(const CsvRow& row)
{
    if (isTitle(row))
        return;
    const std::optional<RegisterRun> one = parseRow(row, m_columns, m_catalogue);
    if (!one) {
        ++m_file.withoutValue;
        return;
    }
    const int earlier = m_lineOf.value(one->range.identity(0));
    if (earlier > 0)
        throw Failure(
            ExitCode::File,
            QStringLiteral("%1 is already in line %2").arg(one->range.nameOf(0)).arg(earlier));
    m_lineOf.insert(one->range.identity(0), row.line);
    append(m_file.runs, *one, m_mostRegisters);
}

}  // namespace

void append(QVector<RegisterRun>& runs, const RegisterRun& next, int mostRegisters)
{
    if (runs.isEmpty() || runs.last().range.count + next.range.count > mostRegisters ||
        !runs.last().range.isContinuedBy(next.range)) {
        runs.append(next);
        return;
    }
    runs.last().range.count += next.range.count;
    runs.last().values += next.values;
}

RegisterFile readRegisterFile(const QString& path, const RegisterCatalogue& catalogue,
                              int mostRegisters)
{
    Reader reader(catalogue, mostRegisters);
    for (const CsvRow& row : readCsv(path, "file of registers").rows) {
        try {
            reader.read(row);
        } catch (const Failure& failure) {
            throw Failure(
                ExitCode::File,
                QStringLiteral("%1, line %2: %3").arg(path).arg(row.line).arg(failure.text()));
        }
    }
    return reader.file();
}

void requireRegisters(const QString& path, const QVector<RegisterRun>& runs)
{
    if (runs.isEmpty())
        throw Failure(ExitCode::File, path + ": no registers in this file");
}

void checkWritable(const QString& path, const QVector<RegisterRun>& runs)
{
    requireRegisters(path, runs);
    for (const RegisterRun& run : runs) {
        if (!run.range.type.writable) {
            throw Failure(ExitCode::File,
                          path + ": " + run.range.text() + " is read-only; remove it");
        }
    }
}

void RegisterFileWriter::add(const RegisterRun& run)
{
    writeAbove();
    for (int index = 0; index < run.range.count; ++index) {
        const QString value = valueText(run.values[index], run.range.type, ValueFormat::Signed);
        m_file.write((run.range.nameOf(index) + ',' + value + '\n').toUtf8());
    }
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
