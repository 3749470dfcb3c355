// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost compare: shows where the PLC holds other values than a file.
// fxhost restore: shows where the PLC differs from a file, and writes those registers, one frame at
// a time. Stops at the first failure and says where to continue. Registers that hold another value
// afterwards, because the PLC's program writes them, are named at the end.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/file_comparison.h"

#include <QJsonArray>

namespace fxtools {

namespace {

ExitCode runCompare(const CommonOptions& common, const std::string& file)
{
    CommandConnection connection(common);
    const QString path = QString::fromStdString(file);
    const Comparison comparison = compareWithPlc(
        connection, registersOf(path, connection.catalogue(), connection.wordsPerFrame()).runs,
        lateProgressOf(common.output, "compare"));
    if (comparison.problem) {
        complain(path + ": not compared to the end: " + verdictText(*comparison.problem));
        return exitCodeOf(*comparison.problem);
    }
    const int different = comparison.different() + comparison.refused();
    if (different > 0 || common.output.mode != OutputMode::People)
        showDifferences(comparison, common.output);
    else if (!common.output.quiet)
        Console().line("  " + path + ": no difference in " +
                       counted(comparison.registers.size(), "register"));
    return different == 0 ? ExitCode::Good : ExitCode::SomeFailed;
}

struct RestoreOptions
{
    std::string file;
    std::string from;
    bool verify = true;
    bool dryRun = false;
    bool yes = false;
    bool force = false;
};

// The runs from a register on, which must be in one of them.
QVector<RegisterRun> runsFrom(const QVector<RegisterRun>& runs, const RegisterRange& from)
{
    QVector<RegisterRun> left;
    for (const RegisterRun& run : runs) {
        const int offset = from.first - run.range.first;
        const bool isHere = run.range.type.name == from.type.name &&
                            run.range.station == from.station && offset >= 0 &&
                            offset < run.range.count;
        if (!left.isEmpty())
            left.append(run);
        else if (isHere)
            left.append({run.range.part(offset, run.range.count - offset), run.values.mid(offset)});
    }
    if (left.isEmpty())
        throw Failure(ExitCode::Usage, "--from " + from.text() + ": not in the file");
    return left;
}

struct Stop
{
    QString text;
    ReplyVerdict reason;
};

QStringList namesOfDifferent(const RegisterRun& run, const QVector<quint32>& held)
{
    QStringList names;
    for (int index = 0; index < run.values.size(); ++index) {
        if (held[index] != run.values[index])
            names.append(run.range.nameOf(index));
    }
    return names;
}

// Returns nothing if the values were written and, unless that was not wanted, read back.
std::optional<Stop> restoreRun(Connection& connection, const RegisterRun& run, bool verify,
                               QStringList& different)
{
    const WriteOutcome outcome = writeRegisters(connection.loop(), run.range, run.values);
    if (!outcome.isGood())
        return Stop{failureText(outcome), *outcome.problem};
    if (!verify)
        return std::nullopt;
    const ReplyVerdict verdict = readBack(connection.loop(), run.range);
    if (verdict != ReplyVerdict::Good)
        return Stop{"written, but could not be read back: " + verdictText(verdict), verdict};
    different += namesOfDifferent(run, connection.session().values(run.range));
    return std::nullopt;
}

ExitCode stoppedAt(const RegisterRun& run, const Stop& stop)
{
    complain(QStringLiteral("%1: %2; continue with --from %3")
                 .arg(run.range.text(), stop.text, run.range.nameOf(0)));
    return exitCodeOf(stop.reason);
}

ExitCode finished(const CommonOptions& common, const RestoreOptions& options, int registers,
                  int skipped, const QStringList& different)
{
    const QString path = QString::fromStdString(options.file);
    QString words = QStringLiteral("  %1: %2 written%3")
                        .arg(path, counted(registers, "register"),
                             QLatin1String(options.verify ? " and read back" : ""));
    if (skipped > 0)
        words += QStringLiteral(", %1 skipped").arg(skipped);
    showResult(common.output, words,
               {{"file", path},
                {"written", registers},
                {"skipped", skipped},
                {"different", QJsonArray::fromStringList(different)}});
    return different.isEmpty() && skipped == 0 ? ExitCode::Good : ExitCode::SomeFailed;
}

// Everything that can be said before the PLC is asked.
RegisterFile checkedFile(const RestoreOptions& options, const Connection& connection)
{
    RegisterFile file =
        writableRegistersOf(QString::fromStdString(options.file), connection.catalogue(),
                            connection.wordsPerFrame(), options.force);
    if (!options.from.empty())
        file.runs =
            runsFrom(file.runs,
                     addressIn(QString::fromStdString(options.from), connection.services()).range);
    return file;
}

ExitCode writeChanges(Connection& connection, const CommonOptions& common,
                      const RestoreOptions& options, const Comparison& comparison, int skipped)
{
    const QVector<RegisterRun> runs =
        comparison.changes(connection.session().settings().wordsPerFrame / 2);
    const Progress progress = progressOf(common.output, QStringLiteral("restore"));
    QStringList different;
    for (int done = 0; done < runs.size(); ++done) {
        progress(done, runs.size());
        const std::optional<Stop> stop =
            restoreRun(connection, runs[done], options.verify, different);
        if (stop) {
            const ExitCode code = stoppedAt(runs[done], *stop);
            complainOfDifferent(different, runs);
            return code;
        }
    }
    if (!runs.isEmpty())
        progress(runs.size(), runs.size());
    const ExitCode code = finished(common, options, comparison.different(), skipped, different);
    complainOfDifferent(different, runs);
    return code;
}

ExitCode runRestore(const CommonOptions& common, const RestoreOptions& options)
{
    demandNamedLink(common);
    CommandConnection connection(common);
    const RegisterFile file = checkedFile(options, connection);
    const Comparison comparison =
        compareWithPlc(connection, file.runs, lateProgressOf(common.output, "reading"));
    if (comparison.problem) {
        complain("nothing was written, because not everything could be read: " +
                 verdictText(*comparison.problem));
        return exitCodeOf(*comparison.problem);
    }
    const bool isForPeople = common.output.mode == OutputMode::People && !common.output.quiet;
    if (options.dryRun || (isForPeople && comparison.different() + comparison.refused() > 0))
        showDifferences(comparison, common.output);
    if (options.dryRun)
        return ExitCode::Good;
    const QString question =
        QStringLiteral("Write %1 to %2?")
            .arg(counted(comparison.different(), "register"), connection.link().name());
    if (comparison.different() > 0 && !options.yes && !isConfirmed(question)) {
        complain(QStringLiteral("nothing was written"));
        return ExitCode::SomeFailed;
    }
    return writeChanges(connection, common, options, comparison,
                        comparison.refused() + file.withoutValue);
}

}  // namespace

void addCompareCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("compare", "Show where the PLC differs from a file of registers");
    const auto file = std::make_shared<std::string>();
    command->add_option("file", *file, "CSV file written by dump or backup")->required();
    addExamples(*command, {"fxhost dump plc.csv D100:512 M64:64", "fxhost compare plc.csv"});
    onRun(*command, action, [&common, file] { return runCompare(common, *file); });
}

void addRestoreCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("restore", "Write the registers of a file and read them back");
    const auto options = std::make_shared<RestoreOptions>();
    command->add_option("file", options->file, "CSV file written by dump or backup")->required();
    command->add_option("--from", options->from, "Start with this register or tag of the file")
        ->type_name("ADDRESS");
    command->add_flag("--dry-run", options->dryRun, "Show what would change, and write nothing");
    command->add_flag("-y,--yes", options->yes, "Do not ask before writing");
    command->add_flag("--force", options->force,
                      "Write also to registers that share their address with others");
    addVerifyOption(*command, options->verify, "Read back what was written");
    addExamples(*command,
                {"fxhost dump plc.csv D100:512 M64:64", "fxhost restore plc.csv --dry-run",
                 "fxhost restore plc.csv --yes --from D132"});
    onRun(*command, action, [&common, options] { return runRestore(common, *options); });
}

}  // namespace fxtools
