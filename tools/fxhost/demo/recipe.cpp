// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A recipe is written to the PLC, changed there and read back.

#include "tools/exchange/recipe_transfer.h"
#include "tools/fxhost/demo/chapters.h"

#include <algorithm>

namespace fxtools {

namespace {

const QStringList recipeAddresses = {"D1000:32", "D1032:32", "D1064:32", "D1096:32",
                                     "D1200:20", "D1300:20", "D1400:10", "32CV210"};

constexpr size_t recipeWordCount = 4 * 32 + 2 * 20 + 10 + 2;
constexpr quint16 operatorValue = 4242;  // goes to D1005, the recipe's word 5

quint16 recipeValue(size_t word)
{
    return static_cast<quint16>(1000 + 7 * word);
}

bool transfer(DemoBench& bench, RecipeDirection direction, const QString& label,
              const QVector<RegisterRange>& entries)
{
    const auto show = [&](int done, int total) { bench.console().progress(label, done, total); };
    return transferRecipe(bench.loop(), direction, entries, show).isGood();
}

quint32 recipeNumber(const RegisterType& type, const std::vector<quint16>& words, size_t word)
{
    return type.width == RegisterWidth::DoubleWord
               ? words[word] | static_cast<quint32>(words[word + 1]) << 16
               : words[word];
}

// Reads the entries one by one from the PLC and compares them with the recipe.
bool plcHolds(DemoBench& bench, const QVector<RegisterRange>& entries,
              const std::vector<quint16>& words)
{
    size_t word = 0;
    for (const RegisterRange& entry : entries) {
        if (readOnce(bench.loop(), entry) != ReplyVerdict::Good)
            return false;
        for (const quint32 value : bench.session().values(entry)) {
            if (value != recipeNumber(entry.type, words, word))
                return false;
            word += static_cast<size_t>(entry.type.driverCount(1));
        }
    }
    return true;
}

}  // namespace

void showRecipe(DemoBench& bench)
{
    bench.console().heading("A recipe: written to the PLC, changed there and read back");
    QVector<RegisterRange> entries;
    for (const QString& address : recipeAddresses)
        entries.append(bench.range(address));
    std::vector<quint16>& words = bench.session().recipeWords();
    for (size_t word = 0; word < recipeWordCount; ++word)
        words[word] = recipeValue(word);
    const std::vector<quint16> sent = words;
    bench.confirm(transfer(bench, RecipeDirection::Download, "download", entries) &&
                      plcHolds(bench, entries, sent),
                  QStringLiteral("the PLC holds all %1 words of the recipe").arg(recipeWordCount));

    bench.session().write(bench.range("D1005"), {operatorValue});
    bench.confirm(flushWrites(bench.loop(), 1).allGood(), "the operator sets D1005 to 4242");

    int wordsReported = 0;
    bench.session().onRecipeWord = [&wordsReported](int) { ++wordsReported; };
    std::fill(words.begin(), words.end(), quint16(0));
    const bool uploaded = transfer(bench, RecipeDirection::Upload, "upload  ", entries);
    bench.session().onRecipeWord = nullptr;
    std::vector<quint16> expected = sent;
    expected[5] = operatorValue;
    bench.confirm(
        uploaded && words == expected,
        QStringLiteral("%1 words read back, including the changed one").arg(wordsReported));
}

}  // namespace fxtools
