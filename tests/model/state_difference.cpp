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

// Collects differing numbers; comparing equal ones costs next to nothing.
struct Differences
{
    std::string text;

    void compare(const char* what, long long library, long long model)
    {
        if (library != model)
            text += differs(what, std::to_string(library), std::to_string(model));
    }
};

bool same(const VARIABLE& a, const VARIABLE& b)
{
    return a.tag == b.tag && a.stationNo == b.stationNo && a.registerType == b.registerType &&
           a.addressIndex == b.addressIndex && a.count == b.count &&
           std::memcmp(a.data, b.data, sizeof a.data) == 0;
}

std::string describe(const _DATA_& area)
{
    return std::to_string(area.stationNo) + "#" + area.registerType.toStdString() +
           std::to_string(area.startIndex) + " stale " + std::to_string(area.flag0) + " select " +
           std::to_string(area.bufferSelect) + " word1 " + std::to_string(area.word1) + " marks " +
           std::to_string(area.monitorFlags) + "/" + std::to_string(area.changeFlags) + " values " +
           hexOf(area.valueBuffer0, 4) + "/" + hexOf(area.valueBuffer1, 4);
}

std::string describe(const _RCP_VAR_PRO& entry)
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
    return describe(a) == describe(b);
}

bool same(const FRAME_PRO& a, const FRAME_PRO& b)
{
    return describe(a) == describe(b);
}

template <class LibraryList, class ModelList>
std::string listDiffers(const std::string& what, const LibraryList& library, const ModelList& model)
{
    for (int i = 0; i < static_cast<int>(model.size()); ++i) {
        const auto& expected = model[static_cast<std::size_t>(i)];
        if (!same(library.at(i), expected))
            return differs(what + " " + std::to_string(i), describe(library.at(i)),
                           describe(expected));
    }
    return "";
}

void compareNumbers(Differences& found, const ModelDriver& model)
{
    found.compare("linkNo", driver.linkNo, model.linkNo);
    found.compare("cacheOnlyWrites", driver.cacheOnlyWrites, model.cacheOnlyWrites);
    found.compare("propertyField2", driver.propertyField2, model.propertyField2);
    found.compare("failLimit", driver.failLimit, model.failLimit);
    found.compare("frameWordLimit", driver.frameWordLimit, model.frameWordLimit);
    found.compare("propertyField5", driver.propertyField5, model.propertyField5);
    found.compare("hostContext", driver.hostContext, model.hostContext);
    found.compare("operationKind", driver.operationKind, model.operationKind);
    found.compare("burstCount", driver.burstCount, model.burstCount);
    found.compare("spareCounter0", driver.spareCounter0, model.spareCounter0);
    found.compare("failCount", driver.failCount, model.failCount);
    found.compare("maxBitsPerFrame", driver.maxBitsPerFrame, model.maxBitsPerFrame);
    found.compare("maxWordsPerFrame", driver.maxWordsPerFrame, model.maxWordsPerFrame);
    found.compare("lastExchangeFailed", driver.lastExchangeFailed, model.lastExchangeFailed);
    found.compare("spareCounter1", driver.spareCounter1, model.spareCounter1);
    found.compare("propertyInitialised", driver.propertyInitialised, model.propertyInitialised);
    found.compare("recipeIndex", driver.recipeIndex, model.recipeIndex);
}

template <class LibraryList, class ModelList>
void compareSize(Differences& found, const char* what, const LibraryList& library,
                 const ModelList& model)
{
    found.compare(what, static_cast<long long>(library.size()),
                  static_cast<long long>(model.size()));
}

void compareSizes(Differences& found, const ModelDriver& model)
{
    compareSize(found, "readList", driver.readList, model.readList);
    compareSize(found, "writeList", driver.writeList, model.writeList);
    compareSize(found, "conditionReadList", driver.conditionReadList, model.conditionReadList);
    compareSize(found, "dataAreas", driver.dataAreas, model.dataAreas);
    compareSize(found, "recipeVars", driver.recipeVars, model.recipeVars);
    compareSize(found, "frames", driver.frames, model.frames);
}

}  // namespace

std::string stateDifference(const ModelDriver& model, bool deep)
{
    Differences found;
    compareNumbers(found, model);
    compareSizes(found, model);
    if (!deep || !found.text.empty())
        return found.text;
    std::string difference;
    if (!same(driver.current, model.current))
        difference += differs("current", describe(driver.current), describe(model.current));
    if (!same(driver.lastConditionRead, model.lastConditionRead))
        difference += differs("lastConditionRead", describe(driver.lastConditionRead),
                              describe(model.lastConditionRead));
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
