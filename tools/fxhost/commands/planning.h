// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How what is asked for is cut into blocks: --plan and --turnaround.

#pragma once

#include "tools/fxhost/commands/connection.h"
#include "tools/tags/shortest_plan.h"

namespace fxtools {

struct PlanningOptions
{
    bool isGiven = false;      // the driver's own plan
    double turnaroundMs = -1;  // below 0: as measured
};

void addPlanningOptions(CLI::App& command, PlanningOptions& options);
void addTurnaroundOption(CLI::App& command, double& turnaroundMs, const std::string& unlessGiven);

// The speed of a line; the usual one where only the other end knows it.
int baudOf(const LinkSettings& link);

Planner plannerFor(ExchangeLoop& loop, const ConnectionSettings& settings,
                   const PlanningOptions& options);

}  // namespace fxtools
