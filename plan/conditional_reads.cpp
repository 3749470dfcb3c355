// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Queues one-off reads, cut to pieces that fit one frame each. The host's own numbers stand: bit
// addresses are not aligned and bit counts not turned into bytes.

#include "driver/mitsubishi_fx1s.h"
#include "driver/request_queue.h"
#include "plan/pieces.h"

namespace {

void queueRead(const VARIABLE& request)
{
    enqueueRequest(driver.conditionReadList, request);
    driver.lastConditionRead = request;  // its end is the one that the host is told of
}

}  // namespace

int intf_addConditionRead(KEY_ADDRESS& key, int tag)
{
    VARIABLE request;
    request.tag = tag;
    request.stationNo = key.stationNo;
    request.registerType = key.registerType;
    request.addressIndex = key.startIndex;
    request.count = key.length;
    // By bitIndex alone, whatever the register type.
    const int limit = key.bitIndex == fxSplitByBits ? bitsPerRequest() : wordsPerRequest();
    if (key.length <= limit) {
        queueRead(request);
        return fxDone;
    }
    const PieceCutter cutter(key.startIndex, key.length, limit);
    for (int i = 0; i < cutter.pieceCount(); ++i) {
        request.addressIndex = cutter.start(i);
        request.count = cutter.length(i);
        queueRead(request);
    }
    return fxDone;
}
