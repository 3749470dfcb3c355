// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host's recipe memory, whose size only the host knows: to requests and from replies. Word w is
// its bytes 2w and 2w + 1, moved in memory order.

#ifndef CACHE_RECIPE_WORDS_H
#define CACHE_RECIPE_WORDS_H

#include "driver/records.h"

#include <QtGlobal>

// Fills `var` from one entry; with data also from recipe memory, else with zeros. `var.tag` stays.
void rcpAddrToVar(_RCP_VAR_PRO rcp, VARIABLE& var, int withData);

// Whether one frame can carry the entry to the PLC, or from it.
bool isDownloadable(const _RCP_VAR_PRO& entry);
bool isUploadable(const _RCP_VAR_PRO& entry);

// Stores uploaded words, then tells the host of each.
void storeRecipeWords(qint64 firstRecipeWord, const unsigned char* bytes, int wordCount);

#endif
