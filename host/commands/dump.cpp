// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost dump: whole ranges of registers into a file, a frame at a time, so that an interrupted
// dump can be resumed. What cannot be read is noted in the file and left out.

#include "host/commands/poll_result.h"
#include "host/interrupt.h"
#include "host/register_file.h"

#include <QSet>

namespace fxhost {

namespace {

struct DumpOptions
{
    std::string file;
    std::vector<std::string> addresses;
    bool resume = false;
};

// Pieces that take one frame each.
QVector<RegisterRange> portionsOf(const QVector<RegisterRange>& ranges, int wordsPerFrame)
{
    QVector<RegisterRange> portions;
    for (const RegisterRange& range : ranges) {
        const int most = range.type.mostInFrame(wordsPerFrame);
        for (int done = 0; done < range.count; done += most)
            portions.append(range.part(done, std::min(most, range.count - done)));
    }
    return portions;
}

// The names of the registers that a file holds already.
QSet<QString> namesIn(const QString& path, const Connection& connection)
{
    QSet<QString> names;
    if (!QFile::exists(path))
        return names;
    for (const RegisterRun& run :
         readRegisterFile(path, connection.catalogue(), connection.library(), 1))
        names.insert(run.range.nameOf(0));
    return names;
}

bool isDumped(const RegisterRange& portion, const QSet<QString>& names)
{
    for (int index = 0; index < portion.count; ++index) {
        if (!names.contains(portion.nameOf(index)))
            return false;
    }
    return true;
}

// False when the link was lost or the user wants an end: the portion is not in the file then.
bool dumpPortion(Connection& connection, const RegisterRange& portion, const QSet<QString>& done,
                 RegisterFileWriter& file, PollResult& result)
{
    Poller poller(connection.loop(), connection.catalogue(), {portion});
    if (!poller.poll())
        return false;
    const QVector<quint32> values = poller.values(portion);
    const QVector<PolledValue> polled = polledValues(poller, portion, ValueFormat::Unsigned);
    for (int index = 0; index < portion.count; ++index) {
        const PolledValue& one = polled[index];
        if (done.contains(one.name))
            continue;
        result.count(one);
        if (one.problem)
            file.addComment(one.name + ": " + verdictText(*one.problem));
        else
            file.add(one.name, values[index]);
    }
    return true;
}

ExitCode runDump(const CommonOptions& common, const DumpOptions& options)
{
    Connection connection(common);
    const QString path = QString::fromStdString(options.file);
    const QVector<RegisterRange> portions =
        portionsOf(connection.ranges(options.addresses), common.wordsPerFrame);
    const QSet<QString> done = options.resume ? namesIn(path, connection) : QSet<QString>();
    RegisterFileWriter file(path, options.resume ? RegisterFileWriter::Mode::Append
                                                 : RegisterFileWriter::Mode::Replace);
    Console console;
    PollResult result;
    for (int portion = 0; portion < portions.size(); ++portion) {
        if (!isDumped(portions[portion], done) &&
            !dumpPortion(connection, portions[portion], done, file, result)) {
            complain(QStringLiteral("%1 is complete up to %2; go on with --resume")
                         .arg(path, portions[portion].nameOf(0)));
            return interrupted() ? ExitCode::Interrupted : ExitCode::Silence;
        }
        if (!common.output.quiet)
            console.progress(QStringLiteral("dump"), portion + 1, portions.size());
    }
    return result.exitCode();
}

}  // namespace

void addDumpCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("dump", "Read ranges into a file");
    const auto options = std::make_shared<DumpOptions>();
    command->add_option("file", options->file, "CSV file to write")->required();
    command->add_option("address", options->addresses, "Ranges such as D0:8000")->required();
    command->add_flag("--resume", options->resume, "Go on with a file that was begun");
    command->callback([&action, &common, options] {
        action = [&common, options] { return runDump(common, *options); };
    });
}

}  // namespace fxhost
