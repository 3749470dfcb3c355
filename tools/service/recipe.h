// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipes: files of words, and their transfer by the driver. A download that ends early leaves a
// part of them in the PLC; the outcome says which.

#pragma once

#include "tools/service/comparison.h"

namespace fxtools {

// The words of a recipe file, in entries that fit a frame, to be written. Throws Failure if they
// may not: bits, read-only registers and, without `force`, addresses of others.
QVector<RegisterRun> readRecipe(const QString& path, const RegisterCatalogue& catalogue,
                                int wordsPerFrame, bool force);

// Entries for an upload. Throws Failure for bits.
QVector<RegisterRange> recipeEntries(const QVector<RegisterRange>& registers, int wordsPerFrame);

// Throws Failure if the recipe memory is too small.
RecipeOutcome downloadRecipe(Connection& connection, const QVector<RegisterRun>& recipe,
                             const Progress& progress);

// The same. The recipe is empty unless all of it was read: half of one would look like a whole one.
RecipeOutcome uploadRecipe(Connection& connection, const QVector<RegisterRange>& entries,
                           QVector<RegisterRun>& recipe, const Progress& progress);

// All of it or nothing: of a new file that does not fit the disk nothing stays. Throws Failure.
void saveRecipe(OutputFile& file, const QVector<RegisterRun>& recipe);

// "D32 … D63: no reply in time; 1 of 3 entries transferred, up to D0 … D31; D32 … D63 possibly
// written".
QString stoppedText(const RecipeOutcome& outcome, RecipeDirection direction,
                    const QVector<RegisterRange>& entries);

// A value that its tag forbids.
struct RecipeObjection
{
    RegisterRange registers;
    QString text;
};

// The tags that a recipe writes are found by their registers: their limits hold here too.
QVector<RecipeObjection> objectionsTo(const QVector<RegisterRun>& recipe, const QVector<Tag>& tags,
                                      const RegisterCatalogue& catalogue);

QVector<RegisterRange> rangesOf(const QVector<RegisterRun>& runs);

}  // namespace fxtools
