// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How often each value is read: as --period says, else as its tag says, else every --interval.
// Where none of them is given, it is a second for addresses, and for tags as fast as the line
// allows.

#pragma once

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/service/polling_cycles.h"

namespace fxtools {

struct PollOptions
{
    PlanningOptions planning;
    std::vector<std::string> periods;  // "D0:10=100"
    std::optional<int> intervalMs;     // nothing: the usual one, and for tags 0
};

void addPeriodOption(CLI::App& command, PollOptions& options);

// --plan, --turnaround, --period and --interval
void addPollOptions(CLI::App& command, PollOptions& options);

// Throws Failure if a period is given for what was not asked for.
Polling pollingOf(Connection& connection, const ConnectionSettings& settings,
                  const PollOptions& options, const QVector<Tag>& asked,
                  const Polling::TellLoad& tellLoad = complain);

}  // namespace fxtools
