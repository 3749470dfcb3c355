// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost watch: values as they change: a live screen on a terminal, otherwise a line for each
// change. Continues when a lost link is back.

#include "tools/fxhost/commands/cycles.h"
#include "tools/fxhost/commands/live_watch.h"
#include "tools/fxhost/commands/poll_result.h"
#include "tools/fxhost/views/log_format.h"

namespace fxtools {

namespace {

// Shows the values that have changed since they were last shown.
class Watcher
{
public:
    Watcher(const WatchOptions& options, const OutputOptions& output, const QVector<Tag>& asked)
        : m_options(options), m_changes(output, asked, Records::Shown::AtOnce)
    {}

    void show(const QVector<PolledValue>& values);
    ExitCode exitCode() const { return m_lastCycle.exitCode(); }

private:
    bool isNew(const PolledValue& polled) const;

    const WatchOptions& m_options;
    ValueRecords m_changes;
    QHash<QString, PolledValue> m_shown;
    PollResult m_lastCycle;
};

void Watcher::show(const QVector<PolledValue>& values)
{
    m_lastCycle = {};
    for (const PolledValue& polled : values) {
        m_lastCycle.count(polled);
        if (!isNew(polled))
            continue;
        m_changes.add(polled);
        m_shown.insert(polled.name, polled);
    }
}

bool Watcher::isNew(const PolledValue& polled) const
{
    const auto found = m_shown.constFind(polled.name);
    if (found == m_shown.constEnd() || found->problem != polled.problem)
        return true;
    return !polled.problem &&
           differs(polled.value, found->value, polled.deadband.value_or(m_options.deadband));
}

ExitCode runWatch(const CommonOptions& common, const WatchOptions& options)
{
    const bool isLive =
        Console().isTerminal() && !options.log && common.output.mode == OutputMode::People;
    if (isLive)
        return runLiveWatch(common, options);
    Connection connection(common);
    connection.waitForLinkWithoutEnd();
    const QVector<Tag> asked = askedOf(options.addresses, connection.services(), options.style);
    Poller poller(connection.loop(), connection.catalogue(), rangesOf(asked),
                  plannerFor(connection.loop(), connectionSettings(common), options.planning));
    Watcher watcher(options, common.output, asked);
    const RoundEnd end =
        pollEvery(options.intervalMs, options.once ? 1 : options.cycles, connection.loop(), poller,
                  [&] { watcher.show(polledValues(poller, asked)); });
    if (end != RoundEnd::Done)
        return exitCodeOf(verdictOf(end));
    return watcher.exitCode();
}

}  // namespace

void addWatchCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("watch", "Print values as they change");
    const auto options = std::make_shared<WatchOptions>();
    addAddressOptions(*command, options->addresses);
    addFormatOption(*command, options->style);
    addPlanningOptions(*command, options->planning);
    addIntervalOption(*command, options->intervalMs);
    addCountOption(*command, options->cycles, true);
    command->add_flag("-1,--once", options->once, "Stop after one cycle");
    command->add_flag("--log", options->log, "Print one line for each change, also on a terminal");
    addDeadbandOption(*command, options->deadband);
    addExamples(*command, {"fxhost watch D0:4 TV0 X0:8 -n 3",
                           "fxhost watch D1 --log --timestamps --deadband 50 -l 200 -n 10",
                           "fxhost watch -t X -r 0 -c 8 -l 500 -1"});
    onRun(*command, action, [&common, options] { return runWatch(common, *options); });
}

}  // namespace fxtools
