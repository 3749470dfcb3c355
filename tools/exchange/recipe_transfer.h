// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A recipe on its way: the driver takes entry after entry between the recipe memory and the PLC
// and says only that it has ended; which entry failed, and why, is seen here from the exchanges.

#pragma once

#include "tools/exchange/polling.h"

namespace fxtools {

struct RecipeOutcome
{
    int entries = 0;
    int transferred = 0;
    std::optional<ReplyVerdict> problem;  // of the entry behind the transferred ones

    bool isGood() const { return !problem && transferred == entries; }
};

// `onProgress` is called at the start and after each entry, with those done and all of them.
RecipeOutcome transferRecipe(ExchangeLoop& loop, RecipeDirection direction,
                             const QVector<RegisterRange>& entries,
                             const std::function<void(int done, int total)>& onProgress);

}  // namespace fxtools
