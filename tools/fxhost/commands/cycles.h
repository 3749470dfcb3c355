// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Polling cycle after cycle, for the commands that do nothing else.

#pragma once

#include "tools/exchange/polling.h"
#include "tools/fxhost/commands/connection.h"

namespace fxtools {

// -n,--count with `cycles` as its default. At 0, if that is allowed, polling goes on until Ctrl-C.
void addCountOption(CLI::App& command, int& cycles, bool mayBeEndless);

// Makes so many cycles and calls `onCycle` after each complete one. A counted run ends early if the
// PLC has never answered, and every run if the output can no longer be written. Returns the exit
// code for all exchanges so far, or for a lost link or an interrupt.
ExitCode pollCycles(Connection& connection, const QVector<RegisterRange>& ranges, int cycles,
                    const std::function<void(qint64 cycleUs)>& onCycle = {});

}  // namespace fxtools
