// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Locked access to the request bytes.

#include "protocol/recipe_requests.h"

#include "driver/mitsubishi_fx1s.h"

#include <QMutex>

namespace {

bool hasRequestBytes()
{
    return driver.hostMemory != nullptr && driver.hostMutex != nullptr;
}

}  // namespace

RecipeRequests readRecipeRequests()
{
    if (!hasRequestBytes())
        return {false, false};
    driver.hostMutex->lock();
    const unsigned char download = driver.hostMemory[fxDownloadRequestByte];
    const unsigned char upload = driver.hostMemory[fxUploadRequestByte];
    driver.hostMutex->unlock();
    return {download == fxRecipeRequested, upload == fxRecipeRequested};
}

void clearRecipeRequest(int requestByte)
{
    if (!hasRequestBytes())
        return;
    driver.hostMutex->lock();
    driver.hostMemory[requestByte] = 0;
    driver.hostMutex->unlock();
}
