// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Makers and texts of the driver's records.

#include "tests/support/record_text.h"

namespace {
std::string keyText(int stationNo, const QString& registerType, int number)
{
    return std::to_string(stationNo) + '#' + plain(registerType) + std::to_string(number);
}
}  // namespace

std::string plain(const QString& text)
{
    return text.toLatin1().constData();
}

VARIABLE request(const char* registerType, int addressIndex, int count, int stationNo)
{
    VARIABLE made;
    made.stationNo = stationNo;
    made.registerType = QString::fromLatin1(registerType);
    made.addressIndex = addressIndex;
    made.count = count;
    return made;
}

KEY_ADDRESS watch(const char* registerType, int startIndex, int length, int stationNo)
{
    KEY_ADDRESS made;
    made.stationNo = stationNo;
    made.registerType = QString::fromLatin1(registerType);
    made.startIndex = startIndex;
    made.length = length;
    return made;
}

_RCP_VAR_PRO recipeEntry(const char* registerType, int addressIndex, int wordCount,
                         int recipeWordOffset, int linkNo)
{
    _RCP_VAR_PRO made;
    made.linkNo = linkNo;
    made.stationNo = 1;
    made.registerType = QString::fromLatin1(registerType);
    made.addressIndex = addressIndex;
    made.count = wordCount;
    made.recipeWordOffset = recipeWordOffset;
    return made;
}

std::string textOf(const VARIABLE& request)
{
    return keyText(request.stationNo, request.registerType, request.addressIndex) + '/' +
           std::to_string(request.count);
}

std::string textOf(const QList<VARIABLE>& requests)
{
    std::string text;
    for (const VARIABLE& entry : requests)
        text += (text.empty() ? "" : " ") + textOf(entry);
    return text;
}

std::string textOf(const QList<_DATA_>& areas)
{
    std::string text;
    for (const _DATA_& area : areas)
        text +=
            (text.empty() ? "" : " ") + keyText(area.stationNo, area.registerType, area.startIndex);
    return text;
}

Bytes firstBytes(const unsigned char* bytes, int byteCount)
{
    return Bytes(bytes, bytes + byteCount);
}
