// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost read: the values of some registers, once.

#include "host/commands/poll_result.h"

namespace fxhost {

namespace {

struct ReadOptions
{
    std::vector<std::string> addresses;
    ValueFormat format = ValueFormat::Unsigned;
};

ExitCode runRead(const CommonOptions& common, const ReadOptions& options)
{
    Connection connection(common);
    Poller poller(connection.loop(), connection.catalogue(), connection.ranges(options.addresses));
    poller.poll();
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
    command->add_option("address", options->addresses, "Addresses such as D100:32, X17 or 2#M8")
        ->required();
    command->add_option("--as", options->format, "dec, signed, hex, bin, long or float")
        ->transform(CLI::CheckedTransformer(valueFormats(), CLI::ignore_case));
    command->callback([&action, &common, options] {
        action = [&common, options] { return runRead(common, *options); };
    });
}

}  // namespace fxhost
