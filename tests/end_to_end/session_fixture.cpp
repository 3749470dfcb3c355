// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host's side of a session.

#include "tests/end_to_end/session_fixture.h"

namespace {
constexpr int recipeWordCount = 256;

std::string plain(const QString& text)
{
    return text.toLatin1().constData();
}

}  // namespace

Texts Session::calls;

Session::Session() : hostMemory(fxHostMemoryBytes), recipeWords(recipeWordCount)
{
    calls.clear();
    EXPECT_TRUE(driver.isComplete());
}

Session::~Session() = default;

void Session::connect(const char* propertyString)
{
    int status = -1;
    driver.setAddrValueChangeCallBack([](int linkNo, int stationNo, QString& text, int value) {
        calls.push_back(std::to_string(linkNo) + ',' + std::to_string(stationNo) + ',' +
                        plain(text) + ',' + std::to_string(value));
        return 0;
    });
    EXPECT_EQ(1, driver.initProperty(hostMemory.data(), 0, recipeWords.data(), &status,
                                     propertyString, &hostMutex));
    EXPECT_EQ(0, status);
}

int Session::monitor(const QList<KEY_ADDRESS>& keys)
{
    QList<KEY_ADDRESS> copy = keys;
    return driver.addrMerge(copy);
}

int Session::exchange()
{
    FRAME_PRO frame;
    if (driver.getSendFrame(&frame) == 0)
        return nothingToSend;
    const QByteArray sent(reinterpret_cast<const char*>(frame.frame), frame.frameLength);
    QByteArray reply = plc.answer(sent);
    EXPECT_EQ(frame.replyLength, reply.size());
    QString error;
    const int result = driver.dealRcvFrame(reply, error);
    errorText = plain(error);
    return result;
}

int Session::exchangeAnswered(const QByteArray& reply)
{
    FRAME_PRO frame;
    if (driver.getSendFrame(&frame) == 0)
        return nothingToSend;
    QByteArray copy = reply;
    QString error;
    const int result = driver.dealRcvFrame(copy, error);
    errorText = plain(error);
    return result;
}

int Session::exchanges(int most)
{
    int done = 0;
    while (done < most && exchange() != nothingToSend)
        ++done;
    return done;
}

Bytes Session::values(const char* registerType, int start, int count, int byteCount)
{
    std::vector<unsigned char> out(static_cast<std::size_t>(byteCount));
    EXPECT_EQ(1, driver.getData(1, QString::fromLatin1(registerType), start, count, out.data()));
    return Bytes(out.begin(), out.end());
}

void Session::write(const char* registerType, int start, const Bytes& data, int count)
{
    std::vector<unsigned char> bytes;
    for (const int byte : data)
        bytes.push_back(static_cast<unsigned char>(byte));
    EXPECT_EQ(1,
              driver.setData(1, QString::fromLatin1(registerType), start, count, bytes.data(), 0));
}

KEY_ADDRESS range(const char* registerType, int start, int length)
{
    KEY_ADDRESS key;
    key.stationNo = 1;
    key.registerType = QString::fromLatin1(registerType);
    key.startIndex = start;
    key.length = length;
    return key;
}

_RCP_VAR_PRO recipeEntry(const char* registerType, int start, int wordCount, int recipeWord)
{
    _RCP_VAR_PRO entry;
    entry.linkNo = 1;
    entry.stationNo = 1;
    entry.registerType = QString::fromLatin1(registerType);
    entry.addressIndex = start;
    entry.count = wordCount;
    entry.recipeWordOffset = recipeWord;
    return entry;
}
