// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Chooses the next exchange: recipe download, recipe upload, host write, one-off read, cyclic
// read. At most three writes or one-off reads go out between two cyclic reads. A frame whose
// exchange has not ended is handed out again, which is how a request is repeated.

#include "cache/recipe_list.h"
#include "cache/recipe_words.h"
#include "driver/intf.h"
#include "driver/mitsubishi_fx1s.h"
#include "protocol/end_of_exchange.h"
#include "protocol/frame_codec.h"
#include "protocol/recipe_requests.h"

namespace {

// Builds the frame of the request in `current` as its kind wants it.
void buildCurrent()
{
    switch (driver.kind()) {
    case OperationKind::HostWrite:
    case OperationKind::RecipeDownload:
        return getWriteFrame(driver.current);
    case OperationKind::ConditionalRead:
    case OperationKind::CyclicRead:
    case OperationKind::RecipeUpload:
        return getReadFrame(driver.current);
    case OperationKind::Idle:
        return;
    }
}

void startExchange(OperationKind kind, const VARIABLE& request)
{
    driver.current = request;
    driver.setKind(kind);
    buildCurrent();
}

// With no entry to transfer, a request repeats the exchange of `current` under its own kind, and
// goes on doing so until the host takes it back. False when the entry cannot be carried and the
// transfer has ended over it.
bool startRecipe(OperationKind kind)
{
    const _RCP_VAR_PRO* entry = recipeEntryDue();
    if (entry != nullptr) {
        const bool isDownload = kind == OperationKind::RecipeDownload;
        driver.setKind(kind);
        if (!(isDownload ? isDownloadable(*entry) : isUploadable(*entry))) {
            abandonRecipe();
            return false;
        }
        rcpAddrToVar(*entry, driver.current, isDownload ? 1 : 0);
    }
    buildCurrent();
    return true;
}

void startCyclicRead()
{
    if (driver.readList.isEmpty()) {
        driver.setKind(OperationKind::Idle);
        return;  // without a plan nothing sets burstCount back: after three, writes wait
    }
    driver.burstCount = 0;
    startExchange(OperationKind::CyclicRead, driver.readList.at(0));
}

void startOrdinary()
{
    const bool mayBurst = driver.burstCount < fxMaxBurst;
    if (mayBurst && !driver.writeList.isEmpty()) {
        ++driver.burstCount;
        startExchange(OperationKind::HostWrite, driver.writeList.at(0));
    } else if (mayBurst && !driver.conditionReadList.isEmpty()) {
        ++driver.burstCount;
        startExchange(OperationKind::ConditionalRead, driver.conditionReadList.at(0));
    } else {
        startCyclicRead();
    }
}

void chooseExchange()
{
    const RecipeRequests requests = readRecipeRequests();
    if (requests.download && startRecipe(OperationKind::RecipeDownload))
        return;
    if (requests.upload && startRecipe(OperationKind::RecipeUpload))
        return;
    startOrdinary();
}

}  // namespace

int intf_getSendFrame(FRAME_PRO* out)
{
    if (out == nullptr)
        return fxNothingToSend;
    if (driver.frames.isEmpty())
        chooseExchange();
    if (driver.frames.isEmpty())
        return fxNothingToSend;
    *out = driver.frames.at(0);
    return fxFrameToSend;
}
