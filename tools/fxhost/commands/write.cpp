// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost write: writes values and reports what was written. The cache shows a written value at
// once, so success means the PLC's ACK, and with --verify the value that is read back.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/poll_result.h"
#include "tools/fxhost/commands/write_report.h"

namespace fxtools {

namespace {

constexpr int widestWritten = 30;

struct WriteOptions
{
    std::vector<std::string> assignments;  // only values when the address is given by options
    AddressOptions address;
    ValueFormat format = ValueFormat::Unsigned;
    bool verify = false;
};

struct Assignment
{
    RegisterRange range;
    QVector<quint32> values;
    QString written;  // the values as the user wrote them
};

// `whole` is how the user wrote all of it.
Assignment assignmentOf(AddressParts address, const QStringList& values, const QString& whole,
                        const RegisterCatalogue& catalogue, ValueFormat format)
{
    Assignment assignment;
    assignment.written = values.join(',');
    const RegisterType type = rangeOf(address, catalogue).type;
    if (!type.writable)
        throw Failure(ExitCode::Usage,
                      "'" + whole + "': " + type.name + " registers are read-only");
    for (const QString& value : values)
        assignment.values += parseValue(value.trimmed(), type, format);
    const int registers = assignment.values.size();
    if (address.count.value_or(registers) != registers) {
        throw Failure(ExitCode::Usage,
                      QStringLiteral("'%1': the address names %2 registers, the values need %3")
                          .arg(whole)
                          .arg(*address.count)
                          .arg(registers));
    }
    // Checked again, because the values may run past the end of the type.
    address.count = registers;
    address.written =
        QStringLiteral("%1:%2").arg(address.written.section(':', 0, 0)).arg(registers);
    assignment.range = rangeOf(address, catalogue);
    return assignment;
}

// "D100=5", "D100=1,2,3" or "M0=on".
Assignment parseAssignment(const QString& text, const RegisterCatalogue& catalogue,
                           ValueFormat format)
{
    const int equals = text.indexOf('=');
    if (equals < 1 || equals + 1 == text.size())
        throw Failure(ExitCode::Usage,
                      "'" + text + "' has no value; use for example D100=5 or M0=on");
    return assignmentOf(takeApart(text.left(equals)), text.mid(equals + 1).split(','), text,
                        catalogue, format);
}

// Only values: the address is given by options.
Assignment assignmentByLetters(const WriteOptions& options, const RegisterCatalogue& catalogue)
{
    const AddressParts address = addressOfLetters(options.address);
    QStringList values;
    for (const std::string& value : options.assignments) {
        const QString text = QString::fromStdString(value);
        if (text.contains('='))
            throw Failure(ExitCode::Usage, "'" + text + "': with -r give only values");
        values += text.split(',');
    }
    return assignmentOf(address, values, address.written + '=' + values.join(','), catalogue,
                        options.format);
}

QVector<Assignment> assignmentsOf(const WriteOptions& options, const RegisterCatalogue& catalogue)
{
    if (options.address.byLetters())
        return {assignmentByLetters(options, catalogue)};
    QVector<Assignment> assignments;
    for (const std::string& text : options.assignments)
        assignments.append(
            parseAssignment(QString::fromStdString(text), catalogue, options.format));
    return assignments;
}

bool mayGoOn(ReplyVerdict problem)
{
    return problem != ReplyVerdict::LinkLost && problem != ReplyVerdict::Interrupted;
}

class Writer
{
public:
    Writer(Connection& connection, const WriteOptions& options, const OutputOptions& output)
        : m_connection(connection), m_options(options),
          m_forPeople(output.mode == OutputMode::People),
          m_records(output, {{"address"}, {"written"}, {"result"}})
    {}

    // Returns whether to continue with the next assignment.
    bool write(const Assignment& assignment);
    void skip(const Assignment& assignment);
    ExitCode finish();

private:
    bool verify(const Assignment& assignment);
    void report(const Assignment& assignment, const QString& result);
    void fail(ExitCode code);

    Connection& m_connection;
    QString shownText(const QString& written) const;

    const WriteOptions& m_options;
    bool m_forPeople;
    Records m_records;
    int m_good = 0;
    std::optional<ExitCode> m_firstFailure;
};

bool Writer::write(const Assignment& assignment)
{
    const WriteOutcome outcome =
        writeRegisters(m_connection.loop(), assignment.range, assignment.values);
    if (!outcome.isGood()) {
        report(assignment, failureText(outcome));
        fail(exitCodeOf(*outcome.problem));
        return mayGoOn(*outcome.problem);
    }
    if (m_options.verify)
        return verify(assignment);
    ++m_good;
    report(assignment, QStringLiteral("acknowledged"));
    return true;
}

bool Writer::verify(const Assignment& assignment)
{
    const ReplyVerdict verdict = readBack(m_connection.loop(), assignment.range);
    if (verdict != ReplyVerdict::Good) {
        report(assignment, "acknowledged, but could not be read back: " + verdictText(verdict));
        fail(exitCodeOf(verdict));
        return mayGoOn(verdict);
    }
    if (m_connection.session().values(assignment.range) == assignment.values) {
        ++m_good;
        report(assignment, QStringLiteral("verified"));
        return true;
    }
    report(assignment, QStringLiteral("acknowledged, but the PLC holds another value"));
    fail(ExitCode::SomeFailed);
    return true;
}

void Writer::skip(const Assignment& assignment)
{
    report(assignment, QStringLiteral("not written"));
    fail(ExitCode::SomeFailed);
}

void Writer::report(const Assignment& assignment, const QString& result)
{
    m_records.add({assignment.range.text(), shownText(assignment.written), result});
}

QString Writer::shownText(const QString& written) const
{
    return m_forPeople ? clipped(written, widestWritten) : written;
}

void Writer::fail(ExitCode code)
{
    if (!m_firstFailure || code == ExitCode::Interrupted)
        m_firstFailure = code;
}

ExitCode Writer::finish()
{
    m_records.finish();
    if (!m_firstFailure)
        return ExitCode::Good;
    return m_good > 0 && m_firstFailure != ExitCode::Interrupted ? ExitCode::SomeFailed
                                                                 : *m_firstFailure;
}

ExitCode runWrite(const CommonOptions& common, const WriteOptions& options)
{
    demandNamedLink(common);
    Connection connection(common);
    // All of them are checked before the first one is sent.
    const QVector<Assignment> assignments = assignmentsOf(options, connection.catalogue());
    Writer writer(connection, options, common.output);
    bool goOn = true;
    for (const Assignment& assignment : assignments) {
        if (goOn)
            goOn = writer.write(assignment);
        else
            writer.skip(assignment);
    }
    return writer.finish();
}

}  // namespace

void addWriteCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("write", "Write registers");
    const auto options = std::make_shared<WriteOptions>();
    command
        ->add_option("assignment", options->assignments,
                     "ADDRESS=VALUE[,VALUE...]; with -r only values")
        ->type_name("")
        ->required();
    addAddressLetters(*command, options->address);
    addFormatOption(*command, options->format);
    command->add_flag("--verify", options->verify,
                      "Read the values back from the PLC and compare them");
    addExamples(*command, {"fxhost write D100=5 M100=on --verify",
                           "fxhost write D10=-1,0x1F D20=3.14 32CV200=70000",
                           "fxhost write D30=5 --as long", "fxhost write -t D -r 100 1 2 3"});
    command->callback([&action, &common, options] {
        action = [&common, options] { return runWrite(common, *options); };
    });
}

}  // namespace fxtools
