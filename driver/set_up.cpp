// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The reset point of a connection: reads the property string, keeps the host's pointers, empties
// plan, queues, cache and exchange state. The recipe list and the callback survive.

#include "driver/integers.h"
#include "driver/intf.h"
#include "driver/mitsubishi_fx1s.h"

#include <QStringList>

namespace {

constexpr int requiredProperties = 5;

void readProperties(const QStringList& properties)
{
    if (properties.size() < requiredProperties)
        return;  // too short to be one: what stood before stays
    driver.linkNo = properties.at(0).toInt();
    driver.cacheOnlyWrites = properties.at(1).toInt();
    driver.propertyField2 = properties.at(2).toInt();
    driver.failLimit = properties.at(3).toInt();
    driver.frameWordLimit = properties.at(4).toInt();
    driver.propertyField5 =
        properties.size() > requiredProperties ? properties.at(requiredProperties).toInt() : 0;
}

void resetLists()
{
    driver.readList.clear();
    driver.writeList.clear();
    driver.conditionReadList.clear();
    driver.dataAreas.clear();
    driver.areaIndex = AreaIndex();  // it shares the areas, which would live on in it
    driver.frames.clear();
}

void resetExchange()
{
    driver.setKind(OperationKind::Idle);
    driver.burstCount = 0;
    driver.spareCounter0 = 0;
    driver.failCount = 0;
    driver.lastExchangeFailed = 0;
    driver.maxWordsPerFrame = driver.frameWordLimit;
    driver.maxBitsPerFrame = saturated(static_cast<qint64>(driver.frameWordLimit) * bitsPerArea);
    driver.spareCounter1 = 0;
    driver.propertyInitialised = 1;
}

}  // namespace

int intf_initProperty(unsigned char* hostMemory, unsigned int hostContext,
                      unsigned short* recipeWords, int* status, const char* propertyString,
                      QMutex* hostMutex)
{
    if (status != nullptr)
        *status = 0;
    readProperties(QString::fromLatin1(propertyString).split(QLatin1Char('#')));
    driver.hostMemory = hostMemory;
    driver.hostContext = hostContext;
    driver.recipeWords = recipeWords;
    driver.hostMutex = hostMutex;
    resetLists();
    resetExchange();
    return fxDone;
}

void intf_setAddrValueChangeCallBack(FxValueChangeCallback callback)
{
    driver.valueChangeCallback = callback;
}
