// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The end-of-exchange half of the state machine. A request stays at the head of its list until
// here; the state itself changes only with the next choice.

#include "protocol/end_of_exchange.h"

#include "cache/notification.h"
#include "cache/recipe_list.h"
#include "driver/mitsubishi_fx1s.h"
#include "driver/request_queue.h"
#include "protocol/recipe_requests.h"

namespace {

constexpr int noLink = -1;
constexpr int noStation = -1;

void endHostWrite()
{
    if (!driver.writeList.isEmpty())
        driver.writeList.removeFirst();
}

void reportConditionRead()
{
    callHost(noLink, noStation, QLatin1String(fxReadEndText),
             driver.lastExchangeFailed != 0 ? fxReadFailed : fxReadSucceeded);
}

void endConditionRead()
{
    if (driver.conditionReadList.isEmpty())
        return;
    if (isSameRequest(driver.conditionReadList.at(0), driver.lastConditionRead))
        reportConditionRead();
    if (driver.lastExchangeFailed != 0)
        driver.conditionReadList.clear();  // one failure drops all that wait
    else if (!driver.conditionReadList.isEmpty())
        driver.conditionReadList.removeFirst();
}

void rotatePlan()
{
    const int last = static_cast<int>(driver.readList.size()) - 1;
    if (last < 1)
        return;
    // From Qt 6 on a list is one array, where a move shifts all requests, a kilobyte each; before
    // that it is one of pointers.
    if constexpr (QT_VERSION >= QT_VERSION_CHECK(6, 0, 0))
        driver.readList.append(driver.readList.takeFirst());
    else
        driver.readList.move(0, last);
}

void endRecipeEntry(int requestByte)
{
    if (!goOnInRecipe(driver.lastExchangeFailed == 0))
        clearRecipeRequest(requestByte);
}

}  // namespace

void dealListWhenFinish()
{
    switch (driver.kind()) {
    case OperationKind::Idle:
        return;
    case OperationKind::HostWrite:
        return endHostWrite();
    case OperationKind::ConditionalRead:
        return endConditionRead();
    case OperationKind::CyclicRead:
        return rotatePlan();
    case OperationKind::RecipeDownload:
        return endRecipeEntry(fxDownloadRequestByte);
    case OperationKind::RecipeUpload:
        return endRecipeEntry(fxUploadRequestByte);
    }
}

void abandonRecipe()
{
    driver.lastExchangeFailed = 1;
    dealListWhenFinish();
}
