// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The one object that holds all state of the driver, and its named limits. Loading the library
// constructs `driver`, unloading destroys it. The planning side fills its lists, the protocol
// side empties them, the cache lives in it; it knows none of them.

#ifndef DRIVER_MITSUBISHI_FX1S_H
#define DRIVER_MITSUBISHI_FX1S_H

#include "driver/area_index.h"
#include "driver/intf.h"
#include "driver/records.h"

#include <QList>
#include <QVector>

constexpr int bitsPerArea = 8;  // bit devices are cached by the byte
constexpr int bytesPerWord = 2;

// Kinds of the exchange in progress, as `operationKind` holds them. There is no kind 1.
enum class OperationKind
{
    Idle = 0,
    HostWrite = 2,
    ConditionalRead = 3,
    CyclicRead = 4,
    RecipeDownload = 5,
    RecipeUpload = 6
};

class Mitsubishi_fx1s
{
public:
    Mitsubishi_fx1s();
    ~Mitsubishi_fx1s();
    Mitsubishi_fx1s(const Mitsubishi_fx1s&) = delete;
    Mitsubishi_fx1s& operator=(const Mitsubishi_fx1s&) = delete;

    FxValueChangeCallback valueChangeCallback = nullptr;

    // The six numbers of the property string.
    int linkNo = 0;
    int cacheOnlyWrites = 0;  // nonzero = host writes reach the cache only
    int propertyField2 = 0;   // stored, never read
    int failLimit = 0;        // rejections in a row that end an exchange
    int frameWordLimit = 0;   // words in one frame
    int propertyField5 = 0;   // stored, never read

    // Owned by the host.
    unsigned char* hostMemory = nullptr;    // the two request bytes are read under hostMutex
    unsigned int hostContext = 0;           // stored, never read
    unsigned short* recipeWords = nullptr;  // the recipe memory
    QMutex* hostMutex = nullptr;

    // Requests, head first.
    QList<VARIABLE> readList;           // the cyclic polling plan
    QList<VARIABLE> writeList;          // host writes; the head is in flight or next
    QList<VARIABLE> conditionReadList;  // one-off reads

    QList<_DATA_> dataAreas;           // the cache
    QVector<_RCP_VAR_PRO> recipeVars;  // the recipe entries of this link

    VARIABLE lastConditionRead;   // the one-off read queued last; its end is reported
    VARIABLE current;             // the request of the exchange in progress
    int operationKind = 0;        // see OperationKind
    int burstCount = 0;           // writes and one-off reads since the last cyclic read
    int spareCounter0 = 0;        // set at set-up, never read
    int failCount = 0;            // rejections in a row
    int maxBitsPerFrame = 0;      // of frameWordLimit; requests are cut by bitsPerRequest()
    int maxWordsPerFrame = 0;     // of frameWordLimit; requests are cut by wordsPerRequest()
    int lastExchangeFailed = 0;   // 1 = the exchange that ended last has failed
    int spareCounter1 = 0;        // set at set-up, never read
    int propertyInitialised = 0;  // set at set-up, never read
    QList<FRAME_PRO> frames;      // the frame in flight, if any
    int recipeIndex = 0;          // the recipe entry being transferred

    AreaIndex areaIndex;  // finds data areas without a scan

    OperationKind kind() const { return static_cast<OperationKind>(operationKind); }
    void setKind(OperationKind kind) { operationKind = static_cast<int>(kind); }
};

// Exported beside the entry points.
extern FX_EXPORT Mitsubishi_fx1s driver;

// The limits by which requests are cut: what the property string said, but never less than one
// word or one byte of bits.
int wordsPerRequest();
int bitsPerRequest();

// How many of the `count` elements from `startIndex` on one call serves: at most fxMaxElements, and
// none whose number does not fit 32 bits.
int servedCount(int startIndex, int count);

#endif
