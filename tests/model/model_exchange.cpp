// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The model's exchange: which request goes out next, what a reply does to the cache and to the
// recipe memory, and how an exchange ends.

#include "tests/model/model_driver.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

constexpr int mostDataChars = 2 * 4 * 65536;  // of one reply

int nibbleAt(const QByteArray& reply, int position)
{
    if (position >= static_cast<int>(reply.size()))
        return 0;
    const int c = static_cast<unsigned char>(reply[position]);
    if (c < 0x30 || c == 0x40)
        return 0;
    return c <= 0x3F ? c - 0x30 : (c - 0x37) % 16;
}

unsigned char byteAt(const QByteArray& reply, int position)
{
    return static_cast<unsigned char>(nibbleAt(reply, position) * 16 +
                                      nibbleAt(reply, position + 1));
}

}  // namespace

int ModelDriver::getSendFrame(FRAME_PRO* out)
{
    if (!out)
        return 0;
    if (frames.empty())
        chooseFrame();
    if (frames.empty())
        return 0;
    *out = frames.front();
    return 1;
}

void ModelDriver::chooseFrame()
{
    bool download = false;
    bool upload = false;
    if (hostMemory && hostMutex) {
        hostMutex->lock();
        download = hostMemory[fxDownloadRequestByte] == 1;
        upload = hostMemory[fxUploadRequestByte] == 1;
        hostMutex->unlock();
    }
    if (download && transferRecipe(true))
        return;
    if (upload && transferRecipe(false))
        return;
    choosePolling();
}

void ModelDriver::choosePolling()
{
    if (!writeList.empty() && burstCount < 3) {
        current = writeList.front();
        operationKind = 2;
        ++burstCount;
        buildWriteFrame(current);
    } else if (writeList.empty() && !conditionReadList.empty() && burstCount < 3) {
        current = conditionReadList.front();
        operationKind = 3;
        ++burstCount;
        buildReadFrame(current);
    } else if (readList.empty()) {
        operationKind = 0;
    } else {
        current = readList.front();
        operationKind = 4;
        burstCount = 0;
        buildReadFrame(current);
    }
}

// False when the entry cannot be carried: the transfer has ended and the choice goes on.
bool ModelDriver::transferRecipe(bool download)
{
    if (recipeIndex >= static_cast<int>(recipeVars.size())) {
        repeatCurrent();
        return true;
    }
    const _RCP_VAR_PRO entry = recipeVars[static_cast<size_t>(recipeIndex)];
    if (!canCarry(entry, download)) {
        lastExchangeFailed = 1;
        endRecipe(download);
        return false;
    }
    current.stationNo = entry.stationNo;
    current.registerType = entry.registerType;
    current.addressIndex = entry.addressIndex;
    current.count = entry.count;
    std::memset(current.data, 0, sizeof current.data);
    operationKind = download ? 5 : 6;
    if (download) {
        std::memcpy(current.data, recipeWords + entry.recipeWordOffset,
                    static_cast<size_t>(std::min(entry.count, 512)) * 2);
        buildWriteFrame(current);
    } else {
        buildReadFrame(current);
    }
    return true;
}

bool ModelDriver::canCarry(const _RCP_VAR_PRO& entry, bool download) const
{
    const int most = !download ? 512 : modelIsBit(entry.registerType) ? INT_MAX : 253;
    return recipeWords && entry.count >= 0 && entry.recipeWordOffset >= 0 && entry.count <= most;
}

void ModelDriver::repeatCurrent()
{
    if (operationKind == 2 || operationKind == 5)
        buildWriteFrame(current);
    else if (operationKind == 3 || operationKind == 4 || operationKind == 6)
        buildReadFrame(current);
}

int ModelDriver::dealRcvFrame(QByteArray& reply, QString& errorText)
{
    errorText = "";
    if (frames.empty())
        return 0;
    errorText = errorInfo(static_cast<int>(reply.size()));
    const int judgement = judge(reply);
    const VARIABLE request = frames.front().variable;
    if (judgement == 0) {
        ++failCount;
        if (failCount < failLimit)
            return 8;
        lastExchangeFailed = 1;
        if (operationKind == 2)
            endWrite(request, false);
        markStale();
        frames.clear();
        failCount = 0;
        endExchange();
        return 2;
    }
    if (judgement == 2 && operationKind == 2)
        endWrite(request, true);
    lastExchangeFailed = 0;
    if (judgement == 1)
        decode(reply);
    frames.pop_front();
    endExchange();
    failCount = 0;
    return 1;
}

void ModelDriver::decode(const QByteArray& reply)
{
    const FRAME_PRO open = frames.front();
    const QString& type = open.variable.registerType;
    const bool bits = modelIsBit(type);
    if (!bits && !modelIsWord(type) && type != "32CV")
        return;
    const int width = bits ? 1 : type == "32CV" ? 4 : 2;
    for (int k = 0; k < std::min(mostDataChars, open.replyDataChars) / (2 * width); ++k) {
        unsigned char bytes[4] = {};
        for (int i = 0; i < width; ++i)
            bytes[i] = byteAt(reply, open.isRead + 2 * (k * width + i));
        const long long number = open.variable.addressIndex + (bits ? 8LL : 1LL) * k;
        if (!modelFitsInt(number))
            return;
        decodeArea(static_cast<int>(number), bytes, width);
        if (operationKind != 6 || bits || recipeIndex >= static_cast<int>(recipeVars.size()))
            continue;
        const _RCP_VAR_PRO& entry = recipeVars[static_cast<size_t>(recipeIndex)];
        const int wordCount = width / 2;
        storeRecipeWords(static_cast<long long>(entry.recipeWordOffset) + k * wordCount, bytes,
                         wordCount);
    }
}

void ModelDriver::decodeArea(int number, const unsigned char* bytes, int byteCount)
{
    const VARIABLE request = frames.front().variable;
    const auto index = static_cast<size_t>(areaOf(request.stationNo, request.registerType, number));
    const auto size = static_cast<size_t>(byteCount);
    dataAreas[index].flag0 = 0;
    if (std::memcmp(dataAreas[index].valueBuffer0, bytes, size) != 0) {
        std::memcpy(dataAreas[index].valueBuffer0, bytes, size);
        dataAreas[index].bufferSelect = 0;
        if (modelIsBit(request.registerType))
            reportBits(request.stationNo, request.registerType, number, bytes[0], bytes[0]);
        else
            reportElement(request.stationNo, request.registerType, number);
    }
    std::memcpy(dataAreas[index].valueBuffer0, bytes, size);
}

void ModelDriver::storeRecipeWords(long long firstWord, const unsigned char* bytes, int wordCount)
{
    if (!recipeWords || firstWord < 0)
        return;
    for (int i = 0; i < wordCount; ++i)
        std::memcpy(recipeWords + firstWord + i, bytes + 2 * i, 2);
    for (int i = 0; i < wordCount; ++i)
        report(0, -1, "RWI", static_cast<int>(firstWord + i));
}

// Twice the areas of the read (four times for counters): a wanted breadth.
void ModelDriver::markStale()
{
    const FRAME_PRO& open = frames.front();
    const QString& type = open.variable.registerType;
    const bool bits = modelIsBit(type);
    if (!bits && !modelIsWord(type) && type != "32CV")
        return;
    const int total = std::min(mostDataChars, open.replyDataChars) / (bits ? 1 : 2);
    for (int k = 0; k < total; ++k) {
        const long long number = open.variable.addressIndex + (bits ? 8LL : 1LL) * k;
        if (!modelFitsInt(number))
            return;
        const int index = areaOf(open.variable.stationNo, type, static_cast<int>(number));
        dataAreas[static_cast<size_t>(index)].flag0 = 1;
    }
}

void ModelDriver::endExchange()
{
    if (operationKind == 2 && !writeList.empty()) {
        writeList.pop_front();
    } else if (operationKind == 3) {
        endConditionRead();
    } else if (operationKind == 4 && readList.size() >= 2) {
        readList.push_back(readList.front());
        readList.pop_front();
    } else if (operationKind == 5) {
        stepRecipe(true);
    } else if (operationKind == 6) {
        stepRecipe(false);
    }
}

void ModelDriver::endConditionRead()
{
    if (conditionReadList.empty())
        return;
    const VARIABLE head = conditionReadList.front();
    if (head.stationNo == lastConditionRead.stationNo &&
        head.registerType == lastConditionRead.registerType &&
        head.addressIndex == lastConditionRead.addressIndex &&
        head.count == lastConditionRead.count)
        report(-1, -1, "-1", lastExchangeFailed != 0 ? -1 : 0);
    if (lastExchangeFailed != 0)
        conditionReadList.clear();
    else
        conditionReadList.pop_front();
}

void ModelDriver::stepRecipe(bool download)
{
    if (lastExchangeFailed == 0) {
        ++recipeIndex;
        if (recipeIndex < static_cast<int>(recipeVars.size()))
            return;
    }
    endRecipe(download);
}

void ModelDriver::endRecipe(bool download)
{
    recipeIndex = 0;
    if (!hostMemory || !hostMutex)
        return;
    hostMutex->lock();
    hostMemory[download ? fxDownloadRequestByte : fxUploadRequestByte] = 0;
    hostMutex->unlock();
}
