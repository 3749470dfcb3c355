// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Loading and unloading: every entry point is found by name, services answer before any set-up,
// and each load begins with nothing of the one before.

#include "tests/end_to_end/session_fixture.h"

namespace {
using Loading = Session;

TEST_F(Loading, FindsEveryEntryPointAndTheObject)
{
    EXPECT_TRUE(driver.isComplete());
    EXPECT_NE(nullptr, driver.symbol("driver"));
}

TEST_F(Loading, HidesInternalFunctions)
{
    EXPECT_EQ(nullptr, driver.symbol("_Z18dealListWhenFinishv"));
    EXPECT_EQ(nullptr, driver.symbol("_Z12getReadFrameR8VARIABLE"));
}

TEST_F(Loading, ServicesAnswerBeforeAnySetUp)
{
    QString text;
    driver.getDriverPropertyPage(text);
    EXPECT_EQ(QString::fromLatin1("0_0"), text);
    driver.setDriverPropertyPage(text);
    EXPECT_TRUE(text.isEmpty());
    driver.getDriverParameter(text);
    EXPECT_TRUE(text.startsWith(QString::fromLatin1("0,9600,7,EVEN,1,")));
    int type = -1;
    driver.getProtocolType(&type);
    EXPECT_EQ(0, type);
    int number = -1;
    EXPECT_EQ(0, driver.checkAddr(QString::fromLatin1("X"), QString::fromLatin1("17"), &number, -1,
                                  1, 0));
    EXPECT_EQ(15, number);
    EXPECT_EQ(2, driver.checkAddrValidity(QString::fromLatin1("D"), QString::fromLatin1("8000"),
                                          &number, 1, 1));
}

TEST_F(Loading, CatalogueAndCopiesFillTheHostsContainers)
{
    QList<QString> names;
    EXPECT_EQ(1, driver.getRegListByType(0, names));
    EXPECT_EQ(1, driver.getRegListByType(1, names));
    EXPECT_EQ(12, names.size());
    EXPECT_EQ(QString::fromLatin1("32CV"), names.last());
    QList<QString> fields;
    EXPECT_EQ(1, driver.getRegDiscription(names.last(), fields));
    EXPECT_EQ(5, fields.size());
    QVector<QString> texts;
    QVector<int> numbers;
    EXPECT_EQ(2, driver.multiCopy(QString::fromLatin1("Y"), 255, 2, -1, texts, numbers));
    EXPECT_EQ(QString::fromLatin1("377"), texts.at(1));
    EXPECT_EQ(255, numbers.at(1));
}

TEST_F(Loading, NothingIsToBeSentBeforeSetUp)
{
    EXPECT_EQ(nothingToSend, exchange());
    QByteArray reply("\x06", 1);
    QString error;
    EXPECT_EQ(0, driver.dealRcvFrame(reply, error));
}

TEST(Unloading, LeavesNothingInMemory)
{
    EXPECT_FALSE(LoadedDriver::isInMemory());
    {
        const LoadedDriver driver;
        ASSERT_TRUE(driver.isComplete());
        EXPECT_TRUE(LoadedDriver::isInMemory());
    }
    EXPECT_FALSE(LoadedDriver::isInMemory());
}

// Fills every list of the object, and goes while a frame is in flight.
void useAndLeave()
{
    const LoadedDriver driver;
    ASSERT_TRUE(driver.isComplete());
    std::vector<unsigned char> hostMemory(fxHostMemoryBytes);
    std::vector<unsigned short> recipeWords(16);
    QMutex mutex;
    int status = 0;
    driver.initProperty(hostMemory.data(), 0, recipeWords.data(), &status, "7#0#0#3#32", &mutex);
    QList<KEY_ADDRESS> keys;
    keys << range("D", 100, 10);
    EXPECT_EQ(1, driver.addrMerge(keys));
    KEY_ADDRESS key = range("D", 200, 100);
    driver.addConditionRead(key, 0);
    unsigned char data[] = {1, 2};
    driver.setData(1, QString::fromLatin1("D"), 100, 1, data, 0);
    QVector<_RCP_VAR_PRO> list;
    list << recipeEntry("D", 0, 1, 0);
    list[0].linkNo = 7;
    EXPECT_EQ(1, driver.setRcpAddress(list));
    FRAME_PRO frame;
    EXPECT_EQ(1, driver.getSendFrame(&frame));
}

TEST(Unloading, AnotherLoadBeginsAfresh)
{
    for (int round = 0; round < 3; ++round) {
        useAndLeave();
        const LoadedDriver driver;
        ASSERT_TRUE(driver.isComplete());
        FRAME_PRO frame;
        EXPECT_EQ(0, driver.getSendFrame(&frame));
        unsigned char out[] = {0xEE, 0xEE};
        driver.getData(1, QString::fromLatin1("D"), 100, 1, out);
        EXPECT_EQ(0, out[0]);
        EXPECT_EQ(0, out[1]);
        QVector<_RCP_VAR_PRO> list;
        list << recipeEntry("D", 0, 1, 0);
        list[0].linkNo = 7;
        EXPECT_EQ(0, driver.setRcpAddress(list));  // its link number is 0 again
    }
}
}  // namespace
