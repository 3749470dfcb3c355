// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See progress.h.

#include "host/commands/progress.h"

#include "host/report/console.h"

namespace fxhost {

Progress progressOf(const OutputOptions& options, const QString& label)
{
    if (options.quiet || options.mode != OutputMode::People)
        return [](int, int) {};
    return [label](int done, int total) { Console().progress(label, done, total); };
}

}  // namespace fxhost
