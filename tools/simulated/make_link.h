// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Makes the link that its settings describe.

#pragma once

#include "tools/link/link.h"
#include "tools/link/link_settings.h"
#include "tools/simulated/bench_control.h"

#include <memory>

namespace fxtools {

struct MadeLink
{
    std::unique_ptr<Link> link;  // not yet open
    BenchControl* control =
        nullptr;  // of a PLC that is simulated inside; lives as long as its link
};

// Throws Failure if the fault plan of a simulated PLC is invalid.
MadeLink makeLink(const LinkSettings& settings);

}  // namespace fxtools
