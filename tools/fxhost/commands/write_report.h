// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The text for a failed write. It always says what the PLC may hold now.

#pragma once

#include "tools/exchange/polling.h"

namespace fxtools {

// "1 of 3 frames written: no reply; D0 … D31 written, D32 … D63 possibly written, nothing else".
QString failureText(const WriteOutcome& outcome);

}  // namespace fxtools
