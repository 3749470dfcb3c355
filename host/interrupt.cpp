// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See interrupt.h.

#include "host/interrupt.h"

#include <csignal>

namespace fxhost {

namespace {

volatile std::sig_atomic_t interruptSeen = 0;

extern "C" void noteInterrupt(int)
{
    interruptSeen = 1;
}

}  // namespace

void catchInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;
    action.sa_flags =
        static_cast<int>(SA_RESETHAND) | SA_RESTART;  // a second one ends the program at once
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool interrupted()
{
    return interruptSeen != 0;
}

}  // namespace fxhost
