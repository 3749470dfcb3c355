// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What becomes of the values of a recipe, register by register.

#pragma once

#include "tools/fxview/plc/plc_source.h"
#include "tools/service/recipe.h"

namespace fxview {

// Before anything has been done.
RecipeResult resultOf(const RecipeOrder& order);

RecipeResult refusedRecipe(const RecipeOrder& order, const QString& reason);

QVector<RecipeValue> valuesOf(const QVector<fxtools::RegisterRun>& recipe);

// What a download has done to each register.
void noteOutcome(RecipeResult& result, const fxtools::RecipeOutcome& outcome);

// What the PLC holds.
void noteComparison(RecipeResult& result, const fxtools::Comparison& comparison);

}  // namespace fxview
