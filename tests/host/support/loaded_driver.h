// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The driver library that was built, loaded once for all tests of this program.

#pragma once

#include "host/registers.h"

namespace fxhost_tests {

const fxhost::DriverLibrary& driver();
const fxhost::RegisterCatalogue& catalogue();
fxhost::RegisterRange range(const char* address);

}  // namespace fxhost_tests
