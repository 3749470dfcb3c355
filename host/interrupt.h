// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Ctrl-C and a polite request to end: the first one is noted, so that what is under way can be
// ended in good order; whoever waits or repeats asks for it.

#pragma once

namespace fxhost {

void catchInterrupts();
bool interrupted();

// Whether the program was stopped and goes on since this was asked last.
bool takeContinued();

}  // namespace fxhost
