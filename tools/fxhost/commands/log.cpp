// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost log: values over time, for a spreadsheet or a program: a row for each cycle or for each
// change, in a file that is rotated or on standard output. A lost link leaves a row without values.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/periods.h"
#include "tools/fxhost/commands/poll_result.h"
#include "tools/fxhost/views/log_file.h"
#include "tools/link/interrupt.h"

#include <QRegularExpression>

#include <csignal>

namespace fxtools {

namespace {

const std::string standardOutput = "-";
constexpr qint64 longestDurationMs = qint64(3660) * 86400 * 1000;

struct LogOptions
{
    AddressOptions addresses;
    ValueStyle style;
    PollOptions poll;
    int cycles = 0;  // 0: until stopped
    qint64 durationMs = 0;
    bool onlyChanges = false;
    double deadband = 0;
    std::string file = standardOutput;
    bool force = false;
    bool append = false;
    Rotation rotation;
};

LogFile::Settings fileSettings(const LogOptions& options)
{
    const bool rotates = options.rotation.bytes > 0 || options.rotation.periodMs > 0;
    if (options.file == standardOutput && (options.append || rotates))
        throw Failure(ExitCode::Usage, "--append and --rotate-... need --output FILE");
    if (options.append && options.force)
        throw Failure(ExitCode::Usage, "--append continues a file, --force replaces it: give one");
    return {QString::fromStdString(options.file), options.force, options.append, options.rotation};
}

// "no reply" if that is so for all of them, else "D1 D2: refused by the PLC (NAK)".
QString errorsOf(const QVector<PolledValue>& values)
{
    QMap<QString, QStringList> names;
    for (const PolledValue& value : values) {
        if (value.problem)
            names[value.error().toString()] += value.name;
    }
    QStringList errors;
    for (auto reason = names.begin(); reason != names.end(); ++reason) {
        const bool isForAll = reason->size() == values.size();
        errors += isForAll ? reason.key() : reason->join(' ') + ": " + reason.key();
    }
    return errors.join(QStringLiteral("; "));
}

// Writes the rows of one log.
class Logger
{
public:
    Logger(const Connection& connection, const LogOptions& options, const OutputOptions& output,
           const QStringList& names, bool hasAlarms)
        : m_options(options), m_format(output, names, hasAlarms),
          m_gap(names.size(), QJsonValue(QJsonValue::Undefined)),
          m_file(fileSettings(options), m_format.heading(), connection.catalogue())
    {}

    void addCycle(const QVector<PolledValue>& values);
    void addGap(const QString& reason);
    int rows() const { return m_file.lines(); }
    ExitCode exitCode() const { return m_lastCycle.exitCode(); }

private:
    void add(const LogRow& row);

    const LogOptions& m_options;
    LogFormat m_format;
    QVector<QJsonValue> m_gap;
    LogFile m_file;
    PollResult m_lastCycle;
    std::optional<LogRow> m_last;
};

void Logger::addCycle(const QVector<PolledValue>& values)
{
    LogRow row{QDateTime::currentDateTime(), {}, errorsOf(values), {}};
    QVector<double> deadbands;
    m_lastCycle = {};
    for (const PolledValue& value : values) {
        m_lastCycle.count(value);
        row.values.append(value.value);
        row.alarms.append(value.alarm);
        row.raws.append(value.tag.isEmpty() ? QJsonValue(QJsonValue::Undefined) : value.raw);
        deadbands.append(value.deadband.value_or(m_options.deadband));
    }
    if (!m_options.onlyChanges || !m_last || differs(row, *m_last, deadbands))
        add(row);
}

void Logger::addGap(const QString& reason)
{
    add({QDateTime::currentDateTime(), m_gap, reason, {}});
}

void Logger::add(const LogRow& row)
{
    m_file.write(m_format.line(row), row.time);
    m_last = row;
}

ExitCode logUntilStopped(Connection& connection, const CommonOptions& common,
                         const LogOptions& options)
{
    const QVector<Tag> asked = askedOf(options.addresses, connection.services(), options.style);
    PollOptions poll = options.poll;
    if (!options.onlyChanges)  // a row each time would be a flood
        poll.intervalMs = poll.intervalMs.value_or(usualIntervalMs);
    Polling polling = pollingOf(connection, connectionSettings(common), poll, asked);
    const auto values = [&] { return polledValues(polling.poller(), asked); };
    QStringList names;
    for (const PolledValue& value : values())
        names += value.name;
    const bool hasAlarms = std::any_of(
        asked.begin(), asked.end(), [](const Tag& tag) { return tag.alarmLow || tag.alarmHigh; });
    Logger logger(connection, options, common.output, names, hasAlarms);
    const auto reconnect = connection.loop().onLinkLost;
    connection.loop().onLinkLost = [&] {
        logger.addGap(verdictText(ReplyVerdict::LinkLost));
        return reconnect();
    };
    const RoundEnd end = polling.run(options.cycles, [&] { logger.addCycle(values()); });
    if (options.file != standardOutput) {
        const QString path = QString::fromStdString(options.file);
        showResult(common.output, "  " + path + ": " + counted(logger.rows(), "row") + " written",
                   {{"file", path}, {"rows", logger.rows()}});
    }
    return end == RoundEnd::Done ? logger.exitCode() : exitCodeOf(verdictOf(end));
}

// Asked to stop by the system or by --duration, the log is complete.
ExitCode runLog(const CommonOptions& common, const LogOptions& options)
{
    ExitCode code = ExitCode::Interrupted;
    try {
        fileSettings(options);  // before anything is sent
        CommandConnection connection(common);
        connection.waitForLinkWithoutEnd();
        if (options.durationMs > 0)
            interruptAfter(options.durationMs);
        code = logUntilStopped(connection, common, options);
    } catch (const Failure& failure) {
        if (failure.code() != ExitCode::Interrupted)
            throw;
    }
    const bool wasAsked = interruptSignal() == SIGTERM || interruptSignal() == SIGALRM;
    return code == ExitCode::Interrupted && wasAsked ? ExitCode::Good : code;
}

// "10M" becomes "10485760". Returns what is wrong.
std::string inBytes(std::string& text)
{
    static const QRegularExpression form(QStringLiteral("^(\\d{1,9})([kMG]?)$"));
    const QRegularExpressionMatch match = form.match(QString::fromStdString(text));
    if (!match.hasMatch())
        return "'" + text + "' is not a size; use 50000, 500k, 10M or 1G";
    const qint64 number = match.captured(1).toLongLong();
    const int unit = QStringLiteral("kMG").indexOf(match.captured(2)) + 1;
    text = std::to_string(match.captured(2).isEmpty() ? number : number << 10 * unit);
    return {};
}

void addLogFileOptions(CLI::App& command, LogOptions& options)
{
    command.add_option("--output", options.file, "File to write (default: -, standard output)")
        ->type_name("FILE");
    command.add_flag("--append", options.append, "Continue an existing file");
    command.add_flag("--force", options.force, "Replace an existing file");
    command
        .add_option("--rotate-size", options.rotation.bytes,
                    "New file before one is larger than SIZE: 500k, 10M")
        ->type_name("SIZE")
        ->transform(CLI::Validator(inBytes, ""));
    command
        .add_option("--rotate-every", options.rotation.periodMs,
                    "New file at each full TIME of the clock: 1h, 1d")
        ->type_name("TIME")
        ->transform(timeWithin({1000, longestDurationMs}));
}

}  // namespace

void addLogCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("log", "Save values over time as CSV or JSON lines");
    const auto options = std::make_shared<LogOptions>();
    addAddressOptions(*command, options->addresses);
    addFormatOption(*command, options->style);
    addPollOptions(*command, options->poll);
    addCountOption(*command, options->cycles);
    command->add_option("--duration", options->durationMs, "Stop after TIME: 90s, 10min, 8h, 1d")
        ->type_name("TIME")
        ->transform(timeWithin({1, longestDurationMs}));
    command->add_flag("--changes", options->onlyChanges, "Save a row only if a value has changed");
    addDeadbandOption(*command, options->deadband);
    addLogFileOptions(*command, *options);
    addExamples(*command, {"fxhost log D0:4 X0:8 -l 500 -n 4",
                           "fxhost log D0 TV0 --changes --deadband 5 --duration 2s --json",
                           "fxhost log D0:4 --output log.csv --rotate-every 1d -n 3"});
    onRun(*command, action, [&common, options] { return runLog(common, *options); });
}

}  // namespace fxtools
