// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any two lists of monitored ranges, one merged after the other. Asserted:
//  - the result is the number of requests, and the plan holds what the model's holds;
//  - requests rise within a type and station, and none is longer than the frame limit;
//  - every word of every polled range lies in a request, and of every bit range the bytes that its
//    pieces ask for;
//  - one whole rotation hands out each request once, well formed.

#include "fuzz/support/driver_pair.h"

#include "driver/intf.h"
#include "driver/mitsubishi_fx1s.h"

#include <algorithm>
#include <climits>

namespace {

bool isPolled(const KEY_ADDRESS& key)
{
    const QString& type = key.registerType;
    return key.stationNo != 0 && (modelIsBit(type) || modelIsWord(type) || type == "32CV");
}

// One past the last element that the plan reads together with `number`; `number` if none does.
long long coveredUpTo(const KEY_ADDRESS& key, long long number)
{
    const long long width = modelIsBit(key.registerType) ? 8 : 1;
    long long covered = number;
    for (const VARIABLE& request : driver.readList) {
        const long long end = request.addressIndex + width * request.count;
        if (request.stationNo == key.stationNo && request.registerType == key.registerType &&
            number >= request.addressIndex)
            covered = std::max(covered, end);
    }
    return covered;
}

// A bit piece asks for whole bytes from the one that holds its first bit, as many as its own count
// takes, so its last bits can lie beyond.
void requireCover(const KEY_ADDRESS& key)
{
    const bool bits = modelIsBit(key.registerType);
    const int words = std::max(1, driver.maxWordsPerFrame);
    const long long limit = (bits ? 8LL : 1LL) * words;
    const long long length = std::min(key.length, fxMaxElements);
    for (long long done = 0; done < length; done += limit) {
        const long long start = key.startIndex + done;
        const long long pieceLength = std::min(limit, length - done);
        if (start > INT_MAX)
            return;
        const long long first = bits ? start / 8 * 8 : start;
        const long long asked = bits ? (pieceLength + 7) / 8 * 8 : pieceLength;
        const long long end = std::min(first + asked, INT_MAX + 1LL);
        for (long long covered = first; covered < end;) {
            const long long next = coveredUpTo(key, covered);
            require(next > covered, "a monitored element is not polled");
            covered = next;
        }
    }
}

void requireOrder()
{
    const long long most = std::max(1, driver.maxWordsPerFrame);
    for (int i = 0; i < driver.readList.size(); ++i) {
        const VARIABLE& request = driver.readList.at(i);
        require(request.count >= 1 && request.count <= most, "a request is longer than a frame");
        if (i == 0)
            continue;
        const VARIABLE& before = driver.readList.at(i - 1);
        if (before.registerType == request.registerType && before.stationNo == request.stationNo)
            require(before.addressIndex <= request.addressIndex, "the plan falls");
    }
}

void requireRotation(FuzzedPair& pair)
{
    const QList<VARIABLE> plan = driver.readList;
    for (int i = 0; i < std::min<int>(static_cast<int>(plan.size()), 30); ++i) {
        FRAME_PRO given;
        FuzzedPair::agree(pair.getFrame(given));
        require(describe(given.variable) == describe(plan.at(i)),
                "the plan is not polled in order");
        FuzzedPair::agree(pair.giveReply(QByteArray(), {}));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    ByteChoices choices(bytes, byteCount);
    FuzzedPair& pair = FuzzedPair::fresh();
    SessionWorld world(choices);
    FuzzedPair::agree(pair.setUp(world.propertyString().constData()));
    for (int round = 0; round < 2; ++round) {
        const QList<KEY_ADDRESS> keys = world.keys();
        FuzzedPair::agree(pair.merge(keys));
        require(pair.library.record.at(0) == std::to_string(driver.readList.size()),
                "the result is not the number of requests");
        requireOrder();
        for (const KEY_ADDRESS& key : keys) {
            if (isPolled(key) && key.startIndex >= 0)
                requireCover(key);
        }
        pair.agreeInAll();
    }
    if (driver.failLimit < 2)
        requireRotation(pair);
    return 0;
}
