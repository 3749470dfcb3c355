// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/recipe_transfer.h"

namespace fxtools {

RecipeOutcome transferRecipe(ExchangeLoop& loop, RecipeDirection direction,
                             const QVector<RegisterRange>& entries,
                             const std::function<void(int done, int total)>& onProgress)
{
    RecipeOutcome outcome;
    outcome.entries = loop.session().startRecipe(direction, entries);
    int shown = -1;
    const Round round = runUntil(loop, [&](const Round& soFar) {
        if (soFar.ended.size() != shown) {
            shown = soFar.ended.size();
            onProgress(shown - soFar.failed(), outcome.entries);
        }
        return !loop.session().recipeRuns(direction);
    });
    loop.abandonRecipe(direction);  // if the round has left one
    outcome.transferred = round.ended.size() - round.failed();
    if (round.end != RoundEnd::Done)
        outcome.problem = round.verdict();
    else if (outcome.transferred < outcome.entries)
        outcome.problem =
            round.ended.isEmpty() ? ReplyVerdict::Silence : round.ended.last().verdict;
    outcome.isUncertain =
        !outcome.isGood() && (outcome.problem != ReplyVerdict::Refused ||
                              (!round.ended.isEmpty() && round.ended.last().mayBeDone));
    return outcome;
}

}  // namespace fxtools
