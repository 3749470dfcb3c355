// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Signals as flags that loops check: SIGINT and SIGTERM, so that work in progress ends cleanly, and
// SIGCONT after a stop.

#pragma once

#include <QtGlobal>

namespace fxtools {

void catchSignals();
bool interrupted();

// Sleeps for `timeMs`, or until an interrupt; then it returns false.
bool sleepUnlessInterrupted(qint64 timeMs);

// Whether the program was stopped and continued since the last call.
bool takeContinued();

}  // namespace fxtools
