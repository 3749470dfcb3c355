// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The fixture of every test that touches the one object `driver`: each test begins with the object
// as loading the library leaves it, with host memory of exactly the size that a host must give, so
// that a memory checker sees a byte too many, and with a callback that records its calls as
// "link,station,text,value".

#ifndef TESTS_SUPPORT_DRIVER_FIXTURE_H
#define TESTS_SUPPORT_DRIVER_FIXTURE_H

#include "driver/intf.h"
#include "driver/mitsubishi_fx1s.h"
#include "tests/support/record_text.h"
#include "tests/support/wire_text.h"

#include <QMutex>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using Texts = std::vector<std::string>;

// The name of a test is that of its row.
template <class Row>
std::string nameOf(const ::testing::TestParamInfo<Row>& row)
{
    return row.param.name;
}

// Gives `driver` the state in which the library is loaded.
void resetDriver();

class DriverTest : public ::testing::Test
{
protected:
    static constexpr int recipeWordCount = 2048;

    DriverTest();
    ~DriverTest() override;

    // Link 1, three rejections fail an exchange, 32 words a frame, unless told otherwise.
    void setUpDriver(const char* propertyString = "1#0#0#3#32");
    void requestDownload() { hostMemory[fxDownloadRequestByte] = 1; }
    void requestUpload() { hostMemory[fxUploadRequestByte] = 1; }
    bool mutexIsFree();

    static int merge(QList<KEY_ADDRESS> keys) { return intf_addrMerge(keys); }
    static void readOnce(KEY_ADDRESS key, int tag = 0)
    {
        EXPECT_EQ(1, intf_addConditionRead(key, tag));
    }
    static int setRecipe(QVector<_RCP_VAR_PRO> list) { return intf_setRcpAddress(list); }
    // Marks elements as monitored without a plan.
    static void mark(const char* registerType, int start, int count, int stationNo = 1);

    // The frame that the driver gives next as text, "" when there is nothing to send.
    std::string nextFrame();
    // The request of the frame that the driver gives next, "" when there is nothing to send.
    std::string nextRequest();
    // Hands over a reply given as text, and returns the result.
    int reply(const std::string& text);
    int acknowledge() { return reply("<ACK>"); }
    // A plan of one request, polled once; `text` is a good reply.
    void poll(const char* registerType, int start, int count, const std::string& text);

    int areaOf(const char* registerType, int start, int stationNo = 1);
    _DATA_& area(const char* registerType, int start, int stationNo = 1);
    Bytes confirmed(const char* registerType, int start)
    {
        return firstBytes(area(registerType, start).valueBuffer0, 4);
    }
    Bytes pending(const char* registerType, int start)
    {
        return firstBytes(area(registerType, start).valueBuffer1, 4);
    }
    Bytes values(const char* registerType, int start, int count, int byteCount);
    void write(const char* registerType, int start, const Bytes& data, int count, int tag = 0);
    // Calls that came with the given text.
    static Texts callsWith(const std::string& text);

    std::vector<unsigned char> hostMemory;
    std::vector<unsigned short> recipeWords;
    QMutex hostMutex;
    std::string errorText;

    static Texts calls;
    static std::function<void(QString& text, int value)> onCall;  // what the host does when called
};

#endif
