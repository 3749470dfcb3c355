// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Signals as flags that loops check: SIGINT, SIGTERM and the end of a given time, so that work in
// progress ends cleanly, and SIGCONT after a stop.

#pragma once

#include <QtGlobal>

namespace fxtools {

void catchSignals();
bool interrupted();
int interruptSignal();  // SIGINT, SIGTERM or SIGALRM; 0 before the interrupt

// Ends the work in `timeMs` as an interrupt would.
void interruptAfter(qint64 timeMs);

// Sleeps for `timeMs`, or until an interrupt; then it returns false.
bool sleepUnlessInterrupted(qint64 timeMs);

// Whether the program was stopped and continued since the last call.
bool takeContinued();

}  // namespace fxtools
