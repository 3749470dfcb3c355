// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The fixture's ways to stand in for a host.

#include "tests/support/driver_fixture.h"

#include "cache/data_areas.h"

Texts DriverTest::calls;
std::function<void(QString& text, int value)> DriverTest::onCall;

void resetDriver()
{
    driver.valueChangeCallback = nullptr;
    driver.linkNo = driver.cacheOnlyWrites = driver.propertyField2 = driver.failLimit = 0;
    driver.frameWordLimit = driver.propertyField5 = 0;
    driver.hostMemory = nullptr;
    driver.hostContext = 0;
    driver.recipeWords = nullptr;
    driver.hostMutex = nullptr;
    driver.readList.clear();
    driver.writeList.clear();
    driver.conditionReadList.clear();
    driver.dataAreas.clear();
    driver.recipeVars.clear();
    driver.lastConditionRead = VARIABLE();
    driver.current = VARIABLE();
    driver.operationKind = driver.burstCount = driver.spareCounter0 = driver.failCount = 0;
    driver.maxBitsPerFrame = driver.maxWordsPerFrame = 0;
    driver.lastExchangeFailed = driver.spareCounter1 = driver.propertyInitialised = 0;
    driver.frames.clear();
    driver.recipeIndex = 0;
}

DriverTest::DriverTest() : hostMemory(fxHostMemoryBytes), recipeWords(recipeWordCount)
{
    resetDriver();
    calls.clear();
    onCall = nullptr;
    intf_setAddrValueChangeCallBack([](int linkNo, int stationNo, QString& text, int value) {
        calls.push_back(std::to_string(linkNo) + ',' + std::to_string(stationNo) + ',' +
                        plain(text) + ',' + std::to_string(value));
        if (onCall)
            onCall(text, value);
        return 7;  // ignored, whatever it is
    });
}

DriverTest::~DriverTest()
{
    onCall = nullptr;
    resetDriver();
}

void DriverTest::setUpDriver(const char* propertyString)
{
    int status = -1;
    intf_initProperty(hostMemory.data(), 0, recipeWords.data(), &status, propertyString,
                      &hostMutex);
}

bool DriverTest::mutexIsFree()
{
    if (!hostMutex.tryLock())
        return false;
    hostMutex.unlock();
    return true;
}

void DriverTest::mark(const char* registerType, int start, int count, int stationNo)
{
    EXPECT_EQ(0,
              _setDataAreaMonitorFlag(stationNo, QString::fromLatin1(registerType), start, count));
}

std::string DriverTest::nextFrame()
{
    FRAME_PRO out;
    if (intf_getSendFrame(&out) == 0)
        return "";
    return wireText(out.frame, out.frameLength);
}

std::string DriverTest::nextRequest()
{
    FRAME_PRO out;
    if (intf_getSendFrame(&out) == 0)
        return "";
    return textOf(out.variable);
}

int DriverTest::reply(const std::string& text)
{
    QByteArray bytes = wireBytes(text);
    QString error = QString::fromLatin1("left over");
    const int result = intf_dealRcvFrame(bytes, error);
    errorText = plain(error);
    return result;
}

void DriverTest::poll(const char* registerType, int start, int count, const std::string& text)
{
    driver.readList.clear();
    driver.readList << request(registerType, start, count);
    ASSERT_NE("", nextFrame());
    ASSERT_EQ(1, reply(text));
}

int DriverTest::areaOf(const char* registerType, int start, int stationNo)
{
    for (int i = 0; i < driver.dataAreas.size(); ++i) {
        const _DATA_& candidate = driver.dataAreas.at(i);
        if (candidate.stationNo == stationNo && candidate.startIndex == start &&
            candidate.registerType == QString::fromLatin1(registerType))
            return i;
    }
    return -1;
}

_DATA_& DriverTest::area(const char* registerType, int start, int stationNo)
{
    static _DATA_ none;
    none = _DATA_();
    const int position = areaOf(registerType, start, stationNo);
    EXPECT_GE(position, 0) << "no data area " << stationNo << '#' << registerType << start;
    return position < 0 ? none : driver.dataAreas[position];
}

Bytes DriverTest::values(const char* registerType, int start, int count, int byteCount)
{
    std::vector<unsigned char> out(static_cast<std::size_t>(byteCount));
    EXPECT_EQ(1, intf_getData(1, QString::fromLatin1(registerType), start, count, out.data()));
    return firstBytes(out.data(), byteCount);
}

void DriverTest::write(const char* registerType, int start, const Bytes& data, int count, int tag)
{
    std::vector<unsigned char> bytes;
    for (const int byte : data)
        bytes.push_back(static_cast<unsigned char>(byte));
    EXPECT_EQ(1,
              intf_setData(1, QString::fromLatin1(registerType), start, count, bytes.data(), tag));
}

Texts DriverTest::callsWith(const std::string& text)
{
    Texts found;
    for (const std::string& call : calls) {
        if (call.find(',' + text + ',') != std::string::npos)
            found.push_back(call);
    }
    return found;
}
