// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A recipe transfer. The driver transfers entry after entry between the recipe memory and the PLC
// and reports only the end; which entry failed, and why, follows from the exchanges.

#pragma once

#include "tools/exchange/polling.h"

namespace fxtools {

struct RecipeOutcome
{
    int entries = 0;
    int transferred = 0;
    std::optional<ReplyVerdict> problem;  // of the entry after the transferred ones
    bool isUncertain = false;             // that entry may have been written

    bool isGood() const { return !problem && transferred == entries; }
};

// Calls `onProgress` at the start and after each entry.
RecipeOutcome transferRecipe(ExchangeLoop& loop, RecipeDirection direction,
                             const QVector<RegisterRange>& entries,
                             const std::function<void(int done, int total)>& onProgress);

}  // namespace fxtools
