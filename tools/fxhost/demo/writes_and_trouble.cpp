// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the driver writes: single values, and a recipe that is changed in the PLC and read back. The
// cache shows a written value at once, before the PLC has it, so each write is checked against what
// is polled afterwards.

#include "tools/exchange/polling.h"
#include "tools/fxhost/demo/demo_bench.h"
#include "tools/fxhost/views/frame_text.h"

#include <algorithm>

namespace fxtools {

namespace {

const QStringList recipeAddresses = {"D1000:32", "D1032:32", "D1064:32", "D1096:32",
                                     "D1200:20", "D1300:20", "D1400:10", "32CV210"};
constexpr size_t recipeWordCount = 4 * 32 + 2 * 20 + 10 + 2;
constexpr quint16 operatorValue = 4242;  // goes to D1005, the recipe's word 5

constexpr int noiseMs = 6000;
constexpr int linesShown = 12;
const char* const noise = "silence=0.05,wrong-sum=0.08,flipped-bits=0.06,truncated=0.06,"
                          "nak=0.06,junk-before=0.06";

// Differs from the old value, so that the check cannot pass by accident.
quint32 newValue(const RegisterRange& range, quint32 old)
{
    switch (range.type.width) {
    case RegisterWidth::Bit:
        return old ? 0 : 1;
    case RegisterWidth::Word:
        return (old + 4711) & 0xFFFF;
    case RegisterWidth::DoubleWord:
        return old + 12345678;
    }
    return 0;
}

void writeAndReadBack(DemoBench& bench, const QString& address)
{
    const quint32 before = bench.valueOf(address);
    const quint32 wanted = newValue(bench.range(address), before);
    bench.session.write(bench.range(address), {wanted});
    const quint32 mirrored = bench.valueOf(address);
    const Round acknowledged = flushWrites(bench.loop, 1);
    const Round polled = bench.pollOnce();
    const quint32 fromPlc = bench.valueOf(address);
    bench.confirm(acknowledged.allGood() && polled.allGood() && fromPlc == wanted,
                  QStringLiteral("%1: was %2, wrote %3; cache at once: %4, polled: %5")
                      .arg(address)
                      .arg(before)
                      .arg(wanted)
                      .arg(mirrored)
                      .arg(fromPlc));
}

bool transfer(DemoBench& bench, RecipeDirection direction, const QString& label,
              const QVector<RegisterRange>& entries)
{
    const auto show = [&](int done, int total) { bench.console.progress(label, done, total); };
    return transferRecipe(bench.loop, direction, entries, show).isGood();
}

// Reads the entries one by one from the PLC, as the words of a recipe. Stops at what fails.
std::vector<quint16> wordsInPlc(DemoBench& bench, const QVector<RegisterRange>& entries)
{
    std::vector<quint16> words;
    for (const RegisterRange& entry : entries) {
        if (readOnce(bench.loop, entry) != ReplyVerdict::Good)
            break;
        for (const quint32 value : bench.session.values(entry)) {
            words.push_back(static_cast<quint16>(value & 0xFFFF));
            if (entry.type.width == RegisterWidth::DoubleWord)
                words.push_back(static_cast<quint16>(value >> 16));
        }
    }
    return words;
}

// Polls with these faults. Shows rejected replies with the driver's error text: the first few, and
// all that end an exchange. Returns their number.
int pollWith(DemoBench& bench, const QString& faults, const Enough& enough, Round& round)
{
    int rejected = 0;
    bench.loop.onExchange = [&](const Exchange& exchange) {
        if (exchange.answer == DriverAnswer::Accepted ||
            (++rejected > linesShown && !exchange.hasFailed()))
            return;
        const QString answer = answerText(exchange.answer);
        bench.console.line(QStringLiteral("  %1 %2 %3")
                               .arg(exchange.errorText, -18)
                               .arg(verdictText(exchange.verdict), -38)
                               .arg(exchange.hasFailed() ? bench.console.bad(answer) : answer));
    };
    bench.control->run("faults " + faults);
    round = runUntil(bench.loop, enough);
    bench.control->run("faults none");
    bench.loop.onExchange = nullptr;
    return rejected;
}

}  // namespace

void showWrites(DemoBench& bench)
{
    bench.console.heading("Host writes, read back from the PLC");
    for (const char* address : {"M100", "D120", "32CV201"})
        writeAndReadBack(bench, address);
}

void showRecipe(DemoBench& bench)
{
    bench.console.heading("A recipe: written to the PLC, changed there and read back");
    QVector<RegisterRange> entries;
    for (const QString& address : recipeAddresses)
        entries.append(bench.range(address));
    std::vector<quint16> recipe(recipeWordCount);
    for (size_t word = 0; word < recipe.size(); ++word)
        recipe[word] = static_cast<quint16>(1000 + 7 * word);
    std::vector<quint16>& memory = bench.session.recipeWords();
    std::copy(recipe.begin(), recipe.end(), memory.begin());
    bench.confirm(transfer(bench, RecipeDirection::Download, "download", entries) &&
                      wordsInPlc(bench, entries) == recipe,
                  QStringLiteral("the PLC holds all %1 words of the recipe").arg(recipeWordCount));

    bench.session.write(bench.range("D1005"), {operatorValue});
    bench.confirm(flushWrites(bench.loop, 1).allGood(), "the operator sets D1005 to 4242");

    int wordsReported = 0;
    bench.session.onRecipeWord = [&wordsReported](int) { ++wordsReported; };
    std::fill(memory.begin(), memory.end(), quint16(0));
    const bool uploaded = transfer(bench, RecipeDirection::Upload, "upload  ", entries);
    bench.session.onRecipeWord = nullptr;
    recipe[5] = operatorValue;
    recipe.resize(memory.size());  // and not a word behind it
    bench.confirm(
        uploaded && memory == recipe,
        QStringLiteral("%1 words read back, including the changed one").arg(wordsReported));
}

void showTrouble(DemoBench& bench)
{
    if (!bench.control)
        return;
    bench.console.heading(
        "A bad line: station#register(count)(bytes received), and what was wrong");
    const quint32 before = bench.valueOf("D120");
    const qint64 endUs = bench.loop.elapsedUs() + qint64(1000) * noiseMs;
    Round round;
    const auto isOver = [&](const Round& soFar) {
        return bench.loop.elapsedUs() >= endUs && !soFar.inFlight;
    };
    const int rejected = pollWith(bench, noise, isOver, round);
    bench.confirm(rejected > 0, QStringLiteral("%1 replies rejected in %2 exchanges")
                                    .arg(rejected)
                                    .arg(round.ended.size()));
    pollWith(
        bench, "silence=1", [](const Round& soFar) { return !soFar.ended.isEmpty(); }, round);
    bench.confirm(round.failed() == 1,
                  "a silent PLC: the exchange is given up after three attempts");
    const Round after = bench.pollOnce();
    bench.confirm(after.allGood() && bench.valueOf("D120") == before,
                  "the line is good again: a cycle without rejections, D120 unchanged");
}

}  // namespace fxtools
