// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What runs inside the PLC and changes its memory over time. The simulator starts it at power-on
// and advances it with each scan; the time counts from that start.

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
