// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The default program of the simulated PLC: it gives a host something to watch. It changes only
// these bytes:
//
//   0x0080         eight inputs; input k toggles every 500 (k + 1) ms
//   0x0100         eight relays; one of them is on and moves up every 250 ms
//   0x0800-0x0807  four timers, in tenths of a second up to 50, 100, 150, 200, then held for a
//                  second
//   0x00C0         bits 0-3: their contacts, on while the timer holds
//   0x00A0         bits 0-3: four outputs that follow these contacts
//   0x0A00-0x0A03  two counters: rising edges of the first input, and tenths of a second
//   0x01C0         bits 0-1: their contacts, on from 10 and from 1000 up
//   0x0C00-0x0C03  a 32-bit counter that starts at 65,000 and adds 37 every tenth of a second
//   0x1000-0x1013  ten words: seconds, a triangle of 0-1000, a sine of -1000 to 1000, a sawtooth
//                  of 0-99, one bit that moves through the 64 bits of words 4-7, and milliseconds
//                  in words 8-9
//
// Counters add to what they find, so a host may set them; everything else depends on time alone.

#pragma once

#include "tools/fxsim/plc/plc_memory.h"

namespace fxsim {

class SampleProgram : public Program
{
public:
    void start(PlcMemory& memory) override;
    void advance(PlcMemory& memory, qint64 elapsedMs) override;

private:
    qint64 m_elapsedMs = 0;
};

}  // namespace fxsim
