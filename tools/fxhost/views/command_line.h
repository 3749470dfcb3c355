// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The command line that works on a line that was measured, for a person to copy.

#pragma once

#include "tools/exchange/diagnosis.h"

namespace fxtools {

QString commandLine(const Finding& finding);

}  // namespace fxtools
