// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The recipe entries of this link, and the place of a transfer in them. The host may replace the
// list under a transfer: the place then points into the new one, or past it.

#ifndef CACHE_RECIPE_LIST_H
#define CACHE_RECIPE_LIST_H

#include "driver/records.h"

#include <QtGlobal>

#include <optional>

// The entry that is due, until the list is replaced; null when there is none.
const _RCP_VAR_PRO* recipeEntryDue();

// Goes on to the next entry when the exchange of this one was good and there is one; else back to
// the start, and answers false: the transfer has ended.
bool goOnInRecipe(bool isGood);

// First recipe word that the upload in progress fills; none when there is no upload.
std::optional<qint64> uploadTarget();

#endif
