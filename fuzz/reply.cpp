// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any bytes as replies to an open request of every kind. Asserted:
//  - the result is 1, 2 or 8; after 1 and 2 no frame is in flight, after 8 the same one is;
//  - a rejection is the failLimit-th in a row exactly when the result is 2;
//  - the error text names the request and the length of the reply;
//  - areas are created for the request's station and type only;
//  - state is sound, callbacks are explained, and the model agrees, values included.

#include "fuzz/support/driver_pair.h"

#include "driver/intf.h"
#include "driver/mitsubishi_fx1s.h"

namespace {

constexpr int failLimit = 3;

enum Kind
{
    hostWrite,
    oneOffRead,
    cyclicRead,
    recipeDownload,
    recipeUpload,
    kindCount
};

KEY_ADDRESS request(Choices& choices)
{
    const char* const types[] = {"X", "Y",  "M",  "S",  "SM",   "T", "C",
                                 "D", "SD", "TV", "CV", "32CV", "Z"};
    KEY_ADDRESS key;
    key.stationNo = 1;
    key.registerType = types[choices.below(13)];
    key.startIndex = 8000 + choices.below(20);
    key.length = choices.between(1, 9);
    key.bitIndex = choices.oneOf({-1, 0});
    return key;
}

void open(FuzzedPair& pair, Choices& choices)
{
    const KEY_ADDRESS key = request(choices);
    const int kind = choices.below(kindCount);
    _RCP_VAR_PRO entry;
    entry.linkNo = 1;
    entry.stationNo = key.stationNo;
    entry.registerType = key.registerType;
    entry.addressIndex = key.startIndex;
    entry.count = key.length;
    entry.recipeWordOffset = 7;
    if (choices.oneIn(2) || kind == cyclicRead)
        FuzzedPair::agree(pair.merge({key}));
    if (kind == hostWrite)
        FuzzedPair::agree(pair.write(key, std::vector<unsigned char>(36, 1), 3, {}));
    else if (kind == oneOffRead)
        FuzzedPair::agree(pair.queueRead(key, 3, {}));
    else if (kind != cyclicRead)
        FuzzedPair::agree(pair.setRecipe({entry}));
    if (kind < recipeDownload)
        return;
    const auto byte = static_cast<std::size_t>(kind == recipeDownload ? fxDownloadRequestByte
                                                                      : fxUploadRequestByte);
    pair.library.memory[byte] = pair.model.memory[byte] = 1;
}

std::string expectedText(const VARIABLE& variable, int replyBytes)
{
    const bool octal = variable.registerType == "X" || variable.registerType == "Y";
    return std::to_string(variable.stationNo) + "#" + variable.registerType.toStdString() +
           QString::number(variable.addressIndex, octal ? 8 : 10).toStdString() + "(" +
           std::to_string(variable.count) + ")(" + std::to_string(replyBytes) + ")";
}

// Gives one reply and returns whether the exchange is still open.
bool reply(FuzzedPair& pair, const QByteArray& bytes, int rejections)
{
    const FRAME_PRO open = driver.frames.at(0);
    FuzzedPair::agree(pair.giveReply(bytes, {}));
    const std::string answer = pair.library.record.back();
    const std::string text = expectedText(open.variable, static_cast<int>(bytes.size()));
    const bool kept = answer == "8 " + text;
    require(kept || answer == "1 " + text || answer == "2 " + text, "an undocumented answer");
    require(driver.frames.isEmpty() != kept, "the frame in flight does not fit the answer");
    require(!kept || describe(driver.frames.at(0)) == describe(open),
            "the frame in flight changed");
    require((answer[0] == '2') == (answer[0] != '1' && rejections + 1 == failLimit),
            "an exchange failed too early or too late");
    for (const _DATA_& area : driver.dataAreas)
        require(area.stationNo == 1 && area.registerType == open.variable.registerType,
                "an area of another request was created");
    return kept;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    ByteChoices choices(bytes, byteCount);
    FuzzedPair& pair = FuzzedPair::fresh();
    SessionWorld world(choices);
    FuzzedPair::agree(pair.setUp("1#0#0#3#8"));
    open(pair, choices);
    FRAME_PRO given;
    FuzzedPair::agree(pair.getFrame(given));
    if (driver.frames.isEmpty())
        return 0;  // a type that is neither planned nor written
    int rejections = 0;
    while (rejections < failLimit) {
        QByteArray text;
        const int chosen = choices.below(4);
        if (chosen == 0)
            text = world.replyTo(given);
        for (int left = chosen == 0 ? 0 : choices.below(64); left > 0; --left)
            text += static_cast<char>(choices.below(256));
        if (!reply(pair, text, rejections))
            break;
        ++rejections;
    }
    pair.agreeInAll();
    return 0;
}
