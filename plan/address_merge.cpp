// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Turns the monitored ranges into the cyclic polling plan: cuts each range into pieces that fit a
// frame, sorts the pieces, and joins neighbours of one type and station as long as the stretched
// block still fits, so that a cycle costs as few frames as possible.

#include "cache/data_areas.h"
#include "plan/pieces.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace {

constexpr int planTag = 4;  // the number of a cyclic read, as OperationKind gives it
constexpr int unpolledStation = 0;

// A piece of a key, and later a block of the plan. `count` is bits or words of a piece; bytes of
// eight bits, or words, of a block.
struct PlanEntry
{
    const RegisterType* type;
    int stationNo;
    int addressIndex;
    int count;
    std::size_t sequence;  // the order in which pieces were cut
};

// By type and station, then by address; of equal addresses the piece that was cut last comes first.
bool isPolledBefore(const PlanEntry& a, const PlanEntry& b)
{
    return std::tie(a.type->planOrder, a.stationNo, a.addressIndex, b.sequence) <
           std::tie(b.type->planOrder, b.stationNo, b.addressIndex, a.sequence);
}

bool isSameGroup(const PlanEntry& a, const PlanEntry& b)
{
    return a.type == b.type && a.stationNo == b.stationNo;
}

void appendPieces(const KEY_ADDRESS& key, std::vector<PlanEntry>& pieces)
{
    const RegisterType* type = findRegisterType(key.registerType);
    if (key.stationNo == unpolledStation || type == nullptr)
        return;
    const int limit = isBit(*type) ? bitsPerRequest() : wordsPerRequest();
    const PieceCutter cutter(key.startIndex, key.length, limit);
    for (int i = 0; i < cutter.pieceCount(); ++i)
        pieces.push_back({type, key.stationNo, cutter.start(i), cutter.length(i), pieces.size()});
}

std::vector<PlanEntry> sortedPieces(const QList<KEY_ADDRESS>& keys)
{
    std::vector<PlanEntry> pieces;
    pieces.reserve(static_cast<std::size_t>(keys.size()));
    for (const KEY_ADDRESS& key : keys)
        appendPieces(key, pieces);
    std::sort(pieces.begin(), pieces.end(), isPolledBefore);
    return pieces;
}

qint64 bytesOfBits(qint64 bits)
{
    return bits / bitsPerArea + (bits % bitsPerArea != 0 ? 1 : 0);
}

// A bit piece in whole bytes. Its byte count comes from its own count alone, not from where it
// starts within its first byte: M5 with 8 bits reads M0 to M7.
PlanEntry inBytes(PlanEntry piece)
{
    piece.addressIndex = bitAreaStart(piece.addressIndex);
    piece.count = static_cast<int>(bytesOfBits(piece.count));
    return piece;
}

// Stretches `block` to the end of `next` when that fits a frame. False: `next` opens a new block.
bool joins(PlanEntry& block, const PlanEntry& next)
{
    const bool bits = isBit(*next.type);
    const qint64 elementsPerCount = bits ? bitsPerArea : 1;
    const qint64 limit = bits ? bitsPerRequest() : wordsPerRequest();
    const qint64 end = next.addressIndex + elementsPerCount * next.count;
    if (end <= block.addressIndex + elementsPerCount * block.count)
        return true;  // already covered
    const qint64 span = end - block.addressIndex;
    if (span > limit)
        return false;
    block.count = static_cast<int>(bits ? bytesOfBits(span) : span);
    return true;
}

std::vector<PlanEntry> mergedBlocks(const std::vector<PlanEntry>& pieces)
{
    std::vector<PlanEntry> blocks;
    for (const PlanEntry& piece : pieces) {
        const PlanEntry next = isBit(*piece.type) ? inBytes(piece) : piece;
        if (blocks.empty() || !isSameGroup(blocks.back(), next) || !joins(blocks.back(), next))
            blocks.push_back(next);
    }
    return blocks;
}

VARIABLE readRequest(const PlanEntry& block)
{
    VARIABLE request;
    request.tag = planTag;
    request.stationNo = block.stationNo;
    request.registerType = registerTypeName(*block.type);
    request.addressIndex = block.addressIndex;
    request.count = block.count;
    return request;
}

}  // namespace

int intf_addrMerge(QList<KEY_ADDRESS>& keys)
{
    clearMonitorFlags();
    const QList<KEY_ADDRESS>& monitored = keys;
    for (const KEY_ADDRESS& key : monitored)
        _setDataAreaMonitorFlag(key.stationNo, key.registerType, key.startIndex, key.length);
    driver.readList.clear();
    for (const PlanEntry& block : mergedBlocks(sortedPieces(monitored)))
        driver.readList.append(readRequest(block));
    return static_cast<int>(driver.readList.size());
}
