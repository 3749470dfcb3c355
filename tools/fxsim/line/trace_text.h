// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One line of trace for people, from one entry: time, client, direction, the bytes in hex, the same
// readable, and what the simulator made of them. Pure text.

#pragma once

#include "tools/fxsim/line/simulator.h"

namespace fxsim {

QByteArray traceLine(const TraceEntry& entry);

// Control characters by name, the rest as they are: "<STX>010C804<ETX>73".
QByteArray readable(const QByteArray& bytes);

}  // namespace fxsim
