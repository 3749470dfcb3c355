// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What must hold between the rows of the table, and the search for a row by name.

#include "address/register_types.h"

#include <QChar>

#include <array>
#include <iterator>

namespace {

constexpr std::size_t typeCount = std::size(registerTypes);
constexpr int longestName = 4;  // "32CV"
constexpr unsigned int noName = 0;

// A name as one number, a byte a character: one comparison a row instead of one a character.
constexpr unsigned int packName(const char* name)
{
    unsigned int packed = 0;
    for (; *name != '\0'; ++name)
        packed = (packed << 8) | static_cast<unsigned char>(*name);
    return packed;
}

unsigned int packName(const QString& name)
{
    if (name.size() > longestName)
        return noName;
    unsigned int packed = 0;
    for (const QChar letter : name) {
        const unsigned int character = letter.unicode();
        if (character == 0 || character > 0x7F)
            return noName;  // would alias another name in one byte
        packed = (packed << 8) | character;
    }
    return packed;
}

constexpr std::array<unsigned int, typeCount> packNames()
{
    std::array<unsigned int, typeCount> packed = {};
    for (std::size_t row = 0; row < packed.size(); ++row)
        packed[row] = packName(registerTypes[row].name);
    return packed;
}

constexpr std::array<unsigned int, typeCount> packedNames = packNames();

constexpr bool hasSoundAddresses(const RegisterType& type)
{
    const bool isBitType = type.kind == RegisterKind::Bit;
    return type.readBase >= 0 && (type.writeBase == noBase) == isBitType &&
           (type.forceBase == noBase) != isBitType;
}

constexpr bool hasSoundNumbers(const RegisterType& type)
{
    return (type.numberBase == 8 || type.numberBase == 10) && type.first <= type.last &&
           type.last < type.checkEnd;
}

constexpr bool rowsAreSound()
{
    bool planPlaceTaken[typeCount] = {};
    for (const RegisterType& type : registerTypes) {
        const int place = type.planOrder;
        if (!hasSoundAddresses(type) || !hasSoundNumbers(type) || place < 0 ||
            place >= static_cast<int>(typeCount) || planPlaceTaken[place])
            return false;
        planPlaceTaken[place] = true;
    }
    return true;
}

static_assert(rowsAreSound(), "a row has an address of the wrong sort, numbers out of order, or "
                              "the plan place of another row");

}  // namespace

const RegisterType* findRegisterType(const QString& name)
{
    const unsigned int packed = packName(name);
    for (std::size_t row = 0; row < packedNames.size(); ++row) {
        if (packedNames[row] == packed)
            return &registerTypes[row];
    }
    return nullptr;
}

const QString& registerTypeName(const RegisterType& type)
{
    struct Names
    {
        QString texts[typeCount];
        Names()
        {
            for (std::size_t row = 0; row < typeCount; ++row)
                texts[row] = QLatin1String(registerTypes[row].name);
        }
    };
    static const Names names;
    return names.texts[&type - registerTypes];
}
