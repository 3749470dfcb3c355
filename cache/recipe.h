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

// Stores the low 16 bits of `value` as one uploaded word, low byte first, and tells the host.
void storeRecipeWord(qint64 recipeWord, unsigned int value);

#endif
