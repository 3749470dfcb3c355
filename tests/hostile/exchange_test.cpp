// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Exchanges that no sane host or PLC brings about: lists emptied under a frame in flight, requests
// at the ends of the numbers or without end, a reply of a megabyte.

#include "tests/hostile/extremes.h"
#include "tests/support/driver_fixture.h"

namespace {

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

TEST_F(HostileExchange, ReadOfTheLastNumbersMarksAndFillsNothingBeyond)
{
    const struct
    {
        const char* registerType;
        int start;
        int count;
        const char* areas;
    } rows[] = {
        {"D", largest - 1, 4, "1#D2147483646 1#D2147483647"},
        {"M", 2147483632, 4, "1#M2147483632 1#M2147483640"},
        {"32CV", largest, 2, "1#32CV2147483647"},
    };
    for (const auto& row : rows) {
        for (const char* answer : {"", "<STX>1234567812345678<ETX>4B"}) {
            driver.dataAreas.clear();
            driver.readList.clear();
            driver.readList << request(row.registerType, row.start, row.count);
            nextFrame();
            reply(answer);
            EXPECT_EQ(row.areas, textOf(driver.dataAreas)) << answer;
        }
    }
}

TEST_F(HostileExchange, AreasBelowZeroAreAreasLikeAnyOther)
{
    for (const char* type : {"D", "M", "32CV"}) {
        poll(type, smallest, 2, "<STX>12345678<ETX>A7");
        EXPECT_GE(areaOf(type, smallest), 0) << type;
    }
}

TEST_F(HostileExchange, OneOffReadWithoutEndStaysBounded)
{
    setUpDriver("1#0#0#1#2147483647");
    for (const char* answer : {"<STX>1234<ETX>CD", ""}) {
        driver.dataAreas.clear();
        readOnce(watch("32CV", 0, largest));
        nextFrame();
        reply(answer);
        EXPECT_GE(4 * 65536, driver.dataAreas.size()) << answer;
        EXPECT_LE(65536, driver.dataAreas.size()) << answer;
    }
}

TEST_F(HostileExchange, NegativeCountIsNeverDecodedNorMarked)
{
    for (const int count : {-1, -2, smallest}) {
        for (const char* type : {"D", "M", "32CV"}) {
            driver.burstCount = 0;
            readOnce(watch(type, 5, count));
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
    const QByteArray given = framedReply(std::string(1 << 20, '1'));
    QByteArray bytes = given;
    QString error;
    EXPECT_EQ(1, intf_dealRcvFrame(bytes, error));
    EXPECT_EQ(given, bytes);
    EXPECT_EQ("1#D1(1)(1048580)", plain(error));
    EXPECT_EQ("1#D1", textOf(driver.dataAreas));
}

TEST_F(HostileExchange, WithoutACallbackEveryNotificationIsSkipped)
{
    intf_setAddrValueChangeCallBack(nullptr);
    merge({watch("D", 100, 1)});
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
}  // namespace
