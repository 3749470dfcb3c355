// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/planning.h"

#include <cmath>

namespace fxtools {

void addPlanningOptions(CLI::App& command, PlanningOptions& options)
{
    command
        .add_option_function<std::string>(
            "--plan", [&options](const std::string& plan) { options.isGiven = plan == "given"; },
            "shortest (default), or given: the driver's own plan")
        ->type_name("PLAN")
        ->check(CLI::IsMember({"given", "shortest"}).description(""));
    addTurnaroundOption(command, options.turnaroundMs, "as measured");
}

void addTurnaroundOption(CLI::App& command, double& turnaroundMs, const std::string& unlessGiven)
{
    command
        .add_option("--turnaround", turnaroundMs,
                    "Time from a request to its reply in ms (default: " + unlessGiven + ")")
        ->type_name("MS")
        ->check(CLI::Range(0.0, 60000.0).description(""));
}

int baudOf(const LinkSettings& link)
{
    const auto* const serial = std::get_if<SerialSettings>(&link);
    const auto* const simulated = std::get_if<SimulatedSettings>(&link);
    const int baud = serial && serial->line ? serial->line->baud
                     : simulated            ? simulated->baud.value_or(0)
                                            : 0;
    return baud > 0 ? baud : LineCost().baud;
}

Planner plannerFor(ExchangeLoop& loop, const ConnectionSettings& settings,
                   const PlanningOptions& options)
{
    if (options.isGiven)
        return {};
    std::optional<qint64> turnaroundUs;
    if (options.turnaroundMs >= 0)
        turnaroundUs = std::llround(1000 * options.turnaroundMs);
    return shortestPlanner(loop, baudOf(settings.link), turnaroundUs);
}

}  // namespace fxtools
