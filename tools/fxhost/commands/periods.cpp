// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/periods.h"

#include "tools/exchange/blocks.h"

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr qint64 longestPeriodMs = 86400000;
constexpr int mostNames = 3;

struct GivenPeriod
{
    QString name;
    qint64 periodUs;
    QVector<RegisterRange> registers;

    bool isOf(const RegisterRange& range) const
    {
        return std::any_of(registers.begin(), registers.end(),
                           [&range](const RegisterRange& other) { return overlap(range, other); });
    }
};

QVector<GivenPeriod> givenPeriods(const PollOptions& options, const AddressServices& services)
{
    QVector<GivenPeriod> given;
    for (const std::string& text : options.periods) {
        const std::string name = text.substr(0, text.rfind('='));
        const qint64 periodMs = parseTimeMs(text.substr(name.size() + 1)).value_or(0);
        given.append({QString::fromStdString(name), 1000 * periodMs,
                      rangesOf(AddressOptions{{name}, {}, {}}, services)});
    }
    return given;
}

// The last period that is given for a value counts.
WantedPeriods wantedOf(const QVector<Tag>& asked, const QVector<GivenPeriod>& given,
                       std::optional<int> intervalMs)
{
    WantedPeriods wanted;
    for (const Tag& tag : asked) {
        const bool isTag = !tag.name.isEmpty();
        const int unlessGivenMs =
            tag.periodMs.value_or(intervalMs.value_or(isTag ? 0 : usualIntervalMs));
        const RegisterRange& range = tag.asked.range;
        for (const RegisterRange& part : range.cut(range.together)) {
            const auto period =
                std::find_if(given.crbegin(), given.crend(),
                             [&part](const GivenPeriod& one) { return one.isOf(part); });
            if (period != given.crend())
                wanted.add(part, period->name, period->periodUs);
            else
                wanted.add(part, isTag ? tag.name : tag.asked.text(), qint64(1000) * unlessGivenMs);
        }
    }
    return wanted;
}

void requireAsked(const QVector<GivenPeriod>& given, const QVector<Tag>& asked)
{
    for (const GivenPeriod& period : given) {
        if (std::none_of(asked.begin(), asked.end(),
                         [&period](const Tag& tag) { return period.isOf(tag.asked.range); }))
            throw Failure(ExitCode::Usage, "--period " + period.name + ": not among the addresses");
    }
}

// "line load 134 %: D0:10 every 140 ms instead of 100 ms"
QString textOfLoad(const LineLoad& load, const WantedPeriods& wanted)
{
    QStringList late;
    for (const PeriodLoad& period : load.periods) {
        if (period.isLate()) {
            late += QStringLiteral("%1 every %2 ms instead of %3 ms")
                        .arg(wanted.namesOf(period.wantedUs))
                        .arg(period.expectedUs / 1000)
                        .arg(period.wantedUs / 1000);
        }
    }
    return QStringLiteral("line load %1 %: ").arg(std::lround(100 * load.used)) +
           (late.isEmpty() ? QStringLiteral("all periods are kept")
                           : late.join(QStringLiteral("; ")));
}

}  // namespace

void WantedPeriods::add(const RegisterRange& registers, const QString& name, qint64 periodUs)
{
    ranges.append({registers, periodUs});
    if (!names[periodUs].contains(name))
        names[periodUs].append(name);
}

QString WantedPeriods::namesOf(qint64 periodUs) const
{
    const QStringList all = names.value(periodUs);
    const QString some = all.mid(0, mostNames).join(QStringLiteral(", "));
    const int more = all.size() - mostNames;
    return more > 0 ? some + QStringLiteral(" and %1 more").arg(more) : some;
}

void addPeriodOption(CLI::App& command, PollOptions& options)
{
    command
        .add_option("--period", options.periods,
                    "Period of an address or tag in ms, or with a unit: D0:10=100, D0=0.5s; 0 = as "
                    "fast as the line allows")
        ->type_name("ADDRESS=MS")
        ->allow_extra_args(false)
        ->check(CLI::Validator(
            [](const std::string& text) {
                const std::size_t equals = text.rfind('=');
                const std::optional<qint64> periodMs = equals == std::string::npos
                                                           ? std::nullopt
                                                           : parseTimeMs(text.substr(equals + 1));
                return periodMs && *periodMs >= 0 && *periodMs <= longestPeriodMs
                           ? ""
                           : "'" + text + "' is not a period; use D0:10=100 or D0=0.5s";
            },
            ""));
}

void addPollOptions(CLI::App& command, PollOptions& options)
{
    addPlanningOptions(command, options.planning);
    addPeriodOption(command, options);
    command
        .add_option("-l,--interval", options.intervalMs,
                    "Time between cycles in ms, or 0.5s; 0 = no pause (default: 1000, for tags 0)")
        ->type_name("MS")
        ->transform(timeWithin({0, longestPeriodMs}));
}

Polling::Polling(Connection& connection, const ConnectionSettings& settings,
                 const PollOptions& options, const QVector<Tag>& asked, const TellLoad& tellLoad)
    : m_loop(connection.loop())
{
    const QVector<GivenPeriod> given = givenPeriods(options, connection.services());
    requireAsked(given, asked);
    m_wanted = wantedOf(asked, given, options.intervalMs);
    const bool areInTags = std::any_of(asked.begin(), asked.end(),
                                       [](const Tag& tag) { return tag.periodMs.has_value(); });
    if (!options.areAlwaysPeriods && given.isEmpty() && !areInTags && m_wanted.names.size() == 1) {
        m_intervalUs = m_wanted.names.firstKey();
        m_plain.emplace(m_loop, connection.catalogue(), rangesOf(asked),
                        plannerFor(m_loop, settings, options.planning));
        return;
    }
    if (options.planning.isGiven)
        throw Failure(ExitCode::Usage, "--plan given reads everything in every cycle; values with "
                                       "periods of their own need --plan shortest");
    m_periodic.emplace(m_loop, connection.catalogue(), m_wanted.ranges, baudOf(settings.link),
                       turnaroundUsOf(options.planning), [this, tellLoad](const LineLoad& load) {
                           tellLoad(textOfLoad(load, m_wanted));
                       });
}

QString Polling::loadText() const
{
    return textOfLoad(load(), m_wanted);
}

QStringList Polling::late() const
{
    QStringList names;
    for (const PeriodLoad& period : load().periods) {
        if (period.isLate())
            names += m_wanted.names.value(period.wantedUs);
    }
    return names;
}

qint64 Polling::cycleUs() const
{
    if (!m_periodic)
        return m_intervalUs;
    const QVector<PeriodLoad>& periods = m_periodic->load().periods;
    const auto shortest = std::min_element(periods.begin(), periods.end(),
                                           [](const PeriodLoad& one, const PeriodLoad& other) {
                                               return one.expectedUs < other.expectedUs;
                                           });
    return shortest == periods.end() ? qint64(1000) * usualIntervalMs : shortest->expectedUs;
}

// Cycles begin on a grid of times, so that what they cost does not add up.
RoundEnd Polling::run(int cycles, const std::function<void()>& onCycle,
                      const std::function<void(qint64 timeMs)>& wait)
{
    const qint64 startedUs = m_loop.elapsedUs();
    qint64 cycleEndUs = startedUs;
    for (int cycle = 1;;) {
        const RoundEnd end = m_periodic ? m_periodic->poll() : m_plain->poll();
        if (end == RoundEnd::Interrupted)
            return end;
        qint64 nowUs = m_loop.elapsedUs();
        if (!m_periodic || end != RoundEnd::Done || nowUs >= cycleEndUs) {
            onCycle();
            if (end == RoundEnd::LinkLost)
                return end;
            if (cycle++ == cycles)
                return RoundEnd::Done;
            nowUs = m_loop.elapsedUs();
            const qint64 lengthUs = cycleUs();
            cycleEndUs = nowUs + (lengthUs > 0 ? lengthUs - (nowUs - startedUs) % lengthUs : 0);
        }
        const qint64 nextUs = m_periodic ? std::min(m_periodic->nextUs(), cycleEndUs) : cycleEndUs;
        wait(std::max<qint64>(nextUs - nowUs + 999, 0) / 1000);
    }
}

}  // namespace fxtools
