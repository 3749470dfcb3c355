// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost stats: polls for a while and reports on the link: exchanges, reasons for rejection, what
// each block costs, how periods are kept, and a histogram of response times with the time-out that
// follows from them.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/periods.h"
#include "tools/fxhost/views/statistics_report.h"

#include <algorithm>

namespace fxtools {

namespace {

struct StatsOptions
{
    AddressOptions addresses;
    PollOptions poll;
    int cycles = 100;
};

void showReport(const LineReport& report, const OutputOptions& output)
{
    if (output.mode == OutputMode::Json)
        Console().line(lineReportJson(report, output.plc));
    else
        Console().lines(output.mode == OutputMode::Csv ? lineReportCsv(report)
                                                       : lineReportLines(report));
}

// The name for which alone a block is read; empty if there are several.
QString onlyNameIn(const RegisterRange& block, const QVector<Tag>& asked)
{
    QString only;
    for (const Tag& one : asked) {
        const RegisterRange& range = one.asked.range;
        if (!overlap(range, block))
            continue;
        if (!only.isEmpty() || !isInside(range, block))
            return {};
        only = askedName(one);
    }
    return only;
}

// Adds an exchange to the times of its block.
void note(const Exchange& exchange, qint64 tookUs, const RegisterRange& block,
          const QVector<Tag>& asked, QVector<BlockTimes>& times)
{
    const QString registers = fromToText(block);
    auto one = std::find_if(times.begin(), times.end(), [&registers](const BlockTimes& other) {
        return other.registers == registers;
    });
    if (one == times.end()) {
        BlockTimes begun;
        begun.registers = registers;
        begun.registerCount = block.count;
        begun.onlyFor = onlyNameIn(block, asked);
        times.append(begun);
        one = times.end() - 1;
    }
    ++one->frames;
    one->rejected += exchange.answer != DriverAnswer::Accepted;
    one->totalUs += tookUs;
    one->longestUs = std::max(one->longestUs, tookUs);
}

// When each value was read.
class PeriodMeter
{
public:
    explicit PeriodMeter(const WantedPeriods& wanted)
        : m_wanted(wanted), m_readings(wanted.ranges.size())
    {}

    void note(const RegisterRange& block, qint64 nowUs);
    QVector<PeriodTimes> times() const;

private:
    struct Readings
    {
        int number = 0;
        qint64 firstUs = 0;
        qint64 lastUs = 0;
        qint64 longestUs = 0;
    };

    const WantedPeriods& m_wanted;
    QVector<Readings> m_readings;
};

void PeriodMeter::note(const RegisterRange& block, qint64 nowUs)
{
    for (int index = 0; index < m_readings.size(); ++index) {
        if (!isInside(m_wanted.ranges[index].registers, block))
            continue;
        Readings& readings = m_readings[index];
        if (readings.number++ == 0)
            readings.firstUs = nowUs;
        else
            readings.longestUs = std::max(readings.longestUs, nowUs - readings.lastUs);
        readings.lastUs = nowUs;
    }
}

QVector<PeriodTimes> PeriodMeter::times() const
{
    QVector<PeriodTimes> times;
    for (auto period = m_wanted.names.keyBegin(); period != m_wanted.names.keyEnd(); ++period) {
        PeriodTimes one = {m_wanted.namesOf(*period), *period};
        qint64 readUs = 0;
        qint64 periods = 0;
        for (int index = 0; index < m_readings.size(); ++index) {
            const Readings& readings = m_readings[index];
            if (m_wanted.ranges[index].periodUs != *period || readings.number < 2)
                continue;
            readUs += readings.lastUs - readings.firstUs;
            periods += readings.number - 1;
            one.longestUs = std::max(one.longestUs, readings.longestUs);
        }
        one.meanUs = readUs / std::max<qint64>(periods, 1);
        times.append(one);
    }
    return times;
}

// As pollCycles() does. A cycle takes from its end to that of the next one.
ExitCode pollAtPeriods(Connection& connection, Polling& polling, int cycles,
                       const std::function<void(qint64 cycleUs)>& onCycle)
{
    ExchangeLoop& loop = connection.loop();
    connection.waitForLinkWithoutEnd();
    qint64 beganUs = loop.elapsedUs();
    const auto note = [&] {
        const qint64 endedUs = loop.elapsedUs();
        onCycle(endedUs - std::exchange(beganUs, endedUs));
    };
    RoundEnd end = polling.run(1, note);
    const bool goesOn = cycles == 0 || (cycles > 1 && loop.statistics().plcHasAnswered());
    if (end == RoundEnd::Done && goesOn)
        end = polling.run(std::max(cycles - 1, 0), note);
    return end == RoundEnd::Done ? exitCodeOf(loop.statistics()) : exitCodeOf(verdictOf(end));
}

ExitCode runStats(const CommonOptions& common, const StatsOptions& options)
{
    CommandConnection connection(common);
    ExchangeLoop& loop = connection.loop();
    const QVector<Tag> asked = askedOf(options.addresses, connection.services());
    const ConnectionSettings settings = connectionSettings(common);
    Polling polling = pollingOf(connection, settings, options.poll, asked);
    const QVector<Tag> inCycles = polling.isPeriodic() ? QVector<Tag>() : asked;
    QVector<BlockTimes> blocks;
    PeriodMeter meter(polling.wanted());
    Histogram cycleTimes;
    int cycles = 0;
    loop.onExchange = [&](const Exchange& exchange) {
        if (exchange.kind != ExchangeKind::CyclicRead)
            return;
        const RegisterRange block = blockRange(connection.catalogue(), exchange.frame.variable);
        note(exchange, loop.elapsedUs() - exchange.startedUs, block, inCycles, blocks);
        if (cycles > 0 && exchange.answer == DriverAnswer::Accepted)
            meter.note(block, loop.elapsedUs());
    };
    const Progress progress = lateProgressOf(common.output, QStringLiteral("stats"));
    const auto onCycle = [&](qint64 cycleUs) {
        cycleTimes.add(cycleUs);
        if (++cycles <= options.cycles)
            progress(cycles, options.cycles);
    };
    ExitCode code = ExitCode::Good;
    if (polling.isPeriodic()) {
        code = pollAtPeriods(connection, polling, options.cycles, onCycle);
    } else {
        PlanCycle plan(loop, plannerFor(loop, settings, options.poll.planning));
        plan.plan(rangesOf(asked));
        code = pollCycles(connection, plan, options.cycles, onCycle);
    }
    showReport({blocks, loop.statistics(), cycleTimes, loop.elapsedUs(), loop.timeout(),
                polling.isPeriodic() ? meter.times() : QVector<PeriodTimes>()},
               common.output);
    return code;
}

}  // namespace

void addStatsCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("stats", "Measure a link: errors, response times, cycle times");
    const auto options = std::make_shared<StatsOptions>();
    addAddressOptions(*command, options->addresses);
    addPlanningOptions(*command, options->poll.planning);
    addPeriodOption(*command, options->poll);
    options->poll.intervalMs = 0;
    addCountOption(*command, options->cycles);
    addExamples(*command, {"fxhost stats D0:64 -n 20 -b 115200", "fxhost stats D0:64 X0:16 --json",
                           "fxhost stats D0:10 D100:64 --period D0:10=50 -n 20"});
    onRun(*command, action, [&common, options] { return runStats(common, *options); });
}

}  // namespace fxtools
