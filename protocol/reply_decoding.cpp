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
#include "driver/intf.h"
#include "protocol/frame_format.h"

#include <array>

namespace {

constexpr int maxAreas = 4 * fxMaxElements;  // what the longest read of counters marks as stale

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

constexpr std::array<unsigned char, 256> makeNibbles()
{
    std::array<unsigned char, 256> table = {};
    for (std::size_t character = 0; character < table.size(); ++character)
        table[character] = static_cast<unsigned char>(nibble(static_cast<unsigned int>(character)));
    return table;
}

constexpr std::array<unsigned char, 256> nibbles = makeNibbles();

// Values are handled as numbers, their first byte lowest.
template <int valueBytes>
unsigned int packedBytes(const unsigned char* bytes)
{
    unsigned int value = 0;
    for (int i = 0; i < valueBytes; ++i)
        value |= static_cast<unsigned int>(bytes[i]) << (8 * i);
    return value;
}

class ReplyReader
{
public:
    explicit ReplyReader(const QByteArray& reply)
        : m_reply(reinterpret_cast<const unsigned char*>(reply.constData())),
          m_length(static_cast<int>(reply.size()))
    {}

    template <int valueBytes>
    unsigned int valueAt(int position) const
    {
        unsigned int value = 0;
        for (int i = 0; i < valueBytes; ++i)
            value |= byteAt(position + charsPerByte * i) << (8 * i);
        return value;
    }

private:
    unsigned int byteAt(int position) const
    {
        return nibbleAt(position) << 4 | nibbleAt(position + 1);
    }
    unsigned int nibbleAt(int position) const
    {
        return position < m_length ? nibbles[m_reply[position]] : 0U;
    }

    const unsigned char* m_reply;
    int m_length;
};

// Start of area `k` of a run; false past the largest number, and past what a frame limit beyond all
// that a PLC can address may cost in memory.
bool startOfArea(const ReadRange& range, int k, int& startIndex)
{
    if (k >= maxAreas)
        return false;
    const qint64 step = isBit(*range.type) ? bitsPerArea : 1;
    const qint64 start = range.addressIndex + step * k;
    startIndex = static_cast<int>(start);
    return start <= largestInt;
}

// Stores one value; true when it changed.
template <int valueBytes>
bool storeValue(int position, unsigned int value)
{
    const _DATA_& stored = driver.dataAreas.at(position);
    const bool isChanged = packedBytes<valueBytes>(stored.valueBuffer0) != value;
    if (!isChanged && stored.flag0 == 0)
        return false;
    const AreaIndex::Edit edit(driver.areaIndex, driver.dataAreas);
    _DATA_& area = driver.dataAreas[position];
    area.flag0 = 0;
    if (!isChanged)
        return false;
    for (int i = 0; i < valueBytes; ++i)
        area.valueBuffer0[i] = static_cast<unsigned char>(value >> (8 * i));
    area.bufferSelect = 0;  // the PLC's value replaces a write that waits
    return true;
}

void notifyRead(const ReadRange& range, int startIndex, unsigned char newBits)
{
    if (!isBit(*range.type))
        return notifyElement(range.stationNo, *range.type, startIndex);
    // The new byte is handed over as the old one too: bits that change in the PLC are not
    // reported, the host learns them by reading.
    _OnlyOneDataTypeDataChange(range.stationNo, registerTypeName(*range.type), startIndex, 1,
                               newBits, newBits, 1);
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

template <int valueBytes>
void storeValues(const ReadRange& range, const ReplyReader& reader)
{
    constexpr int valueChars = charsPerByte * valueBytes;
    constexpr int valueWords = valueBytes / bytesPerWord;  // 0 for bits, which recipes do not take
    const AreaFinder finder(range.stationNo, registerTypeName(*range.type));
    const int areaCount = range.dataChars / valueChars;
    qint64 recipeWord = 0;
    const bool isUpload = valueWords > 0 && uploadTarget(recipeWord);

    int startIndex = 0;
    for (int k = 0; k < areaCount && startOfArea(range, k, startIndex); ++k) {
        const unsigned int value = reader.valueAt<valueBytes>(range.dataStart + valueChars * k);
        if (storeValue<valueBytes>(finder.position(startIndex), value))
            notifyRead(range, startIndex, static_cast<unsigned char>(value));
        if (isUpload)
            storeRecipeValue(recipeWord + static_cast<qint64>(valueWords) * k, valueWords, value);
    }
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
    switch (range.type->kind) {
    case RegisterKind::Bit:
        return storeValues<1>(range, reader);
    case RegisterKind::Word:
        return storeValues<2>(range, reader);
    case RegisterKind::DoubleWord:
        return storeValues<4>(range, reader);
    }
}

void markStale(const ReadRange& range)
{
    if (range.type == nullptr)
        return;
    const AreaFinder finder(range.stationNo, registerTypeName(*range.type));
    const int areaCount = isBit(*range.type) ? range.dataChars : range.dataChars / charsPerByte;
    int startIndex = 0;
    for (int k = 0; k < areaCount && startOfArea(range, k, startIndex); ++k) {
        const int position = finder.position(startIndex);
        const AreaIndex::Edit edit(driver.areaIndex, driver.dataAreas);
        driver.dataAreas[position].flag0 = 1;
    }
}
