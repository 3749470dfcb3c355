// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/periods.h"

#include "tools/exchange/blocks.h"

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr qint64 longestPeriodMs = 86400000;

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
                wanted.add(part, askedName(tag), qint64(1000) * unlessGivenMs);
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

}  // namespace

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

Polling pollingOf(Connection& connection, const ConnectionSettings& settings,
                  const PollOptions& options, const QVector<Tag>& asked,
                  const Polling::TellLoad& tellLoad)
{
    const QVector<GivenPeriod> given = givenPeriods(options, connection.services());
    requireAsked(given, asked);
    const WantedPeriods wanted = wantedOf(asked, given, options.intervalMs);
    const bool areInTags = std::any_of(asked.begin(), asked.end(),
                                       [](const Tag& tag) { return tag.periodMs.has_value(); });
    if (given.isEmpty() && !areInTags && wanted.names.size() == 1)
        return Polling(connection.loop(), connection.catalogue(), wanted, rangesOf(asked),
                       plannerFor(connection.loop(), settings, options.planning));
    if (options.planning.isGiven)
        throw Failure(ExitCode::Usage, "--plan given reads everything in every cycle; values with "
                                       "periods of their own need --plan shortest");
    return Polling(connection.loop(), connection.catalogue(), wanted, baudOf(settings.link),
                   turnaroundUsOf(options.planning), tellLoad);
}

}  // namespace fxtools
