// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The model's cache: areas found by a scan from the first upward, monitor marks, notification,
// the host's reads and writes, and the end of a write.

#include "tests/model/model_driver.h"

#include <algorithm>
#include <cstring>

namespace {

int areaStart(int bitAddress)
{
    return bitAddress / 8 * 8;
}

// Bits outside an area's eight (of negative addresses) are never set.
bool bitIsSet(int byte, int bit)
{
    return bit >= 0 && ((byte >> bit) & 1) != 0;
}

int withBit(int byte, int bit, bool on)
{
    if (bit < 0)
        return byte;
    return on ? byte | (1 << bit) : byte & ~(1 << bit);
}

unsigned char* currentBytes(_DATA_& area)
{
    return area.bufferSelect != 0 ? area.valueBuffer1 : area.valueBuffer0;
}

// None below 1, at most 65,536.
int capped(int count)
{
    return std::max(0, std::min(count, fxMaxElements));
}

// Elements that a call names: two words a counter, none of an unknown type.
int elements(const QString& type, int start, int count)
{
    if (type == "32CV")
        return modelNumbered(start, capped(count) / 2);
    return modelIsBit(type) || modelIsWord(type) ? modelNumbered(start, capped(count)) : 0;
}

}  // namespace

int ModelDriver::areaOf(int stationNo, const QString& type, int start)
{
    for (size_t i = 0; i < dataAreas.size(); ++i) {
        const _DATA_& area = dataAreas[i];
        if (area.stationNo == stationNo && area.registerType == type && area.startIndex == start)
            return static_cast<int>(i);
    }
    _DATA_ area;
    area.stationNo = stationNo;
    area.registerType = type;
    area.startIndex = start;
    dataAreas.push_back(area);
    return static_cast<int>(dataAreas.size()) - 1;
}

void ModelDriver::mark(int stationNo, const QString& type, int start, int length)
{
    const int total = elements(type, start, length);
    for (int i = 0; i < total; ++i) {
        const int number = start + i;
        if (modelIsBit(type)) {
            const auto index = static_cast<size_t>(areaOf(stationNo, type, areaStart(number)));
            dataAreas[index].changeFlags = withBit(dataAreas[index].changeFlags, number % 8, true);
        } else {
            dataAreas[static_cast<size_t>(areaOf(stationNo, type, number))].monitorFlags |= 1;
        }
    }
}

void ModelDriver::report(int link, int stationNo, const QString& text, int value) const
{
    QString own = text;
    if (valueChangeCallback)
        valueChangeCallback(link, stationNo, own, value);
}

void ModelDriver::reportElement(int stationNo, const QString& type, int number)
{
    bool monitored = false;
    if (modelIsBit(type)) {
        const int index = areaOf(stationNo, type, areaStart(number));
        monitored = bitIsSet(dataAreas[static_cast<size_t>(index)].changeFlags, number % 8);
    } else {
        const int index = areaOf(stationNo, type, number);
        monitored = (dataAreas[static_cast<size_t>(index)].monitorFlags & 1) != 0;
    }
    if (monitored)
        report(linkNo, stationNo, type, number);
}

void ModelDriver::reportBits(int stationNo, const QString& type, int number, int newBits,
                             int oldBits)
{
    const auto index = static_cast<size_t>(areaOf(stationNo, type, areaStart(number)));
    for (int bit = 0; bit < 8; ++bit) {
        if (bitIsSet(dataAreas[index].changeFlags, bit) &&
            bitIsSet(newBits, bit) != bitIsSet(oldBits, bit))
            report(linkNo, stationNo, type, number + bit);
    }
}

int ModelDriver::getData(int stationNo, QString registerType, int startIndex, int count,
                         unsigned char* out)
{
    const int total = out ? elements(registerType, startIndex, count) : 0;
    for (int i = 0; i < total; ++i) {
        const int number = startIndex + i;
        if (modelIsBit(registerType)) {
            const int index = areaOf(stationNo, registerType, areaStart(number));
            const int byte = currentBytes(dataAreas[static_cast<size_t>(index)])[0];
            out[i] = bitIsSet(byte, number % 8) ? 1 : 0;
        } else {
            const size_t width = registerType == "32CV" ? 4 : 2;
            const int index = areaOf(stationNo, registerType, number);
            std::memcpy(out + static_cast<size_t>(i) * width,
                        currentBytes(dataAreas[static_cast<size_t>(index)]), width);
        }
    }
    return 1;
}

int ModelDriver::setData(int stationNo, QString registerType, int startIndex, int count,
                         unsigned char* data, int tag)
{
    if (!data)
        return 1;
    const bool bits = modelIsBit(registerType);
    const bool words = modelIsWord(registerType) || registerType == "32CV";
    Pieces pieces;
    if (cacheOnlyWrites == 0 && registerType != "X" && (bits || words))
        pieces = cut(startIndex, modelNumbered(startIndex, capped(count)),
                     bits ? 1 : std::min(wordLimit(), 253));
    for (const Piece& piece : pieces) {
        VARIABLE request;
        request.tag = tag;
        request.stationNo = stationNo;
        request.registerType = registerType;
        request.addressIndex = piece.start;
        request.count = piece.length;
        const size_t width = bits ? 1 : 2;
        std::memcpy(request.data, data + static_cast<size_t>(piece.start - startIndex) * width,
                    static_cast<size_t>(piece.length) * width);
        queue(writeList, request);
    }
    mirror(stationNo, registerType, startIndex, count, data);
    return 1;
}

void ModelDriver::mirror(int stationNo, const QString& type, int start, int count,
                         const unsigned char* data)
{
    const int total = elements(type, start, count);
    for (int i = 0; i < total; ++i) {
        if (modelIsBit(type))
            mirrorBit(stationNo, type, start + i, data[i] == 1);
        else if (type == "32CV")
            mirrorBytes(stationNo, type, start + i, data + static_cast<size_t>(i) * 4, 4);
        else
            mirrorBytes(stationNo, type, start + i, data + static_cast<size_t>(i) * 2, 2);
    }
}

void ModelDriver::mirrorBit(int stationNo, const QString& type, int number, bool on)
{
    const auto index = static_cast<size_t>(areaOf(stationNo, type, areaStart(number)));
    const int byte = currentBytes(dataAreas[index])[0];
    if (withBit(byte, number % 8, on) != byte)
        reportElement(stationNo, type, number);
    // What the host wrote to the neighbours while it was told stays written.
    _DATA_& area = dataAreas[index];
    const int now = withBit(currentBytes(area)[0], number % 8, on);
    area.valueBuffer1[0] = static_cast<unsigned char>(now);
    area.bufferSelect = 1;
}

void ModelDriver::mirrorBytes(int stationNo, const QString& type, int number,
                              const unsigned char* bytes, int byteCount)
{
    const auto index = static_cast<size_t>(areaOf(stationNo, type, number));
    const auto size = static_cast<size_t>(byteCount);
    if (std::memcmp(currentBytes(dataAreas[index]), bytes, size) != 0)
        reportElement(stationNo, type, number);
    std::memcpy(dataAreas[index].valueBuffer1, bytes, size);
    dataAreas[index].bufferSelect = 1;
}

void ModelDriver::endWrite(const VARIABLE& request, bool success)
{
    const QString type = request.registerType;
    const int total = elements(type, request.addressIndex, request.count);
    const size_t size = modelIsBit(type) ? 1 : type == "32CV" ? 4 : 2;
    for (int i = 0; i < total; ++i) {
        const int number = request.addressIndex + i;
        const int start = modelIsBit(type) ? areaStart(number) : number;
        _DATA_& area = dataAreas[static_cast<size_t>(areaOf(request.stationNo, type, start))];
        area.bufferSelect = 0;
        if (success)
            std::memcpy(area.valueBuffer0, area.valueBuffer1, size);
        reportElement(request.stationNo, type, number);
    }
}
