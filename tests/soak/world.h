// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The world of one seed: what PLC, line and host are like, and what goes wrong how often. Worlds
// keep to what the exchange loop assumes of them: a PLC answers in order and once and is not later
// than five seconds, or three time-outs if it ignores ENQ.

#pragma once

#include "tools/exchange/exchange_loop.h"
#include "tools/fxsim/line/simulator.h"

#include <random>

namespace fxsoak {

using Random = std::mt19937;

bool chance(Random& random, double probability);
int below(Random& random, int limit);

// Chances of what happens at each call of the host to its link.
struct Troubles
{
    double cut = 0;
    double interrupt = 0;
    double stopOrRun = 0;
};

struct World
{
    fxsim::Settings plc;
    fxtools::SessionSettings session;
    fxtools::TimeoutLimits timeout;
    bool isSerial = true;
    int restMs = 0;  // of the host between two rounds of its plan
    Troubles troubles;

    QString text() const;
};

World worldOf(unsigned int seed);

}  // namespace fxsoak
