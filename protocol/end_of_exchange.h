// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The moves at the end of an exchange, by its kind and by whether it failed.

#ifndef PROTOCOL_END_OF_EXCHANGE_H
#define PROTOCOL_END_OF_EXCHANGE_H

// Advances the list that the ended exchange came from. Reads driver.operationKind and
// driver.lastExchangeFailed.
void dealListWhenFinish();

// Ends the recipe transfer of the kind in progress as a failed exchange does.
void abandonRecipe();

#endif
