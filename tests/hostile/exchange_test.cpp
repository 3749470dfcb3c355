// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Exchanges that no sane host or PLC brings about: lists emptied under a frame in flight, requests
// at the ends of the numbers or without end, replies of any bytes and any length.

#include "tests/support/driver_fixture.h"

#include <ostream>
#include <random>

namespace {
constexpr int largest = 2147483647;
constexpr int smallest = -2147483647 - 1;

class HostileExchange : public DriverTest
{
protected:
    HostileExchange() { setUpDriver("1#0#0#1#32"); }
};

TEST_F(HostileExchange, ListsEmptiedUnderTheFrameInFlightAreLeftAlone)
{
    driver.readList << request("D", 1, 1);
    nextFrame();
    driver.readList.clear();
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));

    driver.conditionReadList << request("D", 1, 1);
    nextFrame();
    driver.conditionReadList.clear();
    EXPECT_EQ(2, reply(""));

    driver.writeList << request("D", 1, 1);
    nextFrame();
    driver.writeList.clear();
    EXPECT_EQ(1, acknowledge());
    EXPECT_EQ("", nextFrame());
}

TEST_F(HostileExchange, PlanMadeAnewUnderAPollIsRotatedLikeAnyOther)
{
    driver.readList << request("D", 1, 1);
    nextFrame();
    driver.readList.clear();
    driver.readList << request("D", 8, 1) << request("D", 9, 1);
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    EXPECT_EQ("1#D9/1 1#D8/1", textOf(driver.readList));
    EXPECT_EQ("1#D1", textOf(driver.dataAreas));
}

struct LastRead
{
    const char* name;
    const char* registerType;
    int start;
    int count;
    const char* filled;
    const char* marked;
};

std::ostream& operator<<(std::ostream& out, const LastRead& read)
{
    return out << read.registerType << read.start << '/' << read.count;
}

class ReadOfTheLastNumbers : public HostileExchange, public ::testing::WithParamInterface<LastRead>
{};

TEST_P(ReadOfTheLastNumbers, FillsNothingBeyond)
{
    driver.readList << request(GetParam().registerType, GetParam().start, GetParam().count);
    nextFrame();
    EXPECT_EQ(1, reply("<STX>1234567812345678<ETX>4B"));
    EXPECT_EQ(GetParam().filled, textOf(driver.dataAreas));
}

TEST_P(ReadOfTheLastNumbers, MarksNothingBeyond)
{
    driver.readList << request(GetParam().registerType, GetParam().start, GetParam().count);
    nextFrame();
    EXPECT_EQ(2, reply(""));
    EXPECT_EQ(GetParam().marked, textOf(driver.dataAreas));
}

const LastRead lastReads[] = {
    {"Words", "D", largest - 1, 4, "1#D2147483646 1#D2147483647", "1#D2147483646 1#D2147483647"},
    {"Bits", "M", 2147483632, 4, "1#M2147483632 1#M2147483640", "1#M2147483632 1#M2147483640"},
    {"Counters", "32CV", largest, 2, "1#32CV2147483647", "1#32CV2147483647"},
};

INSTANTIATE_TEST_SUITE_P(Groups, ReadOfTheLastNumbers, ::testing::ValuesIn(lastReads),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(HostileExchange, AreasBelowZeroAreAreasLikeAnyOther)
{
    for (const char* type : {"D", "M", "32CV"}) {
        driver.readList.clear();
        driver.readList << request(type, smallest, 2);
        nextFrame();
        EXPECT_EQ(1, reply("<STX>12345678<ETX>A7")) << type;
        EXPECT_GE(areaOf(type, smallest), 0) << type;
    }
}

TEST_F(HostileExchange, OneOffReadWithoutEndStaysBounded)
{
    setUpDriver("1#0#0#1#2147483647");
    for (const char* type : {"D", "M", "32CV"}) {
        for (const bool good : {true, false}) {
            driver.dataAreas.clear();
            KEY_ADDRESS key = watch(type, 0, largest);
            intf_addConditionRead(key, 0);
            nextFrame();
            EXPECT_EQ(good ? 1 : 2, reply(good ? "<STX>1234<ETX>CD" : "")) << type;
            EXPECT_GE(8 * 65536, driver.dataAreas.size()) << type;
            EXPECT_LE(65536, driver.dataAreas.size()) << type;
            driver.readList.clear();
            driver.burstCount = 0;
        }
    }
}

TEST_F(HostileExchange, NegativeCountIsNeverDecodedNorMarked)
{
    for (const int count : {-1, -2, smallest}) {
        for (const char* type : {"D", "M", "32CV"}) {
            driver.burstCount = 0;
            KEY_ADDRESS key = watch(type, 5, count);
            intf_addConditionRead(key, 0);
            ASSERT_NE("", nextFrame());
            EXPECT_EQ(2, reply("<STX>1234<ETX>CD"));
        }
    }
    EXPECT_TRUE(driver.dataAreas.isEmpty());
}

TEST_F(HostileExchange, ReplyOfAMegabyteIsJudgedLikeAnyOther)
{
    driver.readList << request("D", 1, 1);
    nextFrame();
    QByteArray bytes = framedReply(std::string(1 << 20, '1'));
    QString error;
    EXPECT_EQ(1, intf_dealRcvFrame(bytes, error));
    EXPECT_EQ("1#D1(1)(1048580)", plain(error));
    EXPECT_EQ("1#D1", textOf(driver.dataAreas));
}

TEST_F(HostileExchange, ReplyIsLeftAsItWas)
{
    driver.readList << request("D", 1, 1);
    nextFrame();
    QByteArray bytes = wireBytes("<STX>1234<ETX>CD");
    QString error;
    intf_dealRcvFrame(bytes, error);
    EXPECT_EQ(wireBytes("<STX>1234<ETX>CD"), bytes);
}

TEST_F(HostileExchange, WithoutACallbackEveryNotificationIsSkipped)
{
    intf_setAddrValueChangeCallBack(nullptr);
    QList<KEY_ADDRESS> keys;
    keys << watch("D", 100, 1);
    intf_addrMerge(keys);
    nextFrame();
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    write("D", 100, {1, 2}, 1);
    nextFrame();
    EXPECT_EQ(1, acknowledge());
    driver.recipeVars << recipeEntry("D", 100, 1, 5);
    requestUpload();
    nextFrame();
    EXPECT_EQ(1, reply("<STX>1234<ETX>CD"));
    EXPECT_EQ(Texts(), calls);
    EXPECT_EQ(0x34, reinterpret_cast<unsigned char*>(recipeWords.data())[11]);
}

// The seed is fixed, so that a failure can be repeated.
TEST_F(HostileExchange, AnyBytesAreJudgedWithoutHarm)
{
    setUpDriver("1#0#0#1000000#32");
    driver.readList << request("M", 0, 3) << request("D", 0, 2) << request("32CV", 200, 1);
    std::minstd_rand random(7);
    for (int i = 0; i < 20000; ++i) {
        ASSERT_NE("", nextFrame());
        std::vector<unsigned char> data(random() % 40);
        for (unsigned char& byte : data)
            byte = static_cast<unsigned char>(random() % 256);
        const std::string text = wireText(data.data(), static_cast<int>(data.size()));
        ASSERT_EQ(8, reply(text)) << text;
        QByteArray framed = framedReply(text);
        QString error;
        ASSERT_EQ(1, intf_dealRcvFrame(framed, error)) << text;
    }
}
}  // namespace
