// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The properties, stated from the outside: nothing here calls the driver.

#include "tests/model/driver_properties.h"

#include "driver/mitsubishi_fx1s.h"
#include "tests/model/model_driver.h"

#include <set>
#include <tuple>

namespace {

std::string brokenArea(const _DATA_& area)
{
    if (area.flag0 > 1 || area.bufferSelect > 1 || area.word1 != 0)
        return "an area's flags are out of bounds";
    if (area.monitorFlags < 0 || area.monitorFlags > 1)
        return "a monitor mark has more than one bit";
    if (area.changeFlags < 0 || area.changeFlags > 0xFF)
        return "a bit mask has more than eight bits";
    if (modelIsBit(area.registerType) ? area.monitorFlags != 0 : area.changeFlags != 0)
        return "a mark stands in the wrong field";
    return "";
}

std::string brokenQueue(const QList<VARIABLE>& queue)
{
    return queue.size() > fxMaxQueuedRequests ? "a queue is longer than its limit" : "";
}

// The head is the request in flight: an equal one may wait behind it.
bool hasTwins(const QList<VARIABLE>& queue)
{
    std::set<std::tuple<int, QString, int, int>> keys;
    for (int i = 1; i < queue.size(); ++i) {
        const VARIABLE& request = queue.at(i);
        keys.insert({request.stationNo, request.registerType, request.addressIndex, request.count});
    }
    return static_cast<int>(keys.size()) < static_cast<int>(queue.size()) - 1;
}

bool isUpperHex(unsigned char character)
{
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
}

int digit(unsigned char character)
{
    return character <= '9' ? character - '0' : character - 'A' + 10;
}

// The length that the command asks for; 0 for an unknown command.
int lengthOf(const FRAME_PRO& frame)
{
    switch (frame.frame[1]) {
    case '0':
        return 11;
    case '1':
        return 11 + 4 * frame.variable.count;
    case '7':
    case '8':
        return 9;
    default:
        return 0;
    }
}

bool isMonitored(int stationNo, const QString& type, int number)
{
    const bool bits = modelIsBit(type);
    const int start = bits ? number / 8 * 8 : number;
    for (const _DATA_& area : driver.dataAreas) {
        if (area.stationNo == stationNo && area.registerType == type && area.startIndex == start)
            return bits ? ((area.changeFlags >> (number - start)) & 1) != 0
                        : area.monitorFlags == 1;
    }
    return false;
}

}  // namespace

std::string malformed(const FRAME_PRO& frame)
{
    const int length = frame.frameLength;
    if (length < 9 || length > fxRecordBytes || length != lengthOf(frame))
        return "a frame has the wrong length";
    if (frame.frame[0] != 0x02 || frame.frame[length - 3] != 0x03)
        return "a frame is not framed";
    int sum = 0x03;
    for (int i = 1; i < length - 3; ++i) {
        if (!isUpperHex(frame.frame[i]))
            return "a frame holds a character that is no digit";
        sum += frame.frame[i];
    }
    if (!isUpperHex(frame.frame[length - 2]) || !isUpperHex(frame.frame[length - 1]) ||
        digit(frame.frame[length - 2]) * 16 + digit(frame.frame[length - 1]) != sum % 256)
        return "a frame has a wrong sum";
    const bool reads = frame.frame[1] == '0';
    if (frame.isRead != (reads ? 1 : 0) || (!reads && frame.replyLength != 1) ||
        (!reads && frame.replyDataChars != 0))
        return "a frame expects the wrong reply";
    return "";
}

std::string brokenState()
{
    if (driver.frames.size() > 1)
        return "more than one frame is in flight";
    if (driver.recipeIndex < 0 || driver.failCount < 0 || driver.burstCount > 3)
        return "a counter is out of bounds";
    std::string broken = brokenQueue(driver.writeList) + brokenQueue(driver.conditionReadList);
    if (!driver.frames.isEmpty())
        broken += malformed(driver.frames.at(0));
    return broken;
}

std::string unexplainedCallback(int linkNo, int stationNo, const QString& text, int value)
{
    if (text == "-1" && linkNo == -1 && stationNo == -1)
        return value == 0 || value == -1 ? "" : "a one-off read ended with an unknown result";
    if (text == "RWI" && linkNo == 0 && stationNo == -1)
        return value >= 0 ? "" : "a negative recipe word was reported";
    if (linkNo != driver.linkNo)
        return "a callback names another link";
    return isMonitored(stationNo, text, value) ? "" : "a callback names an unmonitored element";
}

std::string brokenCache()
{
    if (hasTwins(driver.writeList) || hasTwins(driver.conditionReadList))
        return "a request is queued twice behind the head";
    std::set<std::tuple<int, QString, int>> keys;
    for (const _DATA_& area : driver.dataAreas) {
        const std::string broken = brokenArea(area);
        if (!broken.empty())
            return broken;
        if (!keys.insert({area.stationNo, area.registerType, area.startIndex}).second)
            return "an area has a twin";
    }
    return "";
}
