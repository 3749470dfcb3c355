// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost watch: prints values as they change: a table that is redrawn on a terminal, otherwise a
// line for each change. Continues when a lost link is back.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/fxhost/commands/poll_result.h"
#include "tools/fxhost/views/log_format.h"

namespace fxtools {

namespace {

struct WatchOptions
{
    AddressOptions addresses;
    ValueFormat format = ValueFormat::Unsigned;
    int intervalMs = 1000;
    int cycles = 0;  // 0: until Ctrl-C
    bool once = false;
    bool log = false;
    double deadband = 0;
};

// Shows the values that have changed since they were last shown.
class Watcher
{
public:
    Watcher(const WatchOptions& options, const OutputOptions& output);

    void show(const Poller& poller);
    ExitCode exitCode() const { return m_lastCycle.exitCode(); }

private:
    bool isNew(const PolledValue& polled) const;
    void showTable(const QVector<PolledValue>& values);
    void showChanges(const QVector<PolledValue>& values);

    const WatchOptions& m_options;
    Console m_console;
    bool m_asTable;
    bool m_timestamps;
    bool m_quiet;
    std::optional<Records> m_changes;
    QHash<QString, PolledValue> m_shown;
    PollResult m_lastCycle;
    int m_cycle = 0;
};

Watcher::Watcher(const WatchOptions& options, const OutputOptions& output)
    : m_options(options),
      m_asTable(m_console.isTerminal() && !options.log && output.mode == OutputMode::People),
      m_timestamps(output.timestamps), m_quiet(output.quiet)
{
    if (!m_asTable)
        m_changes.emplace(output, QVector<Table::Column>{{"address"}, {"value"}, {"error"}},
                          Records::Shown::AtOnce);
}

void Watcher::show(const Poller& poller)
{
    QVector<PolledValue> values;
    for (const RegisterRange& range : poller.ranges())
        values += polledValues(poller, range, m_options.format);
    m_lastCycle = {};
    for (const PolledValue& polled : values)
        m_lastCycle.count(polled);
    ++m_cycle;
    if (m_asTable)
        showTable(values);
    else
        showChanges(values);
}

bool Watcher::isNew(const PolledValue& polled) const
{
    const auto found = m_shown.constFind(polled.name);
    if (found == m_shown.constEnd() || found->problem != polled.problem)
        return true;
    return !polled.problem && differs(polled.value, found->value, m_options.deadband);
}

void Watcher::showTable(const QVector<PolledValue>& values)
{
    Table table({{"address"}, {"value", Align::Right}, {"error"}});
    const QString time = m_timestamps ? timestamp() + ", " : QString();
    for (const PolledValue& polled : values) {
        const QString text = polled.value.toVariant().toString();
        const bool marked = m_cycle > 1 && isNew(polled);
        table.add({polled.name, marked ? m_console.changed(text) : text,
                   m_console.bad(polled.error().toString())});
        m_shown.insert(polled.name, polled);
    }
    QStringList lines = table.lines().mid(m_quiet ? 1 : 0);
    if (!m_quiet)
        lines +=
            m_console.dim(QStringLiteral("  %1cycle %2; Ctrl-C to stop").arg(time).arg(m_cycle));
    m_console.redraw(lines);
}

void Watcher::showChanges(const QVector<PolledValue>& values)
{
    for (const PolledValue& polled : values) {
        if (!isNew(polled))
            continue;
        m_changes->add({polled.name, polled.value, polled.error()});
        m_shown.insert(polled.name, polled);
    }
}

ExitCode runWatch(const CommonOptions& common, const WatchOptions& options)
{
    Connection connection(common);
    connection.waitForLinkWithoutEnd();
    const QVector<RegisterRange> ranges = rangesOf(options.addresses, connection.catalogue());
    needWholeValues(ranges, options.format);
    Poller poller(connection.loop(), connection.catalogue(), ranges);
    Watcher watcher(options, common.output);
    const RoundEnd end = pollEvery(options.intervalMs, options.once ? 1 : options.cycles,
                                   connection.loop(), poller, [&] { watcher.show(poller); });
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
    addFormatOption(*command, options->format);
    addIntervalOption(*command, options->intervalMs);
    addCountOption(*command, options->cycles, true);
    command->add_flag("-1,--once", options->once, "Stop after one cycle");
    command->add_flag("--log", options->log, "Print one line for each change, also on a terminal");
    addDeadbandOption(*command, options->deadband);
    addExamples(*command, {"fxhost watch D0:4 TV0 X0:8 -n 3",
                           "fxhost watch D1 --log --timestamps --deadband 50 -l 200 -n 10",
                           "fxhost watch -t X -r 0 -c 8 -l 500 -1"});
    command->callback([&action, &common, options] {
        action = [&common, options] { return runWatch(common, *options); };
    });
}

}  // namespace fxtools
