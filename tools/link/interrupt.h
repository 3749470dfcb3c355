// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Signals as flags that loops check: SIGINT, SIGTERM, SIGHUP of a terminal that is gone, and the
// end of a given time, so that work in progress ends cleanly, and SIGCONT after a stop.

#pragma once

#include <QtGlobal>

#include <functional>

namespace fxtools {

void catchSignals();
bool interrupted();
int interruptSignal();  // SIGINT, SIGTERM, SIGHUP or SIGALRM; 0 before the interrupt

// Ends the work in `timeMs` as an interrupt would.
void interruptAfter(qint64 timeMs);

// What a second interrupt, which kills the program, must do before; async-signal-safe.
void beforeKill(void (*restore)());

// Sleeps for `timeMs`, or until an interrupt; then it returns false. Asks `isInterrupted` often.
bool sleepUnlessInterrupted(qint64 timeMs,
                            const std::function<bool()>& isInterrupted = interrupted);

// Whether the program was stopped and continued since the last call.
bool takeContinued();

}  // namespace fxtools
