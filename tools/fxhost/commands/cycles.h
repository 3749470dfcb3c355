// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Polling cycle after cycle, and how what is asked for is cut into blocks: --plan and --turnaround.

#pragma once

#include "tools/exchange/poller.h"
#include "tools/fxhost/commands/connection.h"
#include "tools/service/polling_cycles.h"
#include "tools/tags/shortest_plan.h"

namespace fxtools {

struct PlanningOptions
{
    bool isGiven = false;      // the driver's own plan
    double turnaroundMs = -1;  // below 0: as measured
};

void addPlanningOptions(CLI::App& command, PlanningOptions& options);
void addTurnaroundOption(CLI::App& command, double& turnaroundMs, const std::string& unlessGiven);

std::optional<qint64> turnaroundUsOf(const PlanningOptions& options);

Planner plannerFor(ExchangeLoop& loop, const ConnectionSettings& settings,
                   const PlanningOptions& options);

// -n,--count with `cycles` as its default. At 0 polling goes on until Ctrl-C.
void addCountOption(CLI::App& command, int& cycles);

void addDeadbandOption(CLI::App& command, double& deadband);

// Makes so many cycles of a plan and calls `onCycle` after each complete one. A counted run ends
// early if the PLC has never answered, and every run if the output can no longer be written.
// Returns the exit code for all exchanges so far, or for a lost link or an interrupt.
ExitCode pollCycles(Connection& connection, PlanCycle& plan, int cycles,
                    const std::function<void(qint64 cycleUs)>& onCycle = {});

}  // namespace fxtools
