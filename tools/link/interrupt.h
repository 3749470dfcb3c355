// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Signals, noted for whoever waits or repeats and asks for them: Ctrl-C and a polite request to
// end, so that what is under way can be ended in good order, and the going on after a stop.

#pragma once

#include <QtGlobal>

namespace fxtools {

void catchSignals();
bool interrupted();

// Sleeps so long, or until an interrupt: then false.
bool sleepUnlessInterrupted(qint64 timeMs);

// Whether the program was stopped and goes on since this was asked last.
bool takeContinued();

}  // namespace fxtools
