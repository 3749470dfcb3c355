// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost read: reads registers once.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/fxhost/commands/poll_result.h"

namespace fxtools {

namespace {

struct ReadOptions
{
    AddressOptions addresses;
    ValueStyle style;
    PlanningOptions planning;
};

// A value that is not the register's own is no value.
void tellAliases(const QVector<Tag>& asked, const RegisterCatalogue& catalogue)
{
    for (const RegisterRange& range : rangesOf(asked)) {
        if (const std::optional<Alias> alias = catalogue.aliasIn(range))
            complain(alias->text());
    }
}

ExitCode runRead(const CommonOptions& common, const ReadOptions& options)
{
    CommandConnection connection(common);
    const QVector<Tag> asked = askedOf(options.addresses, connection.services(), options.style);
    tellAliases(asked, connection.catalogue());
    Poller poller(connection.loop(), connection.catalogue(), rangesOf(asked),
                  plannerFor(connection.loop(), connectionSettings(common), options.planning));
    const int frames =
        cutToFrames(rangesOf(asked), connection.session().settings().wordsPerFrame).size();
    const Progress progress = lateProgressOf(common.output, QStringLiteral("read"));
    connection.loop().onExchange = [&progress, frames, done = 0](const Exchange&) mutable {
        progress(++done, frames);
    };
    if (poller.poll() == RoundEnd::Interrupted) {
        complain(QStringLiteral("interrupted before everything was read"));
        return ExitCode::Interrupted;
    }
    ValueRecords records(common.output, asked, Records::Shown::AtTheEnd);
    PollResult result;
    for (const PolledValue& polled : polledValues(poller, asked)) {
        result.count(polled);
        records.add(polled);
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
    addFormatOption(*command, options->style);
    addPlanningOptions(*command, options->planning);
    addExamples(*command,
                {"fxhost read D100 X17 M8000 TV0", "fxhost read D0-D7 K4M0 --as hex --timestamps",
                 "fxhost read -t D -r 100 -c 4 --as float --json"});
    onRun(*command, action, [&common, options] { return runRead(common, *options); });
}

}  // namespace fxtools
