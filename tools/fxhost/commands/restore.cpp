// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost restore: writes the registers of a file to the PLC and reads them back, one frame at a
// time. Stops at the first failure and says where to continue. Registers that hold another value
// afterwards, because the PLC's program writes them, are named at the end.

#include "tools/fxhost/commands/connection.h"
#include "tools/fxhost/commands/progress.h"
#include "tools/fxhost/commands/write_report.h"
#include "tools/library/register_file.h"

#include <QJsonArray>

namespace fxtools {

namespace {

constexpr int mostNames = 8;  // of registers in one message

struct RestoreOptions
{
    std::string file;
    std::string from;
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

// Returns nothing if the values were written and read back.
std::optional<Stop> restoreRun(Connection& connection, const RegisterRun& run,
                               QStringList& different)
{
    const WriteOutcome outcome = writeRegisters(connection.loop(), run.range, run.values);
    if (!outcome.isGood())
        return Stop{failureText(outcome), *outcome.problem};
    const ReplyVerdict verdict = readBack(connection.loop(), run.range);
    if (verdict != ReplyVerdict::Good)
        return Stop{"written, but could not be read back: " + verdictText(verdict), verdict};
    different += namesOfDifferent(run, connection.session().values(run.range));
    return std::nullopt;
}

void complainOfDifferent(const QStringList& different)
{
    if (different.isEmpty())
        return;
    const int unnamed = different.size() - mostNames;
    complain(
        "written, but read back with another value: " + different.mid(0, mostNames).join(", ") +
        (unnamed > 0 ? QStringLiteral(" and %1 more").arg(unnamed) : QString()) +
        "; does the program in the PLC write there?");
}

ExitCode stopped(const RegisterRun& run, const Stop& stop, const QStringList& different)
{
    complain(QStringLiteral("%1: %2; continue with --from %3")
                 .arg(run.range.text(), stop.text, run.range.nameOf(0)));
    complainOfDifferent(different);
    return exitCodeOf(stop.reason);
}

ExitCode finished(const CommonOptions& common, const QString& path, int registers,
                  const QStringList& different)
{
    showResult(
        common.output,
        QStringLiteral("  %1: %2 written and read back").arg(path, counted(registers, "register")),
        {{"file", path},
         {"written", registers},
         {"different", QJsonArray::fromStringList(different)}});
    complainOfDifferent(different);
    return different.isEmpty() ? ExitCode::Good : ExitCode::SomeFailed;
}

ExitCode runRestore(const CommonOptions& common, const RestoreOptions& options)
{
    demandNamedLink(common);
    Connection connection(common);
    const QString path = QString::fromStdString(options.file);
    QVector<RegisterRun> runs = readRegisterFile(path, connection.catalogue(),
                                                 connection.session().settings().wordsPerFrame / 2)
                                    .runs;
    checkWritable(path, runs);
    if (!options.from.empty())
        runs = runsFrom(runs,
                        parseAddress(QString::fromStdString(options.from), connection.catalogue()));
    const Progress progress = progressOf(common.output, QStringLiteral("restore"));
    QStringList different;
    int registers = 0;
    for (int done = 0; done < runs.size(); ++done) {
        progress(done, runs.size());
        const std::optional<Stop> stop = restoreRun(connection, runs[done], different);
        if (stop)
            return stopped(runs[done], *stop, different);
        registers += runs[done].range.count;
    }
    progress(runs.size(), runs.size());
    return finished(common, path, registers, different);
}

}  // namespace

void addRestoreCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("restore", "Write the registers of a file and read them back");
    const auto options = std::make_shared<RestoreOptions>();
    command->add_option("file", options->file, "CSV file written by dump")
        ->type_name("")
        ->required();
    command->add_option("--from", options->from, "Start with this register of the file")
        ->type_name("ADDRESS");
    addExamples(*command, {"fxhost dump plc.csv D100:512 M64:64", "fxhost restore plc.csv",
                           "fxhost restore plc.csv --from D132"});
    command->callback([&action, &common, options] {
        action = [&common, options] { return runRestore(common, *options); };
    });
}

}  // namespace fxtools
