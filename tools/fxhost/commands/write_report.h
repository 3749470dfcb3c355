// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What became of a write, in words: never silent about what the PLC may hold now.

#pragma once

#include "tools/exchange/polling.h"

namespace fxtools {

// "1 of 3 frames written: no answer; D0 … D31 arrived, D32 … D63 may have arrived, nothing else".
QString failureText(const WriteOutcome& outcome);

}  // namespace fxtools
