// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What runs inside the PLC: something that changes its memory as time goes by. The simulator starts
// it at power-on and lets it advance with each scan; the time is counted from that start.

#pragma once

#include "tools/fxsim/plc/plc_memory.h"

namespace fxsim {

class Program
{
public:
    virtual ~Program() = default;
    virtual void start(PlcMemory& memory) = 0;
    virtual void advance(PlcMemory& memory, qint64 elapsedMs) = 0;
};

}  // namespace fxsim
