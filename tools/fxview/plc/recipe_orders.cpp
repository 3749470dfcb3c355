// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/plc/recipe_orders.h"

namespace fxview {

QVector<RecipeValue> valuesOf(const QVector<fxtools::RegisterRun>& recipe)
{
    QVector<RecipeValue> values;
    for (const fxtools::RegisterRun& run : recipe) {
        for (int index = 0; index < run.range.count; ++index) {
            RecipeValue value;
            value.one = run.range.part(index, 1);
            value.inFile = run.values[index];
            values.append(value);
        }
    }
    return values;
}

RecipeResult resultOf(const RecipeOrder& order)
{
    RecipeResult result;
    result.id = order.id;
    result.act = order.act;
    result.recipe = order.recipe;
    result.values = valuesOf(order.recipe);
    return result;
}

RecipeResult refusedRecipe(const RecipeOrder& order, const QString& reason)
{
    RecipeResult result = resultOf(order);
    result.problem = reason;
    for (RecipeValue& value : result.values) {
        value.whyNotRead = reason;
        if (order.act == RecipeOrder::Act::Download)
            value.state = RecipeValue::State::NotWritten;
    }
    return result;
}

void noteOutcome(RecipeResult& result, const fxtools::RecipeOutcome& outcome)
{
    int value = 0;
    for (int entry = 0; entry < result.recipe.size(); ++entry) {
        const bool isNext = entry == outcome.transferred;
        const RecipeValue::State state = entry < outcome.transferred ? RecipeValue::State::Written
                                         : isNext && outcome.isUncertain
                                             ? RecipeValue::State::Unknown
                                             : RecipeValue::State::NotWritten;
        for (int index = 0; index < result.recipe[entry].range.count; ++index)
            result.values[value++].state = state;
    }
    if (!outcome.isGood())
        result.problem = fxtools::verdictText(*outcome.problem);
}

void noteComparison(RecipeResult& result, const fxtools::Comparison& comparison)
{
    int compared = 0;
    for (RecipeValue& value : result.values) {
        if (compared == comparison.registers.size()) {
            value.whyNotRead = fxtools::verdictText(*comparison.problem);
            continue;
        }
        const fxtools::ComparedRegister& held = comparison.registers[compared++];
        if (held.isRefused)
            value.whyNotRead = fxtools::verdictText(fxtools::ReplyVerdict::Refused);
        else
            value.inPlc = held.inPlc;
    }
    if (const std::optional<fxtools::ReplyVerdict> problem = comparison.firstProblem())
        result.notCompared = fxtools::verdictText(*problem);
}

}  // namespace fxview
