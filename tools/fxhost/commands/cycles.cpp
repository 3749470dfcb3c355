// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/cycles.h"

#include <cmath>

namespace fxtools {

namespace {

constexpr int longestTurnaroundMs = 60000;

}  // namespace

void addPlanningOptions(CLI::App& command, PlanningOptions& options)
{
    command
        .add_option_function<std::string>(
            "--plan", [&options](const std::string& plan) { options.isGiven = plan == "given"; },
            "shortest (default), or given: the driver's own plan")
        ->type_name("PLAN")
        ->check(oneOf({"shortest", "given"}));
    addTurnaroundOption(command, options.turnaroundMs, "as measured");
}

void addTurnaroundOption(CLI::App& command, double& turnaroundMs, const std::string& unlessGiven)
{
    command
        .add_option("--turnaround", turnaroundMs,
                    "Time from a request to its reply in ms (default: " + unlessGiven + ")")
        ->type_name("MS")
        ->check(numberWithin(0, longestTurnaroundMs));
}

std::optional<qint64> turnaroundUsOf(const PlanningOptions& options)
{
    if (options.turnaroundMs < 0)
        return std::nullopt;
    return std::llround(1000 * options.turnaroundMs);
}

Planner plannerFor(ExchangeLoop& loop, const ConnectionSettings& settings,
                   const PlanningOptions& options)
{
    if (options.isGiven)
        return {};
    return shortestPlanner(loop, baudOf(settings.link), turnaroundUsOf(options));
}

void addCountOption(CLI::App& command, int& cycles)
{
    const std::string endless = cycles == 0 ? " = until Ctrl-C" : "; 0 = until Ctrl-C";
    command
        .add_option("-n,--count", cycles,
                    "Number of cycles (default: " + std::to_string(cycles) + endless + ")")
        ->type_name("N")
        ->check(within({0, mostCycles}));
}

void addDeadbandOption(CLI::App& command, double& deadband)
{
    command.add_option("--deadband", deadband, "Ignore changes up to NUMBER")
        ->type_name("NUMBER")
        ->check(CLI::Validator(
            [](const std::string& text) {
                bool isNumber = false;
                const double number = QString::fromStdString(text).toDouble(&isNumber);
                return isNumber && number >= 0 ? "" : "'" + text + "' is not a number of 0 or more";
            },
            ""));
}

ExitCode pollCycles(Connection& connection, PlanCycle& plan, int cycles,
                    const std::function<void(qint64 cycleUs)>& onCycle)
{
    ExchangeLoop& loop = connection.loop();
    connection.waitForLinkWithoutEnd();
    for (int cycle = 0; (cycles == 0 || cycle < cycles); ++cycle) {
        const qint64 startedUs = loop.elapsedUs();
        const RoundEnd end = plan.poll().end;
        if (end == RoundEnd::Interrupted || end == RoundEnd::LinkLost)
            return exitCodeOf(verdictOf(end));
        if (end == RoundEnd::NoAnswer && cycles != 0)
            break;
        if (end == RoundEnd::Done && onCycle)
            onCycle(loop.elapsedUs() - startedUs);
    }
    return exitCodeOf(loop.statistics());
}

}  // namespace fxtools
