// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipe entries and recipe memory, whose size only the host knows.

#include "cache/recipe.h"

#include "address/register_types.h"
#include "cache/notification.h"

#include <cstring>

namespace {

// A recipe word is reported with these in place of link and station.
constexpr int recipeLink = 0;
constexpr int recipeStation = -1;

bool hasWords(const _RCP_VAR_PRO& entry)
{
    return driver.recipeWords != nullptr && entry.recipeWordOffset >= 0 && entry.count >= 0;
}

bool isBitEntry(const _RCP_VAR_PRO& entry)
{
    const RegisterType* type = findRegisterType(entry.registerType);
    return type != nullptr && isBit(*type);
}

unsigned char* recipeBytes(qint64 recipeWord)
{
    return reinterpret_cast<unsigned char*>(driver.recipeWords + recipeWord);
}

}  // namespace

int intf_setRcpAddress(QVector<_RCP_VAR_PRO>& list)
{
    const QVector<_RCP_VAR_PRO>& entries = list;
    QVector<_RCP_VAR_PRO> ownEntries;
    for (const _RCP_VAR_PRO& entry : entries) {
        if (entry.linkNo == driver.linkNo)
            ownEntries.append(entry);
    }
    driver.recipeVars = ownEntries;
    return static_cast<int>(driver.recipeVars.size());
}

void rcpAddrToVar(_RCP_VAR_PRO rcp, VARIABLE& var, int withData)
{
    var.stationNo = rcp.stationNo;
    var.registerType = rcp.registerType;
    var.addressIndex = rcp.addressIndex;
    var.count = rcp.count;
    std::memset(var.data, 0, sizeof var.data);
    if (withData == 0 || !hasWords(rcp))
        return;
    const int wordCount = qMin(rcp.count, fxRecordBytes / bytesPerWord);
    std::memcpy(var.data, recipeBytes(rcp.recipeWordOffset),
                static_cast<std::size_t>(bytesPerWord * wordCount));
}

bool isDownloadable(const _RCP_VAR_PRO& entry)
{
    return hasWords(entry) && (entry.count <= fxMaxWriteWords || isBitEntry(entry));
}

bool isUploadable(const _RCP_VAR_PRO& entry)
{
    return hasWords(entry) && entry.count <= fxMaxUploadWords;
}

void storeRecipeValue(qint64 firstRecipeWord, int wordCount, unsigned int value)
{
    if (driver.recipeWords == nullptr || firstRecipeWord < 0)
        return;
    unsigned char* bytes = recipeBytes(firstRecipeWord);
    for (int i = 0; i < bytesPerWord * wordCount; ++i)
        bytes[i] = static_cast<unsigned char>(value >> (8 * i));
    for (int word = 0; word < wordCount; ++word)
        callHost(recipeLink, recipeStation, QLatin1String(fxRecipeWordText),
                 static_cast<int>(firstRecipeWord + word));
}
