// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any recipe list, transferred both ways, replaced in the middle, with good and bad replies.
// Asserted:
//  - a transfer that starts within the list and whose exchanges end, ends itself: the request byte
//    returns to 0 and the place to the first entry, within as many exchanges as the list has
//    entries;
//  - a download changes no recipe word; an upload stores only words that it reports;
//  - state is sound, and the model agrees, recipe memory included.

#include "fuzz/support/fuzz_target.h"

#include "driver/intf.h"
#include "driver/mitsubishi_fx1s.h"

#include <set>

namespace {

constexpr std::size_t downloadByte = fxDownloadRequestByte;
constexpr std::size_t uploadByte = fxUploadRequestByte;

QByteArray goodReply(const FRAME_PRO& frame, int seed)
{
    if (frame.isRead == 0)
        return QByteArray(1, '\x06');
    QByteArray reply(1, '\x02');
    for (int i = 0; i < frame.replyDataChars; ++i)
        reply += "0123456789ABCDEF"[(seed + i) & 15];
    reply += '\x03';
    int sum = 0;
    for (int i = 1; i < reply.size(); ++i)
        sum += reply.at(i);
    return reply + QByteArray::number(256 + sum % 256, 16).right(2).toUpper();
}

// Words of recipe memory that changed since `before` and are not in `reported`.
void requireOnlyReported(const std::vector<unsigned short>& before, const Host& host,
                         const std::set<std::size_t>& reported)
{
    for (std::size_t word = 0; word < before.size(); ++word)
        require(host.recipe[word] == before[word] || reported.count(word) == 1,
                "a recipe word changed without a report");
}

void transfer(FuzzedPair& pair, Choices& choices, SessionWorld& world, std::size_t byte)
{
    pair.library.memory[byte] = pair.model.memory[byte] = 1;
    const std::vector<unsigned short> before = pair.library.recipe;
    std::set<std::size_t> reported;
    pair.library.observe = [&reported](int, int, const QString& text, int word) {
        if (text == "RWI")
            reported.insert(static_cast<std::size_t>(word));
    };
    // A list that ends before the place where the last transfer was left: the exchange of then is
    // repeated until the host takes its request back.
    const bool isPastTheList = driver.recipeIndex >= driver.recipeVars.size();
    int exchangesLeft = static_cast<int>(driver.recipeVars.size());
    const bool disturbed = choices.oneIn(2);
    while (pair.library.memory[byte] == 1 && exchangesLeft > 0) {
        FRAME_PRO given;
        FuzzedPair::agree(pair.getFrame(given));
        if (disturbed && choices.oneIn(3))
            FuzzedPair::agree(pair.setRecipe(world.recipe()));
        const QByteArray reply =
            disturbed ? world.replyTo(given) : goodReply(given, choices.below(16));
        FuzzedPair::agree(pair.giveReply(reply, {}));
        --exchangesLeft;
    }
    if (byte == downloadByte)
        require(pair.library.recipe == before, "a download changed recipe memory");
    requireOnlyReported(before, pair.library, reported);
    require(disturbed || isPastTheList || pair.library.memory[byte] == 0, "a transfer did not end");
    pair.library.memory[byte] = pair.model.memory[byte] = 0;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    ByteChoices choices(bytes, byteCount);
    FuzzedPair& pair = FuzzedPair::fresh();
    SessionWorld world(choices);
    FuzzedPair::agree(pair.setUp("1#0#0#1#8"));
    for (int round = 0; round < 4; ++round) {
        FuzzedPair::agree(pair.setRecipe(world.recipe()));
        transfer(pair, choices, world, choices.oneOf({downloadByte, uploadByte}));
        pair.agreeInAll();
        if (choices.exhausted())
            return 0;
    }
    return 0;
}
