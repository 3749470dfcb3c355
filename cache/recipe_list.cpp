// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The one reader and writer of the recipe list and of the place in it.

#include "cache/recipe_list.h"

#include "driver/mitsubishi_fx1s.h"

int intf_setRcpAddress(QVector<_RCP_VAR_PRO>& list)
{
    const QVector<_RCP_VAR_PRO>& entries = list;
    QVector<_RCP_VAR_PRO> ownEntries;
    for (const _RCP_VAR_PRO& entry : entries) {
        if (entry.linkNo == driver.linkNo)
            ownEntries.append(entry);
    }
    driver.recipeVars = ownEntries;
    return static_cast<int>(driver.recipeVars.size());
}

const _RCP_VAR_PRO* recipeEntryDue()
{
    const int index = driver.recipeIndex;
    const bool isInList = index >= 0 && index < driver.recipeVars.size();
    return isInList ? &driver.recipeVars.at(index) : nullptr;
}

bool goOnInRecipe(bool isGood)
{
    if (isGood && ++driver.recipeIndex < driver.recipeVars.size())
        return true;
    driver.recipeIndex = 0;
    return false;
}

std::optional<qint64> uploadTarget()
{
    const _RCP_VAR_PRO* entry = recipeEntryDue();
    if (driver.kind() != OperationKind::RecipeUpload || entry == nullptr)
        return std::nullopt;
    return entry->recipeWordOffset;
}
