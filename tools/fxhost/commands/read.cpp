// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost read: reads registers once.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/poll_result.h"

namespace fxtools {

namespace {

struct ReadOptions
{
    AddressOptions addresses;
    ValueFormat format = ValueFormat::Unsigned;
};

ExitCode runRead(const CommonOptions& common, const ReadOptions& options)
{
    Connection connection(common);
    const QVector<RegisterRange> ranges = rangesOf(options.addresses, connection.catalogue());
    needWholeValues(ranges, options.format);
    Poller poller(connection.loop(), connection.catalogue(), ranges);
    if (poller.poll() == RoundEnd::Interrupted) {
        complain(QStringLiteral("interrupted before everything was read"));
        return ExitCode::Interrupted;
    }
    Records records(common.output, {{"address"}, {"value", Align::Right}, {"error"}});
    PollResult result;
    for (const RegisterRange& range : poller.ranges()) {
        for (const PolledValue& polled : polledValues(poller, range, options.format)) {
            result.count(polled);
            records.add({polled.name, polled.value, polled.error()});
        }
    }
    records.finish();
    return result.exitCode();
}

}  // namespace

void addReadCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("read", "Read registers once");
    const auto options = std::make_shared<ReadOptions>();
    addAddressOptions(*command, options->addresses);
    addFormatOption(*command, options->format);
    addExamples(*command,
                {"fxhost read D100 X17 M8000 TV0", "fxhost read D0:8 --as hex --timestamps",
                 "fxhost read -t D -r 100 -c 4 --as float --json"});
    command->callback([&action, &common, options] {
        action = [&common, options] { return runRead(common, *options); };
    });
}

}  // namespace fxtools
