// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The recipe list and the conversion of one entry into a request. Word w of recipe memory is its
// bytes 2w and 2w + 1, moved in memory order.

#ifndef CACHE_RECIPE_H
#define CACHE_RECIPE_H

#include "driver/mitsubishi_fx1s.h"

// Fills `var` from one entry; with data also from recipe memory, else with zeros. `var.tag` stays.
void rcpAddrToVar(_RCP_VAR_PRO rcp, VARIABLE& var, int withData);

// Whether one frame can carry the entry to the PLC, or from it.
bool isDownloadable(const _RCP_VAR_PRO& entry);
bool isUploadable(const _RCP_VAR_PRO& entry);

// Stores an uploaded value of `wordCount` words, lowest byte first, then tells the host of each.
void storeRecipeValue(qint64 firstRecipeWord, int wordCount, unsigned int value);

#endif
