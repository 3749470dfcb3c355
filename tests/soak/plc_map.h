// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Where the registers that the soak uses lie in the memory of the simulated PLC, so that what the
// driver says can be compared with what the PLC holds. A table of its own: nothing here was asked
// of the driver. The runs are chosen so that no two share a byte.

#pragma once

#include "tools/fxsim/line/simulator.h"

#include <QString>

#include <array>

namespace fxsoak {

constexpr int bitsPerByte = 8;
constexpr int bitsPerWord = 16;

struct PlcRun
{
    const char* type;
    int first;
    int count;
    int bits;      // of one register: 1, 16 or 32
    int readBase;  // byte address of register number `origin`
    int writeBase;
    int origin;
    bool writable;

    bool isBit() const { return bits == 1; }
};

constexpr int plcRunCount = 12;
const std::array<PlcRun, plcRunCount>& plcRuns();
const PlcRun& plcRun(const QString& type);  // throws std::out_of_range

enum class Side
{
    Read,
    Written,
};

quint32 plcValue(const fxsim::PlcMemory& memory, const PlcRun& run, int number, Side side);

// As the PLC's own program would, not as a frame from the host.
void setPlcValue(fxsim::PlcMemory& memory, const PlcRun& run, int number, quint32 value);

// What is written to a special data register shows where it is read.
fxsim::MirrorWindow specialRegisters();

}  // namespace fxsoak
