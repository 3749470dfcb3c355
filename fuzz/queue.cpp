// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any run of writes and one-off reads, with exchanges between them. Asserted:
//  - neither queue grows past 513, and behind the head no two requests are equal;
//  - intf_getData gives what was just written, and after the write was confirmed still does;
//  - the one-off read queued last stands at the end of its queue or replaced an equal one;
//  - state is sound, callbacks are explained, and the model agrees.

#include "fuzz/support/fuzz_target.h"

#include "driver/mitsubishi_fx1s.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace {

void requireNoTwins(const QList<VARIABLE>& queue)
{
    std::set<std::tuple<int, QString, int, int>> keys;
    for (int i = 1; i < queue.size(); ++i) {
        const VARIABLE& request = queue.at(i);
        require(keys.insert({request.stationNo, request.registerType, request.addressIndex,
                             request.count})
                    .second,
                "a request is queued twice behind the head");
    }
}

bool isBitType(const QString& type)
{
    return type == "X" || type == "Y" || type == "M" || type == "S" || type == "SM" ||
           type == "T" || type == "C";
}

// Writes and reads back at once; nothing is monitored, so nobody writes in between.
void write(FuzzedPair& pair, SessionWorld& world)
{
    KEY_ADDRESS key = world.key();
    key.length = std::min(key.length, 600);
    const std::vector<unsigned char> data = world.bytes(bufferBytes(key.length));
    FuzzedPair::agree(pair.write(key, data, world.tag(), {}));
    std::vector<unsigned char> out(data.size(), 0xEE);
    intf_getData(key.stationNo, key.registerType, key.startIndex, key.length, out.data());
    pair.model.driver.getData(key.stationNo, key.registerType, key.startIndex, key.length,
                              out.data());
    for (std::size_t i = 0; i < out.size() && key.startIndex >= 0; ++i) {
        const int expected = isBitType(key.registerType) ? (data[i] == 1 ? 1 : 0) : data[i];
        require(out[i] == expected || out[i] == 0xEE, "a write is not read back");
    }
}

void exchange(FuzzedPair& pair, bool good)
{
    FRAME_PRO given;
    FuzzedPair::agree(pair.getFrame(given));
    if (driver.frames.isEmpty() || given.isRead != 0)
        return FuzzedPair::agree(pair.giveReply(QByteArray(), {}));
    const VARIABLE sent = given.variable;
    FuzzedPair::agree(pair.giveReply(QByteArray(1, good ? '\x06' : '\x15'), {}));
    if (!good || isBitType(sent.registerType) || sent.registerType == "32CV")
        return;
    // Confirmed words: what the frame carried, unless a newer write waits.
    for (int i = 0; i < sent.count; ++i) {
        for (const _DATA_& area : driver.dataAreas) {
            if (area.stationNo == sent.stationNo && area.registerType == sent.registerType &&
                area.startIndex == sent.addressIndex + i)
                require(area.bufferSelect == 0, "a confirmed write still waits");
        }
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    ByteChoices choices(bytes, byteCount);
    FuzzedPair& pair = FuzzedPair::fresh();
    SessionWorld world(choices);
    FuzzedPair::agree(pair.setUp(world.propertyString().constData()));
    for (int step = 0; step < 200 && !choices.exhausted(); ++step) {
        const int chosen = choices.below(5);
        if (chosen < 2) {
            write(pair, world);
        } else if (chosen < 4) {
            FuzzedPair::agree(pair.queueRead(world.key(), world.tag(), {}));
        } else {
            exchange(pair, !choices.oneIn(4));
        }
        requireNoTwins(driver.writeList);
        requireNoTwins(driver.conditionReadList);
    }
    pair.agreeInAll();
    return 0;
}
