// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The driver library that was built, loaded once for all tests of this program.

#pragma once

#include "tools/library/registers.h"

namespace tool_tests {

const fxtools::DriverLibrary& driver();
const fxtools::RegisterCatalogue& catalogue();
fxtools::RegisterRange range(const char* address);

}  // namespace tool_tests
