// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The progress bar of a long transfer.

#pragma once

#include "tools/fxhost/views/records.h"

#include <functional>

namespace fxtools {

using Progress = std::function<void(int done, int total)>;

// Does nothing if the output is for programs or quiet.
Progress progressOf(const OutputOptions& options, const QString& label);

// The same for what is quick as a rule: on a terminal from the second second on, and nothing is
// left of it at the end.
Progress lateProgressOf(const OutputOptions& options, const QString& label);

// The same with the time left, as far as the time so far tells it.
Progress timedProgressOf(const OutputOptions& options, const QString& label);

}  // namespace fxtools
