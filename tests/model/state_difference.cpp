// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Field by field, in the order of the object.

#include "tests/model/state_difference.h"

#include "driver/mitsubishi_fx1s.h"
#include "tests/model/host_side.h"

#include <cstring>
#include <new>

namespace {

std::string differs(const std::string& what, const std::string& library, const std::string& model)
{
    return library == model ? "" : what + ": library " + library + ", model " + model + "\n";
}

std::string differs(const std::string& what, long long library, long long model)
{
    return library == model ? "" : differs(what, std::to_string(library), std::to_string(model));
}

bool same(const VARIABLE& a, const VARIABLE& b)
{
    return a.tag == b.tag && a.stationNo == b.stationNo && a.registerType == b.registerType &&
           a.addressIndex == b.addressIndex && a.count == b.count &&
           std::memcmp(a.data, b.data, sizeof a.data) == 0;
}

std::string textOf(const _DATA_& area)
{
    return std::to_string(area.stationNo) + "#" + area.registerType.toStdString() +
           std::to_string(area.startIndex) + " stale " + std::to_string(area.flag0) + " select " +
           std::to_string(area.bufferSelect) + " word1 " + std::to_string(area.word1) + " marks " +
           std::to_string(area.monitorFlags) + "/" + std::to_string(area.changeFlags) + " values " +
           hexOf(area.valueBuffer0, 4) + "/" + hexOf(area.valueBuffer1, 4);
}

std::string textOf(const _RCP_VAR_PRO& entry)
{
    return std::to_string(entry.linkNo) + ":" + std::to_string(entry.stationNo) + "#" +
           entry.registerType.toStdString() + std::to_string(entry.addressIndex) + "(" +
           std::to_string(entry.count) + ")" + std::to_string(entry.recipeWordOffset) + "," +
           std::to_string(entry.hostValue);
}

bool same(const _DATA_& a, const _DATA_& b)
{
    return a.stationNo == b.stationNo && a.startIndex == b.startIndex && a.flag0 == b.flag0 &&
           a.bufferSelect == b.bufferSelect && a.word1 == b.word1 &&
           a.monitorFlags == b.monitorFlags && a.changeFlags == b.changeFlags &&
           std::memcmp(a.valueBuffer0, b.valueBuffer0, 4) == 0 &&
           std::memcmp(a.valueBuffer1, b.valueBuffer1, 4) == 0 && a.registerType == b.registerType;
}

bool same(const _RCP_VAR_PRO& a, const _RCP_VAR_PRO& b)
{
    return textOf(a) == textOf(b);
}

bool same(const FRAME_PRO& a, const FRAME_PRO& b)
{
    return textOf(a) == textOf(b);
}

template <class LibraryList, class ModelList>
std::string listDiffers(const std::string& what, const LibraryList& library, const ModelList& model)
{
    for (int i = 0; i < static_cast<int>(model.size()); ++i) {
        const auto& expected = model[static_cast<std::size_t>(i)];
        if (!same(library.at(i), expected))
            return differs(what + " " + std::to_string(i), textOf(library.at(i)), textOf(expected));
    }
    return "";
}

std::string numbersDiffer(const ModelDriver& model)
{
    return differs("linkNo", driver.linkNo, model.linkNo) +
           differs("cacheOnlyWrites", driver.cacheOnlyWrites, model.cacheOnlyWrites) +
           differs("propertyField2", driver.propertyField2, model.propertyField2) +
           differs("failLimit", driver.failLimit, model.failLimit) +
           differs("frameWordLimit", driver.frameWordLimit, model.frameWordLimit) +
           differs("propertyField5", driver.propertyField5, model.propertyField5) +
           differs("hostContext", driver.hostContext, model.hostContext) +
           differs("operationKind", driver.operationKind, model.operationKind) +
           differs("burstCount", driver.burstCount, model.burstCount) +
           differs("spareCounter0", driver.spareCounter0, model.spareCounter0) +
           differs("failCount", driver.failCount, model.failCount) +
           differs("maxBitsPerFrame", driver.maxBitsPerFrame, model.maxBitsPerFrame) +
           differs("maxWordsPerFrame", driver.maxWordsPerFrame, model.maxWordsPerFrame) +
           differs("lastExchangeFailed", driver.lastExchangeFailed, model.lastExchangeFailed) +
           differs("spareCounter1", driver.spareCounter1, model.spareCounter1) +
           differs("propertyInitialised", driver.propertyInitialised, model.propertyInitialised) +
           differs("recipeIndex", driver.recipeIndex, model.recipeIndex);
}

std::string sizesDiffer(const ModelDriver& model)
{
    const auto size = [](const auto& list) { return static_cast<long long>(list.size()); };
    return differs("readList", size(driver.readList), size(model.readList)) +
           differs("writeList", size(driver.writeList), size(model.writeList)) +
           differs("conditionReadList", size(driver.conditionReadList),
                   size(model.conditionReadList)) +
           differs("dataAreas", size(driver.dataAreas), size(model.dataAreas)) +
           differs("recipeVars", size(driver.recipeVars), size(model.recipeVars)) +
           differs("frames", size(driver.frames), size(model.frames));
}

}  // namespace

std::string stateDifference(const ModelDriver& model, bool deep)
{
    std::string difference = numbersDiffer(model) + sizesDiffer(model);
    if (!deep || !difference.empty())
        return difference;
    if (!same(driver.current, model.current))
        difference += differs("current", textOf(driver.current), textOf(model.current));
    if (!same(driver.lastConditionRead, model.lastConditionRead))
        difference += differs("lastConditionRead", textOf(driver.lastConditionRead),
                              textOf(model.lastConditionRead));
    return difference + listDiffers("readList", driver.readList, model.readList) +
           listDiffers("writeList", driver.writeList, model.writeList) +
           listDiffers("conditionReadList", driver.conditionReadList, model.conditionReadList) +
           listDiffers("dataAreas", driver.dataAreas, model.dataAreas) +
           listDiffers("recipeVars", driver.recipeVars, model.recipeVars) +
           listDiffers("frames", driver.frames, model.frames);
}

void reloadDriver()
{
    driver.~Mitsubishi_fx1s();
    new (&driver) Mitsubishi_fx1s();
}
