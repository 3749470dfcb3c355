// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost write: reads the registers, writes them and reads them back.

#include "tools/exchange/checked_write.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/file_comparison.h"
#include "tools/fxhost/commands/poll_result.h"
#include "tools/library/assignments.h"
#include "tools/quoted.h"

#include <QJsonArray>

namespace fxtools {

namespace {

constexpr int widestValues = 24;

struct WriteOptions
{
    std::vector<std::string> assignments;  // only values when the address is given by options
    AddressOptions address;
    ValueStyle style;
    bool verify = true;
    bool force = false;
};

// Only values: the address is given by options.
TagWrite writeByLetters(const WriteOptions& options, const AddressServices& services)
{
    QStringList values;
    for (const std::string& value : options.assignments) {
        values += QString::fromStdString(value);
        if (values.last().contains('='))
            throw Failure(ExitCode::Usage, quoted(values.last()) + ": with -r give only values");
    }
    const Assignment assignment = assignmentOf(addressOfLetters(options.address), values.join(','),
                                               services.catalogue, options.style);
    return {assignment, untagged(assignment.asked, options.style)};
}

QVector<TagWrite> writesOf(const WriteOptions& options, const AddressServices& services)
{
    QVector<TagWrite> writes;
    if (options.address.byLetters()) {
        writes.append(writeByLetters(options, services));
    } else {
        for (const std::string& text : options.assignments)
            writes.append(parseWrite(QString::fromStdString(text), services, options.style));
    }
    for (const TagWrite& write : writes) {
        if (!options.force)
            requireOwnMemory(write.asked.range, services.catalogue);
    }
    return writes;
}

struct Result
{
    QString text;
    ExitCode code = ExitCode::Good;
    bool mayGoOn = true;
};

QVector<Table::Column> columnsFor(bool hasTags)
{
    const Table::Column type = {"type", Align::Left, true};
    if (!hasTags)
        return {{"address"}, type, {"old"}, {"new"}, {"result"}};
    return {{"tag"}, {"address"}, type, {"old"}, {"new"}, {"unit"}, {"result"}};
}

class Writer
{
public:
    Writer(Connection& connection, const WriteOptions& options, const OutputOptions& output,
           bool hasTags)
        : m_connection(connection), m_options(options), m_mode(output.mode), m_hasTags(hasTags),
          m_records(output, columnsFor(hasTags))
    {}

    // Returns whether to continue with the next assignment.
    bool write(const TagWrite& assignment);
    void skip(const TagWrite& assignment);
    ExitCode finish();

private:
    Result resultOf(const TagWrite& assignment, const CheckedWrite& write) const;
    Result verified(const TagWrite& assignment, const CheckedWrite& write) const;
    QJsonArray valuesOf(const TagWrite& assignment, const QVector<quint32>& registers) const;
    QString valuesText(const TagWrite& assignment, const QVector<quint32>& registers) const;
    QJsonValue shown(const TagWrite& assignment, const QVector<quint32>& registers,
                     const QString& text) const;
    void report(const TagWrite& assignment, const QVector<quint32>& before, const Result& result);

    Connection& m_connection;
    const WriteOptions& m_options;
    OutputMode m_mode;
    bool m_hasTags;
    Records m_records;
    int m_good = 0;
    std::optional<ExitCode> m_firstFailure;
};

bool Writer::write(const TagWrite& assignment)
{
    const CheckedWrite write =
        writeAndReadBack(m_connection.loop(), assignment,
                         m_options.verify ? Check::BeforeAndAfter : Check::OnlyAsNeeded);
    const Result result = resultOf(assignment, write);
    report(assignment, write.before, result);
    return result.mayGoOn;
}

Result Writer::resultOf(const TagWrite& assignment, const CheckedWrite& write) const
{
    if (!write.outcome)
        return {"not written, because it could not be read before: " + verdictText(*write.problem),
                exitCodeOf(*write.problem), mayGoOn(*write.problem)};
    if (write.problem || !write.after.isEmpty())
        return verified(assignment, write);
    if (write.outcome->isGood())
        return {QStringLiteral("acknowledged")};
    return {failureText(*write.outcome), exitCodeOf(*write.outcome->problem),
            mayGoOn(*write.outcome->problem)};
}

// What was written, as the PLC holds it now: that also settles what an unanswered write did.
Result Writer::verified(const TagWrite& assignment, const CheckedWrite& write) const
{
    const RegisterRange& range = assignment.asked.range;
    const WriteOutcome& outcome = *write.outcome;
    const QString written = outcome.isGood() ? "acknowledged, but " : failureText(outcome) + "; ";
    if (write.problem) {
        return {written + "could not be read back: " + verdictText(*write.problem),
                exitCodeOf(outcome.problem.value_or(*write.problem)), mayGoOn(*write.problem)};
    }
    if (write.isThere())
        return {outcome.isGood()
                    ? QStringLiteral("verified")
                    : "verified, although not acknowledged: " + verdictText(*outcome.problem)};
    const ExitCode code = outcome.isGood() ? ExitCode::SomeFailed : exitCodeOf(*outcome.problem);
    const bool isOne = range.count == assignment.asked.range.together;
    const QString elsewhere = range.readElsewhereText();
    return {written + "the PLC holds " +
                (isOne ? valuesText(assignment, write.after)
                       : differencesText(range, write.wanted, write.after)) +
                (elsewhere.isEmpty() ? QString() : "; " + elsewhere),
            code};
}

QJsonArray Writer::valuesOf(const TagWrite& assignment, const QVector<quint32>& registers) const
{
    QJsonArray values;
    for (int index = 0; index < registers.size(); index += assignment.asked.range.together)
        values.append(assignment.tag.valueOf(
            assignment.tag.rawOf(registers.mid(index, assignment.asked.range.together))));
    return values;
}

QString Writer::valuesText(const TagWrite& assignment, const QVector<quint32>& registers) const
{
    QStringList texts;
    for (const QVariant& value : valuesOf(assignment, registers).toVariantList())
        texts += value.toString();
    return texts.join(',');
}

// For programs as `read` has it: a value, or an array of them.
QJsonValue Writer::shown(const TagWrite& assignment, const QVector<quint32>& registers,
                         const QString& text) const
{
    if (m_mode != OutputMode::Json)
        return m_mode == OutputMode::People ? clipped(text, widestValues) : text;
    const QJsonArray values = valuesOf(assignment, registers);
    return values.size() == 1 ? values[0] : QJsonValue(values);
}

void Writer::skip(const TagWrite& assignment)
{
    report(assignment, {}, {QStringLiteral("not written"), ExitCode::SomeFailed});
}

void Writer::report(const TagWrite& assignment, const QVector<quint32>& before,
                    const Result& result)
{
    const QVector<quint32> wanted = assignment.valuesOver(before);
    const Tag& tag = assignment.tag;
    const QJsonValue old = before.isEmpty()
                               ? QJsonValue(QJsonValue::Undefined)
                               : shown(assignment, before, valuesText(assignment, before));
    const QJsonValue written =
        shown(assignment, wanted,
              tag.name.isEmpty() ? assignment.written : valuesText(assignment, wanted));
    const QString& type = assignment.asked.range.type.name;
    if (m_hasTags)
        m_records.add({textOrNothing(tag.name), assignment.asked.text(), type, old, written,
                       textOrNothing(tag.unit), result.text});
    else
        m_records.add({assignment.asked.text(), type, old, written, result.text});
    if (result.code == ExitCode::Good)
        ++m_good;
    else if (!m_firstFailure || result.code == ExitCode::Interrupted)
        m_firstFailure = result.code;
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
    CommandConnection connection(common);
    // All of them are checked before the first one is sent.
    const QVector<TagWrite> assignments = writesOf(options, connection.services());
    const bool hasTags =
        std::any_of(assignments.begin(), assignments.end(),
                    [](const TagWrite& write) { return !write.tag.name.isEmpty(); });
    Writer writer(connection, options, common.output, hasTags);
    bool goOn = true;
    for (const TagWrite& assignment : assignments) {
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
                     "ADDRESS=VALUE or ADDRESS:N=VALUE,VALUE...; with -r only values")
        ->required();
    addAddressLetters(*command, options->address);
    addFormatOption(*command, options->style);
    addVerifyOption(*command, options->verify, "Read the registers before and after");
    command->add_flag("--force", options->force,
                      "Write to registers that share their address with others");
    addExamples(*command,
                {"fxhost write D100=5 M100=on",
                 "fxhost write D10:2=-1,0x1F D30:2=70000 D100.5=1 K4M100=255",
                 "fxhost write D20=3.14 --as float", "fxhost write -t D -r 100 -c 3 1 2 3"});
    onRun(*command, action, [&common, options] { return runWrite(common, *options); });
}

}  // namespace fxtools
