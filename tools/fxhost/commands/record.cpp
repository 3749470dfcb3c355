// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost record: polls and saves every exchange in a file.
// fxhost replay: runs such a file through the driver without a PLC and compares: the driver must
// send the same frames and return the same results for the same replies.

#include "tools/exchange/recording.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/fxhost/views/frame_text.h"
#include "tools/library/addresses.h"

namespace fxtools {

namespace {

struct RecordOptions
{
    FileOptions file;
    AddressOptions addresses;
    int cycles = 10;
};

ExitCode runRecord(const CommonOptions& common, const RecordOptions& options)
{
    CommandConnection connection(common);
    OutputFile file(options.file.name(), options.file.mode(), connection.catalogue());
    const QVector<RegisterRange> ranges = rangesOf(options.addresses, connection.services());
    QStringList addresses;
    for (const RegisterRange& range : ranges)
        addresses += range.text();
    PlanCycle plan(connection.loop());  // the driver's own: replay must make the same frames
    plan.plan(ranges);
    Recorder recorder(file, connection.session().propertyString(), addresses);
    const Progress progress = lateProgressOf(common.output, QStringLiteral("record"));
    qint64 reads = 0;
    int exchanges = 0;
    connection.loop().onExchange = [&](const Exchange& exchange) {
        if (exchange.answer == DriverAnswer::NoFrame)
            return;  // the link was lost: the driver has not seen this exchange
        recorder.add(exchange);
        ++exchanges;
        reads += exchange.hasEnded();
        if (options.cycles > 0)
            progress(static_cast<int>(reads / plan.blocks()), options.cycles);
    };
    const ExitCode code = pollCycles(connection, plan, options.cycles);
    file.commit();
    const qint64 good = connection.loop().statistics().total().accepted;
    showResult(besides(options.file, common.output),
               QStringLiteral("  %1: %2 saved, %3 good")
                   .arg(options.file.name(), counted(exchanges, "exchange"))
                   .arg(good),
               {{"file", options.file.name()}, {"exchanges", exchanges}, {"good", good}});
    return code;
}

// How the driver differs from the recording; empty when it does not.
QString difference(const DriverLibrary& library, const RecordedExchange& recorded)
{
    FRAME_PRO frame;
    if (library.getSendFrame(&frame) != fxFrameToSend)
        return QStringLiteral("the driver sends no frame");
    if (requestBytes(frame) != recorded.sent) {
        return QStringLiteral("the driver sends %1 instead of %2")
            .arg(visibleBytes(requestBytes(frame)), visibleBytes(recorded.sent));
    }
    QByteArray reply = recorded.handed;
    QString text;
    const int answer = library.dealRcvFrame(reply, text);
    if (answer != recorded.answer || text != recorded.text) {
        return QStringLiteral("the driver returns %1 '%2' instead of %3 '%4'")
            .arg(answer)
            .arg(text)
            .arg(recorded.answer)
            .arg(recorded.text);
    }
    return {};
}

// The recorded plan. An error in it is an error of the file.
QVector<RegisterRange> recordedRanges(const AddressServices& services, const Recording& recording,
                                      const QString& path)
{
    QVector<RegisterRange> ranges;
    try {
        for (const QString& address : recording.addresses)
            ranges.append(parseAddress(address, services.catalogue));
    } catch (const Failure& failure) {
        throw Failure(ExitCode::File, path + ", line 1: " + failure.text());
    }
    return ranges;
}

ExitCode runReplay(const CommonOptions& common, const std::string& file)
{
    const QString path = QString::fromStdString(file);
    const AddressServices services = addressServices(common);
    const Recording recording = readRecording(path);
    DriverSession session(services.library, {recording.failLimit, recording.wordsPerFrame});
    session.setPlan(recordedRanges(services, recording, path));
    int alike = 0;
    for (const RecordedExchange& recorded : recording.exchanges) {
        const QString text = difference(services.library, recorded);
        if (!text.isEmpty()) {
            complain(QStringLiteral("%1, line %2: %3").arg(path).arg(recorded.line).arg(text));
            break;
        }
        ++alike;
    }
    const int all = recording.exchanges.size();
    const QString words = alike == all
                              ? QStringLiteral("no difference in %1").arg(counted(all, "exchange"))
                              : QStringLiteral("first difference after %1 of %2")
                                    .arg(alike)
                                    .arg(counted(all, "exchange"));
    showResult(common.output, words, {{"exchanges", all}, {"alike", alike}});
    return alike == all ? ExitCode::Good : ExitCode::SomeFailed;
}

}  // namespace

void addRecordCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("record", "Save every exchange in a file");
    const auto options = std::make_shared<RecordOptions>();
    addFileOptions(*command, options->file);
    addAddressOptions(*command, options->addresses);
    addCountOption(*command, options->cycles);
    addExamples(*command, {"fxhost record session.jsonl D0:64 X0:8 -n 20"});
    onRun(*command, action, [&common, options] { return runRecord(common, *options); });
}

void addReplayCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("replay", "Run a recording through the driver again and compare");
    const auto file = std::make_shared<std::string>();
    command->add_option("file", *file, "File written by record")->required();
    addExamples(*command,
                {"fxhost record session.jsonl D0:64 X0:8 -n 20", "fxhost replay session.jsonl"});
    onRun(*command, action, [&common, file] { return runReplay(common, *file); });
}

}  // namespace fxtools
