// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The PLC's side of the cache.

#include "cache/polled_values.h"

#include "cache/data_areas.h"
#include "cache/notification.h"
#include "cache/recipe_list.h"
#include "cache/recipe_words.h"
#include "driver/integers.h"

#include <algorithm>

namespace {

int areaStep(const RegisterType& type)
{
    return isBit(type) ? bitsPerArea : 1;
}

// How many of `areaCount` areas from `startIndex` on have a start that fits 32 bits.
int areasFrom(int startIndex, int step, int areaCount)
{
    return static_cast<int>(qMin<qint64>(areaCount, (intsFrom(startIndex) + step - 1) / step));
}

// Stores one value; true when it changed.
template <RegisterKind kind>
bool storeValue(const AreaFinder& finder, int startIndex, const unsigned char* value)
{
    constexpr int byteCount = valueBytes(kind);
    const _DATA_& stored = finder.area(startIndex);
    const bool isChanged = !std::equal(value, value + byteCount, stored.valueBuffer0);
    if (!isChanged && stored.flag0 == 0)
        return false;
    const WritableArea area = finder.writableArea(startIndex);
    area->flag0 = 0;
    if (isChanged) {
        std::copy_n(value, byteCount, area->valueBuffer0);
        area->bufferSelect = 0;  // the PLC's value replaces a write that waits
    }
    return isChanged;
}

void notifyPolled(int stationNo, const RegisterType& type, int startIndex, unsigned char newBits)
{
    if (!isBit(type))
        return notifyElement(stationNo, type, startIndex);
    // The new byte is handed over as the old one too: bits that change in the PLC are not
    // reported, the host learns them by reading.
    _OnlyOneDataTypeDataChange(stationNo, registerTypeName(type), startIndex, 1, newBits, newBits,
                               1);
}

// For each kind by itself, so that the width of a value is known when it is compiled.
template <RegisterKind kind>
void storeValues(int stationNo, const RegisterType& type, int startIndex,
                 const std::vector<unsigned char>& bytes)
{
    constexpr int byteCount = valueBytes(kind);
    constexpr int wordCount = byteCount / bytesPerWord;  // 0 for bits, which recipes do not take
    const AreaFinder finder(stationNo, type);
    const int step = areaStep(type);
    const int areaCount = areasFrom(startIndex, step, static_cast<int>(bytes.size()) / byteCount);
    const std::optional<qint64> recipeWord = uploadTarget();
    const unsigned char* value = bytes.data();
    for (int k = 0; k < areaCount; ++k, value += byteCount) {
        const int start = startIndex + step * k;
        if (storeValue<kind>(finder, start, value))
            notifyPolled(stationNo, type, start, value[0]);
        if (recipeWord)
            storeRecipeWords(*recipeWord + static_cast<qint64>(wordCount) * k, value, wordCount);
    }
}

}  // namespace

void storePolledValues(int stationNo, QString registerType, int startIndex,
                       const std::vector<unsigned char>& bytes)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr)
        return;
    switch (type->kind) {
    case RegisterKind::Bit:
        return storeValues<RegisterKind::Bit>(stationNo, *type, startIndex, bytes);
    case RegisterKind::Word:
        return storeValues<RegisterKind::Word>(stationNo, *type, startIndex, bytes);
    case RegisterKind::DoubleWord:
        return storeValues<RegisterKind::DoubleWord>(stationNo, *type, startIndex, bytes);
    }
}

void markStale(int stationNo, QString registerType, int startIndex, int areaCount)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr)
        return;
    const AreaFinder finder(stationNo, *type);
    const int step = areaStep(*type);
    const int served = areasFrom(startIndex, step, areaCount);
    for (int k = 0; k < served; ++k)
        finder.writableArea(startIndex + step * k)->flag0 = 1;
}
