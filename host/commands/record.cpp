// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost record: polls and keeps every exchange in a file.
// fxhost replay: runs such a file through the driver without a PLC, and compares: the driver must
// ask for the same frames and judge the same replies alike.

#include "host/commands/poll_result.h"
#include "host/interrupt.h"
#include "host/recording.h"
#include "host/register_file.h"
#include "host/report/frame_text.h"

namespace fxhost {

namespace {

struct RecordOptions
{
    std::string file;
    std::vector<std::string> addresses;
    int cycles = 10;
};

ExitCode runRecord(const CommonOptions& common, const RecordOptions& options)
{
    Connection connection(common);
    QStringList addresses;
    for (const std::string& address : options.addresses)
        addresses += QString::fromStdString(address);
    const int blocks = connection.session().setPlan(connection.ranges(options.addresses));
    Recorder recorder(QString::fromStdString(options.file), connection.session().propertyString(),
                      addresses);
    connection.loop().onExchange = [&recorder](const Exchange& exchange) {
        if (exchange.answer != DriverAnswer::NoFrame)  // the driver never saw what a lost link ate
            recorder.add(exchange);
    };
    for (int cycle = 0; options.cycles == 0 || cycle < options.cycles; ++cycle) {
        const Round round = pollCycle(connection.loop(), blocks);
        if (interrupted() || (round.linkLost && !connection.reconnect()))
            return ExitCode::Interrupted;
    }
    return connection.loop().statistics().total().failed == 0 ? ExitCode::Good
                                                              : ExitCode::SomeFailed;
}

SessionSettings settingsOf(const QString& property)
{
    const QStringList fields = property.split('#');
    if (fields.size() < 5)
        throw FileError("the recording's property string '" + property.toStdString() +
                        "' has less than five fields");
    return {fields[3].toInt(), fields[4].toInt()};
}

// What the driver does otherwise than recorded; empty when it does the same.
QString difference(const DriverLibrary& library, const RecordedExchange& recorded)
{
    FRAME_PRO frame;
    if (library.getSendFrame(&frame) != 1)
        return QStringLiteral("the driver sends nothing");
    if (requestBytes(frame) != recorded.sent) {
        return QStringLiteral("the driver sends %1 instead of %2")
            .arg(visibleBytes(requestBytes(frame)), visibleBytes(recorded.sent));
    }
    QByteArray reply = recorded.handed;
    QString text;
    const int answer = library.dealRcvFrame(reply, text);
    if (answer != recorded.answer || text != recorded.text) {
        return QStringLiteral("the driver answers %1 '%2' instead of %3 '%4'")
            .arg(answer)
            .arg(text)
            .arg(recorded.answer)
            .arg(recorded.text);
    }
    return {};
}

ExitCode runReplay(const CommonOptions& common, const std::string& file)
{
    const AddressServices services(common);
    const Recording recording = readRecording(QString::fromStdString(file));
    DriverSession session(services.library, settingsOf(recording.property));
    QVector<RegisterRange> ranges;
    for (const QString& address : recording.addresses)
        ranges.append(services.parse(address.toStdString()));
    session.setPlan(ranges);
    for (const RecordedExchange& recorded : recording.exchanges) {
        const QString text = difference(services.library, recorded);
        if (!text.isEmpty()) {
            complain(QStringLiteral("%1, line %2: %3")
                         .arg(QString::fromStdString(file))
                         .arg(recorded.line)
                         .arg(text));
            return ExitCode::SomeFailed;
        }
    }
    if (!common.output.quiet)
        Console().line(QStringLiteral("%1 exchanges, all alike").arg(recording.exchanges.size()));
    return ExitCode::Good;
}

}  // namespace

void addRecordCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("record", "Keep the exchanges of a session in a file");
    const auto options = std::make_shared<RecordOptions>();
    command->add_option("file", options->file, "File to write, a JSON object a line")->required();
    command->add_option("address", options->addresses, "Addresses to poll")->required();
    command->add_option("-c,--count", options->cycles, "Polling cycles; 0 until Ctrl-C")
        ->capture_default_str()
        ->check(CLI::NonNegativeNumber);
    command->callback([&action, &common, options] {
        action = [&common, options] { return runRecord(common, *options); };
    });
}

void addReplayCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("replay", "Run a recording through the driver");
    const auto file = std::make_shared<std::string>();
    command->add_option("file", *file, "File that record wrote")->required();
    command->callback([&action, &common, file] {
        action = [&common, file] { return runReplay(common, *file); };
    });
}

}  // namespace fxhost
