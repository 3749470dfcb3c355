// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost restore: the registers of a file back into the PLC, a frame at a time, each read back.
// Stops at the first that does not arrive, and says up to where the PLC was written.

#include "host/commands/poll_result.h"
#include "host/interrupt.h"
#include "host/register_file.h"

namespace fxhost {

namespace {

struct RestoreOptions
{
    std::string file;
    std::string from;
};

void checkWritable(const QString& path, const QVector<RegisterRun>& runs)
{
    for (const RegisterRun& run : runs) {
        if (!run.range.type.writable) {
            throw FileError(
                (path + ": " + run.range.text() + " cannot be written; take it out").toStdString());
        }
    }
}

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
        throw UsageError("--from " + from.text().toStdString() + ": the file does not hold it");
    return left;
}

// Nothing when the PLC holds what was written.
std::optional<ReplyVerdict> restoreRun(Connection& connection, const RegisterRun& run,
                                       bool& differs)
{
    const WriteOutcome outcome = writeRegisters(connection.loop(), run.range, run.values);
    if (!outcome.isGood())
        return outcome.problem;
    const ReplyVerdict verdict = readOnce(connection.loop(), run.range);
    if (verdict != ReplyVerdict::Good)
        return verdict;
    differs = connection.session().values(run.range) != run.values;
    return std::nullopt;
}

ExitCode stopped(const RegisterRun& run, const QString& reason, ExitCode code)
{
    complain(QStringLiteral("%1: %2; what stands before it in the file was written and read back, "
                            "go on with --from %3")
                 .arg(run.range.text(), reason, run.range.nameOf(0)));
    return interrupted() ? ExitCode::Interrupted : code;
}

ExitCode runRestore(const CommonOptions& common, const RestoreOptions& options)
{
    Connection connection(common);
    const QString path = QString::fromStdString(options.file);
    QVector<RegisterRun> runs = readRegisterFile(path, connection.catalogue(), connection.library(),
                                                 common.wordsPerFrame / 2);
    checkWritable(path, runs);
    if (!options.from.empty())
        runs = runsFrom(runs, connection.ranges({options.from}).first());
    Console console;
    for (int done = 0; done < runs.size(); ++done) {
        bool differs = false;
        const std::optional<ReplyVerdict> problem = restoreRun(connection, runs[done], differs);
        if (problem)
            return stopped(runs[done], verdictText(*problem), exitCodeOf(*problem));
        if (differs)
            return stopped(runs[done], "the PLC holds other values", ExitCode::SomeFailed);
        if (!common.output.quiet)
            console.progress(QStringLiteral("restore"), done + 1, runs.size());
    }
    return ExitCode::Good;
}

}  // namespace

void addRestoreCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("restore", "Write the registers of a file");
    const auto options = std::make_shared<RestoreOptions>();
    command->add_option("file", options->file, "CSV file, as dump writes it")->required();
    command->add_option("--from", options->from, "Begin with this register of the file");
    command->callback([&action, &common, options] {
        action = [&common, options] { return runRestore(common, *options); };
    });
}

}  // namespace fxhost
