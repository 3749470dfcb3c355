// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost dump: reads ranges of registers into a file, one frame at a time, so that an interrupted
// dump can be resumed. A register that cannot be read becomes a comment in the file.
// fxhost backup: the same for every register that can be written back.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/poll_result.h"
#include "tools/library/register_file.h"

#include <QSet>

namespace fxtools {

namespace {

constexpr int silentPortionsUntilEnd = 3;

struct DumpOptions
{
    FileOptions file;
    AddressOptions addresses;
    bool resume = false;
    bool isBackup = false;
};

// The identities of the registers that a file holds already.
QSet<QString> namesIn(const QString& path, const Connection& connection)
{
    QSet<QString> names;
    for (const RegisterRun& run : readRegisterFile(path, connection.catalogue(), 1).runs)
        names.insert(run.range.identity(0));
    return names;
}

bool isDumped(const RegisterRange& portion, const QSet<QString>& names)
{
    for (int index = 0; index < portion.count; ++index) {
        if (!names.contains(portion.identity(index)))
            return false;
    }
    return true;
}

class Dumper
{
public:
    Dumper(Connection& connection, OutputFile& file, const QSet<QString>& done)
        : m_connection(connection), m_file(file), m_done(done)
    {}

    // The reason to stop, or nothing. If it stops, the portion is not in the file.
    std::optional<ReplyVerdict> dump(const RegisterRange& portion);
    void finish() { m_file.finish(); }
    const PollResult& result() const { return m_result; }
    int alreadyThere() const { return m_done.size(); }

private:
    void keep(const Poller& poller, const RegisterRange& portion);

    Connection& m_connection;
    RegisterFileWriter m_file;
    QSet<QString> m_done;
    PollResult m_result;
    int m_silentPortions = 0;  // in a row
};

std::optional<ReplyVerdict> Dumper::dump(const RegisterRange& portion)
{
    if (isDumped(portion, m_done))
        return std::nullopt;
    Poller poller(m_connection.loop(), m_connection.catalogue(), {portion});
    const RoundEnd end = poller.poll();
    if (end != RoundEnd::Done)
        return verdictOf(end);
    const bool silent = poller.problemOf(portion, 0) == ReplyVerdict::Silence;
    m_silentPortions = silent ? m_silentPortions + 1 : 0;
    if (m_silentPortions == silentPortionsUntilEnd)
        return ReplyVerdict::Silence;
    keep(poller, portion);
    return std::nullopt;
}

void Dumper::keep(const Poller& poller, const RegisterRange& portion)
{
    const QVector<quint32> values = poller.values(portion);
    const QVector<PolledValue> polled =
        polledValues(poller, untagged({portion, {}, false, true}, {}));
    for (int index = 0; index < portion.count; ++index) {
        const PolledValue& one = polled[index];
        if (m_done.contains(portion.identity(index)))
            continue;
        m_result.count(one);
        if (one.problem)
            m_file.addComment(one.name + ": " + verdictText(*one.problem));
        else
            m_file.add({portion.part(index, 1), {values[index]}});
    }
}

ExitCode stopped(Dumper& dumper, const QString& path, const RegisterRange& portion,
                 ReplyVerdict problem)
{
    const bool holdsSome = dumper.result().good() + dumper.alreadyThere() > 0;
    if (holdsSome)
        dumper.finish();
    const QString reason = verdictText(problem);
    complain(holdsSome
                 ? QStringLiteral("%1: %2 holds the values read before %3; continue with --resume")
                       .arg(reason, path, portion.nameOf(0))
                 : QStringLiteral("%1: nothing was read, %2 was not written").arg(reason, path));
    return exitCodeOf(problem);
}

QString resultText(const PollResult& result, int alreadyThere)
{
    QString text = counted(result.good(), "register") + " read";
    if (result.failed() > 0)
        text += QStringLiteral(", %1 failed").arg(result.failed());
    if (alreadyThere > 0)
        text += QStringLiteral(", %1 already in the file").arg(alreadyThere);
    return text;
}

// The parts of a type that a write would really hit; none of the special registers, which are the
// PLC's own state.
QVector<RegisterRange> restorableRanges(const RegisterCatalogue& catalogue)
{
    QVector<RegisterRange> ranges;
    for (const RegisterType& type : catalogue.all()) {
        if (!type.writable || type.name == QLatin1String("SM") || type.name == QLatin1String("SD"))
            continue;
        RegisterRange rest{
            type, catalogue.ownStation().value_or(1), type.lowest, type.registers(), {}};
        while (const std::optional<Alias> alias = catalogue.aliasIn(rest)) {
            const int own = alias->asked.first - rest.first;
            if (own > 0)
                ranges.append(rest.part(0, own));
            const int taken = own + alias->asked.count;
            rest = rest.part(taken, rest.count - taken);
        }
        if (rest.count > 0)
            ranges.append(rest);
    }
    return ranges;
}

ExitCode runDump(const CommonOptions& common, const DumpOptions& options)
{
    CommandConnection connection(common);
    const QString path = options.file.name();
    OutputFile file(path, options.resume ? OutputFile::Mode::Append : options.file.mode(),
                    connection.catalogue());
    const QVector<RegisterRange> portions =
        cutToFrames(options.isBackup ? restorableRanges(connection.catalogue())
                                     : registersOnce(options.addresses, connection.services()),
                    connection.session().settings().wordsPerFrame);
    Dumper dumper(connection, file, options.resume ? namesIn(path, connection) : QSet<QString>());
    const OutputOptions output = besides(options.file, common.output);
    const Progress progress =
        options.isBackup ? timedProgressOf(output, "backup") : progressOf(output, "dump");
    for (int portion = 0; portion < portions.size(); ++portion) {
        progress(portion, portions.size());
        const std::optional<ReplyVerdict> problem = dumper.dump(portions[portion]);
        if (problem)
            return stopped(dumper, path, portions[portion], *problem);
    }
    dumper.finish();
    progress(portions.size(), portions.size());
    const PollResult& result = dumper.result();
    showResult(output, "  " + path + ": " + resultText(result, dumper.alreadyThere()),
               {{"file", path},
                {"read", result.good()},
                {"failed", result.failed()},
                {"alreadyThere", dumper.alreadyThere()}});
    return result.exitCode();
}

}  // namespace

void addDumpCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("dump", "Read registers and save them in a file");
    const auto options = std::make_shared<DumpOptions>();
    addFileOptions(*command, options->file);
    addAddressOptions(*command, options->addresses);
    command->add_flag("--resume", options->resume, "Continue an incomplete dump");
    addExamples(*command, {"fxhost dump plc.csv D100:512 M64:64",
                           "fxhost dump plc.csv D100:1024 M64:64 --resume"});
    onRun(*command, action, [&common, options] { return runDump(common, *options); });
}

void addBackupCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("backup", "Save every register that restore can write back");
    const auto options = std::make_shared<DumpOptions>();
    options->isBackup = true;
    addFileOptions(*command, options->file);
    command->add_flag("--resume", options->resume, "Continue an incomplete backup");
    addExamples(*command, {"fxhost backup press1.csv"});
    onRun(*command, action, [&common, options] { return runDump(common, *options); });
}

}  // namespace fxtools
