// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost watch on a terminal: one screen that is redrawn in place, also while a lost link is
// awaited, and keys. Everything runs in one thread: keys are taken and the screen is drawn whenever
// the exchange loop asks whether it was interrupted, at least every tenth of a second.

#pragma once

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/planning.h"
#include "tools/library/values.h"

namespace fxtools {

struct WatchOptions
{
    AddressOptions addresses;
    ValueStyle style;
    PlanningOptions planning;
    int intervalMs = 1000;
    int cycles = 0;  // 0: until Ctrl-C
    bool once = false;
    bool log = false;
    double deadband = 0;
};

ExitCode runLiveWatch(const CommonOptions& common, const WatchOptions& options);

}  // namespace fxtools
