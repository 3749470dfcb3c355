// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/progress.h"

#include "tools/fxhost/views/console.h"

namespace fxtools {

Progress progressOf(const OutputOptions& options, const QString& label)
{
    if (options.quiet || options.mode != OutputMode::People)
        return [](int, int) {};
    return [label](int done, int total) { Console().progress(label, done, total); };
}

}  // namespace fxtools
