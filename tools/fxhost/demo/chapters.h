// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The chapters of the demo, in their order. Each prints what it does and checks the result.

#pragma once

#include "tools/fxhost/demo/demo_bench.h"

namespace fxtools {

void showRegisterTypes(DemoBench& bench);
void showPlan(DemoBench& bench);
void showLiveValues(DemoBench& bench, int forMs);  // until an interrupt if `forMs` is negative
void showWrites(DemoBench& bench);
void showConditionalRead(DemoBench& bench);
void showRecipe(DemoBench& bench);
void showTrouble(DemoBench& bench);
void showSummary(DemoBench& bench);

}  // namespace fxtools
