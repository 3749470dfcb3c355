// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The model's planning: the merge of monitored ranges into read requests, one-off reads, and the
// queue rule that they share with the host's writes.

#include "tests/model/model_driver.h"

#include <algorithm>
#include <climits>
#include <set>

namespace {

const char* const planOrder[] = {"X", "Y", "M", "SM", "S", "T", "C", "D", "SD", "TV", "CV", "32CV"};

bool sameRequest(const VARIABLE& a, const VARIABLE& b)
{
    return a.stationNo == b.stationNo && a.registerType == b.registerType &&
           a.addressIndex == b.addressIndex && a.count == b.count;
}

long long downTo8(long long number)
{
    return number / 8 * 8;
}

long long bytesOf(long long bits)
{
    return bits / 8 + (bits % 8 != 0 ? 1 : 0);
}

}  // namespace

int ModelDriver::wordLimit() const
{
    return std::max(1, maxWordsPerFrame);
}

int ModelDriver::bitLimit() const
{
    return static_cast<int>(std::min<long long>(8LL * wordLimit(), INT_MAX));
}

// Pieces of `limit` elements, the rest in the last; elements whose number is no integer are left
// out.
ModelDriver::Pieces ModelDriver::cut(int start, int length, int limit)
{
    Pieces pieces;
    length = modelNumbered(start, std::min(length, fxMaxElements));
    for (int done = 0; done < length; done += std::min(limit, length - done))
        pieces.push_back({start + done, std::min(limit, length - done)});
    return pieces;
}

int ModelDriver::addrMerge(QList<KEY_ADDRESS>& keys)
{
    for (_DATA_& area : dataAreas)
        area.monitorFlags = area.changeFlags = 0;
    std::set<int> stations;
    for (int i = 0; i < keys.size(); ++i) {
        mark(keys[i].stationNo, keys[i].registerType, keys[i].startIndex, keys[i].length);
        stations.insert(keys[i].stationNo);
    }
    stations.erase(0);  // marked, not polled
    readList.clear();
    for (const char* type : planOrder) {
        for (const int station : stations)
            mergeGroup(type, station, piecesOf(keys, type, station));
    }
    return static_cast<int>(readList.size());
}

// The pieces of one type and station, the one that was cut last first.
ModelDriver::Pieces ModelDriver::piecesOf(QList<KEY_ADDRESS>& keys, const QString& type,
                                          int station) const
{
    Pieces pieces;
    for (int i = 0; i < keys.size(); ++i) {
        if (keys[i].stationNo != station || keys[i].registerType != type)
            continue;
        const int limit = modelIsBit(type) ? bitLimit() : wordLimit();
        for (const Piece& piece : cut(keys[i].startIndex, keys[i].length, limit))
            pieces.insert(pieces.begin(), piece);
    }
    return pieces;
}

// The exchange sort of the plan: stable, ascending by address.
void ModelDriver::sortByAddress(Pieces& pieces)
{
    const size_t n = pieces.size();
    for (size_t i = 1; i < n; ++i) {
        for (size_t j = n - 1; j >= i; --j) {
            if (pieces[j].start < pieces[j - 1].start)
                std::swap(pieces[j - 1], pieces[j]);
        }
    }
}

void ModelDriver::mergeGroup(const QString& type, int station, Pieces pieces)
{
    sortByAddress(pieces);
    const bool bits = modelIsBit(type);
    long long blockStart = 0;
    long long blockCount = 0;
    for (size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0 && (bits ? joinsBits(pieces[i], blockStart, blockCount)
                           : joinsWords(pieces[i], blockStart, blockCount))) {
            readList.back().count = static_cast<int>(blockCount);
            continue;
        }
        blockStart = bits ? downTo8(pieces[i].start) : pieces[i].start;
        blockCount = bits ? bytesOf(pieces[i].length) : pieces[i].length;
        VARIABLE request;
        request.tag = 4;
        request.stationNo = station;
        request.registerType = type;
        request.addressIndex = static_cast<int>(blockStart);
        request.count = static_cast<int>(blockCount);
        readList.push_back(request);
    }
}

// False when the piece opens a new block.
bool ModelDriver::joinsBits(const Piece& piece, long long& blockStart, long long& blockCount) const
{
    const long long end = downTo8(piece.start) + 8 * bytesOf(piece.length);
    if (end <= blockStart + 8 * blockCount)
        return true;
    const long long span = end - blockStart;
    if (span > bitLimit())
        return false;
    blockCount = bytesOf(span);
    return true;
}

bool ModelDriver::joinsWords(const Piece& piece, long long& blockStart, long long& blockCount) const
{
    const long long end = static_cast<long long>(piece.start) + piece.length;
    if (end <= blockStart + blockCount)
        return true;
    const long long span = end - blockStart;
    if (span > wordLimit())
        return false;
    blockCount = span;
    return true;
}

int ModelDriver::addConditionRead(KEY_ADDRESS& key, int tag)
{
    const int limit = key.bitIndex == -1 ? bitLimit() : wordLimit();
    Pieces pieces{{key.startIndex, key.length}};
    if (key.length > limit)
        pieces = cut(key.startIndex, key.length, limit);
    for (const Piece& piece : pieces) {
        VARIABLE request;
        request.tag = tag;
        request.stationNo = key.stationNo;
        request.registerType = key.registerType;
        request.addressIndex = piece.start;
        request.count = piece.length;
        queue(conditionReadList, request);
        lastConditionRead = request;
    }
    return 1;
}

// An equal request behind the head is replaced where it stands; a full queue loses its last.
void ModelDriver::queue(std::deque<VARIABLE>& list, const VARIABLE& request)
{
    for (size_t i = list.size(); i-- > 1;) {
        if (sameRequest(list[i], request)) {
            list[i] = request;
            return;
        }
    }
    if (list.size() > 512)
        list[512] = request;
    else
        list.push_back(request);
}
