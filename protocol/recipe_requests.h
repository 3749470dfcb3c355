// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The two request bytes in the host's memory: the only thing that other threads of the host share
// with the driver, so each access takes the host's mutex and does nothing else under it.

#ifndef PROTOCOL_RECIPE_REQUESTS_H
#define PROTOCOL_RECIPE_REQUESTS_H

struct RecipeRequests
{
    bool download;
    bool upload;
};

// Both requests, read in one locked section. None without host memory or mutex.
RecipeRequests readRecipeRequests();

// Takes back the request at `requestByte`.
void clearRecipeRequest(int requestByte);

#endif
