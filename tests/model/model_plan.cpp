// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The model's planning: the merge of monitored ranges into read requests, one-off reads, and the
// queue rule that they share with the host's writes.

#include "tests/model/model_driver.h"

#include <algorithm>
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

// The exchange sort of the plan: stable, ascending by address.
void sortByAddress(std::vector<VARIABLE>& pieces)
{
    const int n = static_cast<int>(pieces.size());
    for (int i = 1; i < n; ++i) {
        for (int j = n - 1; j >= i; --j) {
            VARIABLE& left = pieces[static_cast<size_t>(j - 1)];
            VARIABLE& right = pieces[static_cast<size_t>(j)];
            if (right.addressIndex < left.addressIndex)
                std::swap(left, right);
        }
    }
}

}  // namespace

int ModelDriver::wordLimit() const
{
    return std::max(1, std::min(maxWordsPerFrame, modelMostElements));
}

int ModelDriver::bitLimit() const
{
    return 8 * wordLimit();
}

// Pieces of `limit` elements, the rest in the last; elements whose number is no integer are left
// out.
std::vector<ModelDriver::Piece> ModelDriver::cut(int start, int length, int limit)
{
    std::vector<Piece> pieces;
    length = modelNumbered(start, std::min(length, modelMostElements));
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
            mergeGroup(piecesOf(keys, type, station));
    }
    return static_cast<int>(readList.size());
}

// The pieces of one type and station, the one that was cut last first.
std::vector<VARIABLE> ModelDriver::piecesOf(QList<KEY_ADDRESS>& keys, const QString& type,
                                            int station) const
{
    std::vector<VARIABLE> pieces;
    for (int i = 0; i < keys.size(); ++i) {
        if (keys[i].stationNo != station || keys[i].registerType != type)
            continue;
        const int limit = modelIsBit(type) ? bitLimit() : wordLimit();
        for (const Piece& piece : cut(keys[i].startIndex, keys[i].length, limit)) {
            VARIABLE request;
            request.tag = 4;
            request.stationNo = station;
            request.registerType = type;
            request.addressIndex = piece.start;
            request.count = piece.length;
            pieces.insert(pieces.begin(), request);
        }
    }
    return pieces;
}

void ModelDriver::mergeGroup(std::vector<VARIABLE> pieces)
{
    sortByAddress(pieces);
    long long blockStart = 0;
    long long blockCount = 0;
    for (size_t i = 0; i < pieces.size(); ++i) {
        if (modelIsBit(pieces[i].registerType))
            mergeBits(pieces[i], i == 0, blockStart, blockCount);
        else
            mergeWords(pieces[i], i == 0, blockStart, blockCount);
    }
}

void ModelDriver::mergeBits(const VARIABLE& piece, bool first, long long& blockStart,
                            long long& blockCount)
{
    const long long start = downTo8(piece.addressIndex);
    const long long end = start + 8 * bytesOf(piece.count);
    if (!first && end <= blockStart + 8 * blockCount)
        return;
    const long long span = end - blockStart;
    if (!first && span <= bitLimit()) {
        blockCount = bytesOf(span);
        readList.back().count = static_cast<int>(blockCount);
        return;
    }
    blockStart = start;
    blockCount = bytesOf(piece.count);
    VARIABLE request = piece;
    request.addressIndex = static_cast<int>(blockStart);
    request.count = static_cast<int>(blockCount);
    readList.push_back(request);
}

void ModelDriver::mergeWords(const VARIABLE& piece, bool first, long long& blockStart,
                             long long& blockCount)
{
    const long long end = static_cast<long long>(piece.addressIndex) + piece.count;
    if (!first && end <= blockStart + blockCount)
        return;
    const long long span = end - blockStart;
    if (!first && span <= wordLimit()) {
        blockCount = span;
        readList.back().count = static_cast<int>(span);
        return;
    }
    blockStart = piece.addressIndex;
    blockCount = piece.count;
    readList.push_back(piece);
}

int ModelDriver::addConditionRead(KEY_ADDRESS& key, int tag)
{
    const int limit = key.bitIndex == -1 ? bitLimit() : wordLimit();
    std::vector<Piece> pieces{{key.startIndex, key.length}};
    if (key.length > 0)
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
