// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The bar of a long transfer, for people who want one.

#pragma once

#include "tools/fxhost/views/records.h"

#include <functional>

namespace fxtools {

using Progress = std::function<void(int done, int total)>;

// Does nothing where the output is for programs, or quiet.
Progress progressOf(const OutputOptions& options, const QString& label);

}  // namespace fxtools
