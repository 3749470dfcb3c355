// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipe memory is the host's: nothing is moved before its start, or without it.

#include "cache/recipe_words.h"

#include "address/register_types.h"
#include "cache/notification.h"
#include "driver/mitsubishi_fx1s.h"

#include <algorithm>
#include <iterator>

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

void rcpAddrToVar(_RCP_VAR_PRO rcp, VARIABLE& var, int withData)
{
    var.stationNo = rcp.stationNo;
    var.registerType = rcp.registerType;
    var.addressIndex = rcp.addressIndex;
    var.count = rcp.count;
    std::fill(std::begin(var.data), std::end(var.data), 0);
    if (withData != 0 && hasWords(rcp))
        std::copy_n(recipeBytes(rcp.recipeWordOffset),
                    bytesPerWord * qMin(rcp.count, fxRecordBytes / bytesPerWord), var.data);
}

bool isDownloadable(const _RCP_VAR_PRO& entry)
{
    return hasWords(entry) && (entry.count <= fxMaxWriteWords || isBitEntry(entry));
}

bool isUploadable(const _RCP_VAR_PRO& entry)
{
    return hasWords(entry) && entry.count <= fxMaxUploadWords;
}

void storeRecipeWords(qint64 firstRecipeWord, const unsigned char* bytes, int wordCount)
{
    if (driver.recipeWords == nullptr || firstRecipeWord < 0)
        return;
    std::copy_n(bytes, bytesPerWord * wordCount, recipeBytes(firstRecipeWord));
    for (int word = 0; word < wordCount; ++word)
        callHost(recipeLink, recipeStation, QLatin1String(fxRecipeWordText),
                 static_cast<int>(firstRecipeWord + word));
}
