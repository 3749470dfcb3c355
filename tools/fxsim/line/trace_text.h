// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One trace line from one entry: time in seconds, client, direction, the bytes in hex, the same
// bytes readable, and what the simulator made of them.

#pragma once

#include "tools/fxsim/line/simulator.h"

namespace fxsim {

QByteArray traceLine(const TraceEntry& entry);

// Control characters by name, the rest as they are: "<STX>010C804<ETX>73".
QByteArray readable(const QByteArray& bytes);

}  // namespace fxsim
