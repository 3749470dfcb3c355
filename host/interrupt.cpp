// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See interrupt.h.

#include "host/interrupt.h"

#include <csignal>

namespace fxhost {

namespace {

volatile std::sig_atomic_t interruptSeen = 0;

extern "C" void noteInterrupt(int signalNumber)
{
    interruptSeen = 1;
    std::signal(signalNumber, SIG_DFL);  // a second one ends the program at once
}

}  // namespace

void catchInterrupts()
{
    std::signal(SIGINT, noteInterrupt);
    std::signal(SIGTERM, noteInterrupt);
}

bool interrupted()
{
    return interruptSeen != 0;
}

}  // namespace fxhost
