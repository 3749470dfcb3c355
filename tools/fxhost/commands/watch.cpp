// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost watch: values as they change: a live screen on a terminal, otherwise a line for each
// change. Continues when a lost link is back.
//
// The screen is redrawn in place, also while a lost link is awaited. Everything runs in one thread:
// keys are taken and the screen is drawn whenever the exchange loop asks whether it was
// interrupted, at least every tenth of a second.

#include "tools/exchange/blocks.h"
#include "tools/exchange/checked_write.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/periods.h"
#include "tools/fxhost/commands/poll_result.h"
#include "tools/fxhost/views/live_view.h"
#include "tools/fxhost/views/log_file.h"

#include <QElapsedTimer>

namespace fxtools {

namespace {

constexpr int bitsInCell = 16;
constexpr qint64 napMs = 20;
constexpr qint64 redrawEveryMs = 100;

struct WatchOptions
{
    AddressOptions addresses;
    ValueStyle style;
    PollOptions poll;
    int cycles = 0;  // 0: until Ctrl-C
    bool once = false;
    bool log = false;
    double deadband = 0;
};

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
           (polled.alarm != found->alarm ||
            differs(polled.value, found->value, polled.deadband.value_or(m_options.deadband)));
}

// What stands beside an old value: one or two words.
QString reasonText(ReplyVerdict problem)
{
    return problem == ReplyVerdict::Silence ? verdictText(problem)
                                            : verdictName(problem).replace('-', ' ');
}

// One cell for each value; bits stand together.
QVector<Reading> readingsOf(const Poller& poller, const Tag& tag)
{
    const AskedAddress& asked = tag.asked;
    QVector<Reading> readings;
    if (asked.range.type.isBit() && !asked.isGroup) {
        for (const RegisterRange& part : asked.range.cut(bitsInCell)) {
            std::optional<ReplyVerdict> problem;
            for (int index = 0; index < part.count && !problem; ++index)
                problem = poller.problemOf(part, index);
            readings.append({tag.name.isEmpty() ? part.text() : tag.name,
                             bitsText(poller.values(part)), std::nullopt,
                             problem ? reasonText(*problem) : QString(), std::nullopt});
        }
        return readings;
    }
    for (const PolledValue& polled : polledValues(poller, tag)) {
        const QJsonValue& value = polled.value;
        QStringList words = {value.toVariant().toString()};
        if (!polled.problem)
            words << polled.unit << polled.alarm;
        words.removeAll(QString());
        readings.append({polled.name, words.join(' '),
                         value.isDouble() ? std::optional(value.toDouble()) : std::nullopt,
                         polled.problem ? reasonText(*polled.problem) : QString(), polled.deadband,
                         !polled.alarm.isEmpty()});
    }
    return readings;
}

QString linkLabel(const LinkSettings& link)
{
    const bool isSimulated = std::holds_alternative<SimulatedSettings>(link);
    return linkText(link) + (isSimulated ? " (simulated PLC)" : "");
}

class LiveWatch
{
public:
    LiveWatch(const CommonOptions& common, const WatchOptions& options)
        : m_options(options), m_timestamps(common.output.timestamps),
          m_view({linkLabel(common.link.settings(SimulatedSettings())), !common.output.quiet,
                  common.link.named.has_value(),
                  [this](const QString& assignment) { return mistakeIn(assignment); }})
    {
        m_clock.start();
    }

    ExitCode run(const CommonOptions& common);

private:
    bool tick();
    void wait(qint64 timeMs);
    void showLinkState(const QString& state);
    void showCycle(qint64 tookUs);
    QString mistakeIn(const QString& assignment) const;
    void write(const QString& assignment);
    void draw();

    const WatchOptions& m_options;
    bool m_timestamps;
    Console m_console;
    Keyboard m_keyboard;
    LiveView m_view;
    QElapsedTimer m_clock;
    qint64 m_drawnMs = 0;
    bool m_quits = false;
    QString m_toWrite;
    Connection* m_connection = nullptr;  // while it runs
    Poller* m_poller = nullptr;
    QVector<Tag> m_asked;
    PollResult m_lastCycle;
    int m_cycle = 0;
    QString m_load;  // of the line, once it did not keep all periods
};

ExitCode LiveWatch::run(const CommonOptions& common)
{
    ConnectionSettings settings = connectionSettings(common);
    settings.loop.isInterrupted = [this] { return tick(); };
    settings.onLinkState = [this](const QString&, const QString& state) { showLinkState(state); };
    Connection connection(settings);
    connection.waitForLinkWithoutEnd();
    m_asked = askedOf(m_options.addresses, connection.services(), m_options.style);
    m_connection = &connection;
    Polling polling = pollingOf(connection, settings, m_options.poll, m_asked,
                                [this](const QString& text) { m_load = ", " + text; });
    m_poller = &polling.poller();
    qint64 startedUs = connection.loop().elapsedUs();
    const RoundEnd end = polling.run(
        m_options.once ? 1 : m_options.cycles,
        [&] { showCycle(connection.loop().elapsedUs() - startedUs); },
        [&](qint64 timeMs) {
            wait(timeMs);
            startedUs = connection.loop().elapsedUs();
        });
    m_view.end();
    draw();
    const bool isDone = end == RoundEnd::Done || (end == RoundEnd::Interrupted && m_quits);
    return isDone ? m_lastCycle.exitCode() : exitCodeOf(verdictOf(end));
}

// Called wherever something is awaited. Returns whether to stop.
bool LiveWatch::tick()
{
    bool hasKeys = false;
    for (const Key& key : m_keyboard.pressed()) {
        hasKeys = true;
        const LiveView::Wish wish = m_view.press(key);
        m_quits |= wish == LiveView::Wish::Quit;
        if (wish == LiveView::Wish::Write)
            m_toWrite = m_view.takeAssignment();
    }
    if (hasKeys || m_clock.elapsed() - m_drawnMs >= redrawEveryMs)
        draw();
    return m_quits || interrupted();
}

// Between two cycles nothing is in flight: the time for a write.
void LiveWatch::wait(qint64 timeMs)
{
    QElapsedTimer waited;
    waited.start();
    while (!tick()) {
        if (!m_toWrite.isEmpty())
            write(std::exchange(m_toWrite, QString()));
        if (waited.elapsed() >= timeMs && !m_view.isPaused())
            break;
        const qint64 leftMs = m_view.isPaused() ? napMs : timeMs - waited.elapsed();
        sleepUnlessInterrupted(std::min(leftMs, napMs));
    }
}

QString LiveWatch::mistakeIn(const QString& assignment) const
{
    if (!m_connection)
        return QStringLiteral("not connected yet");
    try {
        const TagWrite wanted = parseWrite(assignment, m_connection->services(), m_options.style);
        requireOwnMemory(wanted.asked.range, m_connection->catalogue());
        return {};
    } catch (const Failure& failure) {
        return failure.text();
    }
}

// An assignment without a mistake.
void LiveWatch::write(const QString& assignment)
{
    try {
        const TagWrite wanted = parseWrite(assignment, m_connection->services(), m_options.style);
        const CheckedWrite write = writeAndReadBack(m_connection->loop(), wanted);
        m_view.setMessage(!write.outcome           ? wanted.asked.text() + " could not be read"
                          : write.outcome->problem ? verdictText(*write.outcome->problem)
                          : write.isThere()        ? assignment + " written and read back"
                                                   : assignment + " written, but not read back");
    } catch (const Failure& failure) {
        m_view.setMessage(failure.text());
    }
    m_poller->readEverythingAgain();
}

void LiveWatch::showLinkState(const QString& state)
{
    const bool isBack = m_connection && m_connection->link().isOpen();
    if (!isBack)
        m_view.markAllStale(reasonText(ReplyVerdict::LinkLost));
    m_view.setState(state, isBack, m_clock.elapsed());
    draw();
}

void LiveWatch::showCycle(qint64 tookUs)
{
    QVector<Reading> readings;
    m_lastCycle = {};
    for (const Tag& tag : m_asked)
        readings += readingsOf(*m_poller, tag);
    for (const PolledValue& polled : polledValues(*m_poller, m_asked))
        m_lastCycle.count(polled);
    m_view.update(readings, m_clock.elapsed(), m_options.deadband);
    ++m_cycle;
    const QString cycle = QStringLiteral("cycle %1: %2 ms%3")
                              .arg(m_cycle)
                              .arg(tookUs / 1000)
                              .arg(m_timestamps ? ", " + timestamp() : QString()) +
                          m_load;
    if (m_connection->link().isOpen())
        m_view.setState(m_lastCycle.good() > 0 ? cycle : verdictText(*m_lastCycle.firstProblem()),
                        m_lastCycle.good() > 0, m_clock.elapsed());
    draw();
}

void LiveWatch::draw()
{
    m_drawnMs = m_clock.elapsed();
    m_console.redraw(m_view.lines(m_console, Console::size(), m_drawnMs));
}

ExitCode runWatch(const CommonOptions& common, const WatchOptions& options)
{
    const bool isLive =
        Console().isTerminal() && !options.log && common.output.mode == OutputMode::People;
    if (isLive)
        return LiveWatch(common, options).run(common);
    CommandConnection connection(common);
    connection.waitForLinkWithoutEnd();
    const QVector<Tag> asked = askedOf(options.addresses, connection.services(), options.style);
    Polling polling = pollingOf(connection, connectionSettings(common), options.poll, asked);
    Watcher watcher(options, common.output, asked);
    const RoundEnd end = polling.run(options.once ? 1 : options.cycles,
                                     [&] { watcher.show(polledValues(polling.poller(), asked)); });
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
    addPollOptions(*command, options->poll);
    addCountOption(*command, options->cycles);
    command->add_flag("-1,--once", options->once, "Stop after one cycle");
    command->add_flag("--log", options->log, "Print one line for each change, also on a terminal");
    addDeadbandOption(*command, options->deadband);
    addExamples(*command, {"fxhost watch D0:4 TV0 X0:8 -n 3",
                           "fxhost watch D1 --log --timestamps --deadband 50 -l 200 -n 10",
                           "fxhost watch -t X -r 0 -c 8 -l 500 -1"});
    onRun(*command, action, [&common, options] { return runWatch(common, *options); });
}

}  // namespace fxtools
