// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// From reply characters to data areas. Areas are numbered from the request's own start on, also
// when a bit read does not start on a multiple of eight.

#include "protocol/reply_decoding.h"

#include "cache/data_areas.h"
#include "cache/notification.h"
#include "cache/recipe.h"
#include "driver/integers.h"
#include "protocol/frame_format.h"

#include <algorithm>

namespace {

struct Value
{
    unsigned char bytes[4];
};

// Lower-case digits decode like upper-case ones, anything else to some digit: a reply that passed
// its sum is taken as it is.
constexpr unsigned int nibble(unsigned int character)
{
    if (character < 0x30 || character == 0x40)
        return 0;
    if (character < 0x40)
        return character - 0x30;
    return (character - 0x37) % 16;
}

class ReplyReader
{
public:
    explicit ReplyReader(const QByteArray& reply)
        : m_reply(reinterpret_cast<const unsigned char*>(reply.constData())),
          m_length(static_cast<int>(reply.size()))
    {}
    unsigned char byteAt(int position) const
    {
        return static_cast<unsigned char>(nibbleAt(position) << 4 | nibbleAt(position + 1));
    }

private:
    unsigned int nibbleAt(int position) const
    {
        return position < m_length ? nibble(m_reply[position]) : 0;
    }

    const unsigned char* m_reply;
    int m_length;
};

// Start of area `k` of a run; false past the largest number.
bool areaStart(const ReadRange& range, int k, int& startIndex)
{
    const qint64 step = isBit(*range.type) ? bitsPerArea : 1;
    const qint64 start = range.addressIndex + step * k;
    startIndex = static_cast<int>(start);
    return start <= largestInt;
}

void notifyRead(int stationNo, const RegisterType& type, int startIndex, unsigned char newBits)
{
    // A bit area hands over the new byte as the old one too: bits that change in the PLC are not
    // reported, the host learns them by reading.
    _OnlyOneDataTypeDataChange(stationNo, registerTypeName(type), startIndex, isBit(type) ? 1 : 0,
                               isBit(type) ? newBits : 0, isBit(type) ? newBits : 0,
                               isBit(type) ? 1 : 0);
}

void storeValue(int stationNo, const RegisterType& type, int startIndex, const Value& value)
{
    const int position = areaPositionAt(stationNo, type, startIndex);
    const _DATA_& stored = driver.dataAreas.at(position);
    const int byteCount = valueBytes(type);
    const bool isChanged = !std::equal(value.bytes, value.bytes + byteCount, stored.valueBuffer0);
    if (!isChanged && stored.flag0 == 0)
        return;
    {
        const AreaIndex::Edit edit(driver.areaIndex, driver.dataAreas);
        _DATA_& area = driver.dataAreas[position];
        area.flag0 = 0;
        std::copy(value.bytes, value.bytes + byteCount, area.valueBuffer0);
        if (isChanged)
            area.bufferSelect = 0;  // the PLC's value replaces a write that waits
    }
    if (isChanged)
        notifyRead(stationNo, type, startIndex, value.bytes[0]);
}

// First recipe word that the upload in progress fills; none when there is no upload, or when its
// list was replaced by one that ends before its place.
bool uploadTarget(qint64& recipeWord)
{
    const int index = driver.recipeIndex;
    if (driver.operationKind != static_cast<int>(OperationKind::RecipeUpload) || index < 0 ||
        index >= driver.recipeVars.size())
        return false;
    recipeWord = driver.recipeVars.at(index).recipeWordOffset;
    return true;
}

}  // namespace

ReadRange::ReadRange(const FRAME_PRO& frame)
    : type(findRegisterType(frame.variable.registerType)), stationNo(frame.variable.stationNo),
      addressIndex(frame.variable.addressIndex), dataStart(frame.isRead),
      dataChars(frame.replyDataChars)
{}

void storeReply(const ReadRange& range, const QByteArray& reply)
{
    if (range.type == nullptr)
        return;
    const ReplyReader reader(reply);
    const int byteCount = valueBytes(*range.type);
    const int areaCount = range.dataChars / (charsPerByte * byteCount);
    qint64 recipeWord = 0;
    const bool isUpload = uploadTarget(recipeWord) && !isBit(*range.type);

    int startIndex = 0;
    for (int k = 0; k < areaCount && areaStart(range, k, startIndex); ++k) {
        Value value = {};
        for (int i = 0; i < byteCount; ++i)
            value.bytes[i] = reader.byteAt(range.dataStart + charsPerByte * (k * byteCount + i));
        storeValue(range.stationNo, *range.type, startIndex, value);
        for (int i = 0; isUpload && i < byteCount; i += bytesPerWord)
            storeRecipeWord(recipeWord++, value.bytes + i);
    }
}

void markStale(const ReadRange& range)
{
    if (range.type == nullptr)
        return;
    const int areaCount = isBit(*range.type) ? range.dataChars : range.dataChars / charsPerByte;
    int startIndex = 0;
    for (int k = 0; k < areaCount && areaStart(range, k, startIndex); ++k) {
        const int position = areaPositionAt(range.stationNo, *range.type, startIndex);
        const AreaIndex::Edit edit(driver.areaIndex, driver.dataAreas);
        driver.dataAreas[position].flag0 = 1;
    }
}
