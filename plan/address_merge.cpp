// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Turns the monitored ranges into the cyclic polling plan: cuts each range into pieces that fit a
// frame, sorts the pieces, and joins neighbours of one type and station as long as the stretched
// block still fits, so that a cycle costs as few frames as possible.

#include "address/register_types.h"
#include "cache/data_areas.h"
#include "plan/pieces.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <optional>
#include <tuple>
#include <vector>

namespace {

// What one frame could read of one key. `count` is in bits or words.
struct Piece
{
    int addressIndex;
    int count;
};

// Pieces are merged only with their own type and station; the plan lists these groups in order.
struct Group
{
    const RegisterType* type;
    int stationNo;
};

bool operator<(const Group& a, const Group& b)
{
    return std::tie(a.type->planOrder, a.stationNo) < std::tie(b.type->planOrder, b.stationNo);
}

using PieceMap = std::map<Group, std::vector<Piece>>;

// One read request of the plan. `count` is in bytes of eight bits, or in words.
struct Block
{
    Group group;
    int addressIndex;
    int count;
};

int requestLimit(const RegisterType& type)
{
    return isBit(type) ? bitsPerRequest() : wordsPerRequest();
}

void filePieces(const KEY_ADDRESS& key, PieceMap& pieces)
{
    const RegisterType* type = findRegisterType(key.registerType);
    if (key.stationNo == fxUnpolledStation || type == nullptr)
        return;
    const PieceCutter cutter(key.startIndex, key.length, requestLimit(*type));
    if (cutter.pieceCount() == 0)
        return;
    std::vector<Piece>& group = pieces[{type, key.stationNo}];
    for (int i = 0; i < cutter.pieceCount(); ++i)
        group.push_back({cutter.start(i), cutter.length(i)});
}

// The byte of a piece's address from bit `shift` on, of a number that has negative addresses first.
std::size_t addressByte(const Piece& piece, int shift)
{
    const unsigned int number = static_cast<unsigned int>(piece.addressIndex) ^ 0x80000000U;
    return (number >> shift) & 0xFFU;
}

// By address; of equal addresses the piece that was cut last comes first. One pass for each byte of
// the address, the lowest first, each keeping the order of the pass before: the time grows with the
// number of pieces alone.
void sortPieces(std::vector<Piece>& pieces)
{
    std::reverse(pieces.begin(), pieces.end());
    std::vector<Piece> sorted(pieces.size());
    for (int shift = 0; shift < 32; shift += 8) {
        std::array<std::size_t, 256 + 1> starts = {};  // where the pieces with each byte go
        for (const Piece& piece : pieces)
            ++starts[addressByte(piece, shift) + 1];
        std::partial_sum(starts.begin(), starts.end(), starts.begin());
        for (const Piece& piece : pieces)
            sorted[starts[addressByte(piece, shift)]++] = piece;
        pieces.swap(sorted);
    }
}

qint64 bytesOfBits(qint64 bits)
{
    return bits / bitsPerArea + (bits % bitsPerArea != 0 ? 1 : 0);
}

// A bit piece opens a block of whole bytes. Their number comes from its own count alone, not from
// where it starts within its first byte: M5 with 8 bits reads M0 to M7.
Block openBlock(const Group& group, const Piece& piece)
{
    if (!isBit(*group.type))
        return {group, piece.addressIndex, piece.count};
    return {group, bitAreaStart(piece.addressIndex), static_cast<int>(bytesOfBits(piece.count))};
}

// The count with which `block` covers `next` too; none when that does not fit a frame.
std::optional<int> countOverBoth(const Block& block, const Block& next)
{
    const RegisterType& type = *block.group.type;
    const qint64 elementsPerCount = isBit(type) ? bitsPerArea : 1;
    const qint64 end = next.addressIndex + elementsPerCount * next.count;
    if (end <= block.addressIndex + elementsPerCount * block.count)
        return block.count;  // already covered
    const qint64 span = end - block.addressIndex;
    if (span > requestLimit(type))
        return std::nullopt;
    return static_cast<int>(isBit(type) ? bytesOfBits(span) : span);
}

// Only the block opened last can grow; there is no limit on the gap that it bridges.
void mergeGroup(const Group& group, const std::vector<Piece>& pieces, std::vector<Block>& blocks)
{
    const std::size_t firstOfGroup = blocks.size();
    for (const Piece& piece : pieces) {
        const Block next = openBlock(group, piece);
        const bool isFirst = blocks.size() == firstOfGroup;
        if (const auto both = isFirst ? std::nullopt : countOverBoth(blocks.back(), next))
            blocks.back().count = *both;
        else
            blocks.push_back(next);
    }
}

void fillRequest(VARIABLE& request, const Block& block)
{
    request.tag = fxPlanTag;
    request.stationNo = block.group.stationNo;
    request.registerType = registerTypeName(*block.group.type);
    request.addressIndex = block.addressIndex;
    request.count = block.count;
}

// Requests of the old plan are filled anew where they lie: at a kilobyte each, giving them back and
// taking them again would cost most of a merge. Their data has no meaning for a read.
void replacePlan(const std::vector<Block>& blocks)
{
    QList<VARIABLE>& plan = driver.readList;
    const int blockCount = static_cast<int>(blocks.size());
    if (plan.size() > blockCount)
        plan.erase(plan.begin() + blockCount, plan.end());
    plan.reserve(blockCount);
    while (plan.size() < blockCount)
        plan.append(VARIABLE());
    for (int i = 0; i < blockCount; ++i)
        fillRequest(plan[i], blocks[static_cast<std::size_t>(i)]);
}

}  // namespace

int intf_addrMerge(QList<KEY_ADDRESS>& keys)
{
    const QList<KEY_ADDRESS>& monitored = keys;
    PieceMap pieces;
    clearMonitorFlags();
    for (const KEY_ADDRESS& key : monitored) {
        _setDataAreaMonitorFlag(key.stationNo, key.registerType, key.startIndex, key.length);
        filePieces(key, pieces);
    }
    std::vector<Block> blocks;
    for (auto& group : pieces) {
        sortPieces(group.second);
        mergeGroup(group.first, group.second, blocks);
    }
    replacePlan(blocks);
    return static_cast<int>(driver.readList.size());
}
