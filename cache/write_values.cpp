// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Cutting host writes into requests, mirroring, confirming and undoing them.

#include "cache/write_values.h"

#include "cache/data_areas.h"
#include "cache/notification.h"
#include "driver/request_queue.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int confirmed = 1;

VARIABLE writeRequest(int tag, int stationNo, const QString& registerType)
{
    VARIABLE request;
    request.tag = tag;
    request.stationNo = stationNo;
    request.registerType = registerType;
    return request;
}

void queueBits(VARIABLE request, int startIndex, int bitCount, const unsigned char* data)
{
    request.count = 1;
    for (int i = 0; i < bitCount; ++i) {
        request.addressIndex = startIndex + i;
        request.data[0] = data[i];
        addVarToList(driver.writeList, request);
    }
}

// Counts words for every word type: a counter can be split between two requests, and the second
// one then starts at a number that advanced by words.
void queueWords(VARIABLE request, int startIndex, int wordCount, const unsigned char* data)
{
    const int wordLimit = qMin(wordsPerRequest(), fxMaxWriteWords);
    for (int done = 0; done < wordCount; done += wordLimit) {
        request.addressIndex = startIndex + done;
        request.count = qMin(wordLimit, wordCount - done);
        const unsigned char* piece = data + static_cast<qint64>(bytesPerWord) * done;
        const int pieceBytes = bytesPerWord * request.count;
        std::fill(std::copy(piece, piece + pieceBytes, request.data), std::end(request.data), 0);
        addVarToList(driver.writeList, request);
    }
}

void queueWrite(const RegisterType& type, VARIABLE request, int startIndex, int count,
                const unsigned char* data)
{
    if (!type.writable)
        return;  // inputs: the PLC is never asked, yet the cache takes the value
    if (isBit(type))
        queueBits(request, startIndex, servedElements(type, startIndex, count), data);
    else
        queueWords(request, startIndex, servedCount(startIndex, count), data);
}

// What a host write makes of the value that readers see: of a bit area one bit, else all of it.
struct MirroredValue
{
    unsigned char bytes[4];
};

MirroredValue mirrored(const RegisterType& type, const _DATA_& area, int address,
                       const unsigned char* data)
{
    MirroredValue value = {};
    if (isBit(type)) {
        const int on = *data == 1 ? 1 : 0;  // any other byte clears the bit
        const int bits = _setBitValue(currentValue(area)[0], bitInArea(address), on);
        value.bytes[0] = static_cast<unsigned char>(bits);
    } else {
        std::copy_n(data, valueBytes(type), value.bytes);
    }
    return value;
}

bool differs(const RegisterType& type, const _DATA_& area, const MirroredValue& value)
{
    return !std::equal(value.bytes, value.bytes + valueBytes(type), currentValue(area));
}

void mirrorElement(int stationNo, const RegisterType& type, int address, const unsigned char* data)
{
    const AreaFinder finder(stationNo, type);
    const int start = areaStart(type, address);
    const _DATA_& area = finder.area(start);
    if (differs(type, area, mirrored(type, area, address, data)))
        notifyElement(stationNo, type, address);

    // Found and made up again: the host may have written a neighbouring bit meanwhile.
    const WritableArea mirror = finder.writableArea(start);
    const MirroredValue value = mirrored(type, *mirror, address, data);
    std::copy_n(value.bytes, valueBytes(type), mirror->valueBuffer1);
    mirror->bufferSelect = 1;
}

void mirrorWrite(int stationNo, const RegisterType& type, int startIndex, int count,
                 const unsigned char* data)
{
    const int elements = servedElements(type, startIndex, count);
    for (int i = 0; i < elements; ++i, data += valueBytes(type))
        mirrorElement(stationNo, type, startIndex + i, data);
}

void endWrite(const WritableArea& area, const RegisterType& type, bool isConfirmed)
{
    area->bufferSelect = 0;
    if (isConfirmed)  // of a bit the whole byte, not the one bit alone
        std::copy_n(area->valueBuffer1, valueBytes(type), area->valueBuffer0);
}

}  // namespace

void addVarToList(QList<VARIABLE>& list, VARIABLE& var)
{
    enqueueRequest(list, var);
}

void write_saveDataToArea(int stationNo, QString registerType, int startIndex, int count,
                          unsigned char* data)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type != nullptr && data != nullptr)
        mirrorWrite(stationNo, *type, startIndex, count, data);
}

void write_FailOrSuc(int stationNo, QString registerType, int startIndex, int count, int success)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr)
        return;
    const AreaFinder finder(stationNo, *type);
    const int elements = servedElements(*type, startIndex, count);
    for (int i = 0; i < elements; ++i) {
        const int address = startIndex + i;
        endWrite(finder.writableArea(areaStart(*type, address)), *type, success == confirmed);
        notifyElement(stationNo, *type, address);
    }
}

int intf_setData(int stationNo, QString registerType, int startIndex, int count,
                 unsigned char* data, int tag)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr || data == nullptr)
        return fxDone;
    if (driver.cacheOnlyWrites == 0)
        queueWrite(*type, writeRequest(tag, stationNo, registerType), startIndex, count, data);
    mirrorWrite(stationNo, *type, startIndex, count, data);
    return fxDone;
}
