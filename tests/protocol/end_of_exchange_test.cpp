// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The moves at the end of an exchange, by its kind and outcome.

#include "protocol/end_of_exchange.h"
#include "tests/support/driver_fixture.h"

namespace {
class EndOfExchange : public DriverTest
{
protected:
    EndOfExchange()
    {
        setUpDriver();
        driver.writeList << request("D", 1, 1) << request("D", 2, 1);
        driver.conditionReadList << request("D", 3, 1) << request("D", 4, 1);
        driver.readList << request("D", 5, 1) << request("D", 6, 1) << request("D", 7, 1);
        driver.recipeVars << recipeEntry("D", 8, 1, 0) << recipeEntry("D", 9, 1, 0);
        hostMemory[fxDownloadRequestByte] = hostMemory[fxUploadRequestByte] = 1;
    }
    void end(int kind, bool failed)
    {
        driver.operationKind = kind;
        driver.lastExchangeFailed = failed ? 1 : 0;
        dealListWhenFinish();
        EXPECT_EQ(kind, driver.operationKind);
        EXPECT_TRUE(mutexIsFree());
    }
    static std::string lists()
    {
        return textOf(driver.writeList) + " | " + textOf(driver.conditionReadList) + " | " +
               textOf(driver.readList);
    }
    std::string transfer()
    {
        return std::to_string(driver.recipeIndex) + ' ' +
               std::to_string(hostMemory[fxDownloadRequestByte]) + ' ' +
               std::to_string(hostMemory[fxUploadRequestByte]);
    }
};

constexpr char untouchedLists[] = "1#D1/1 1#D2/1 | 1#D3/1 1#D4/1 | 1#D5/1 1#D6/1 1#D7/1";

TEST_F(EndOfExchange, WriteLeavesTheQueueAfterSuccessAndFailureAlike)
{
    end(2, false);
    EXPECT_EQ("1#D2/1 | 1#D3/1 1#D4/1 | 1#D5/1 1#D6/1 1#D7/1", lists());
    end(2, true);
    EXPECT_EQ(" | 1#D3/1 1#D4/1 | 1#D5/1 1#D6/1 1#D7/1", lists());
    end(2, false);
    EXPECT_EQ(" | 1#D3/1 1#D4/1 | 1#D5/1 1#D6/1 1#D7/1", lists());
    EXPECT_EQ("0 1 1", transfer());
}

TEST_F(EndOfExchange, ConditionalReadThatIsNotTheLastEndsInSilence)
{
    driver.lastConditionRead = request("D", 4, 1);
    end(3, false);
    EXPECT_EQ("1#D1/1 1#D2/1 | 1#D4/1 | 1#D5/1 1#D6/1 1#D7/1", lists());
    EXPECT_EQ(Texts(), calls);
}

TEST_F(EndOfExchange, FailedLastConditionalReadIsReportedAsFailed)
{
    driver.lastConditionRead = request("D", 3, 1);
    end(3, true);
    EXPECT_EQ((Texts{"-1,-1,-1,-1"}), calls);
}

TEST_F(EndOfExchange, FailedConditionalReadDropsAllThatWait)
{
    driver.lastConditionRead = request("D", 4, 1);
    end(3, true);
    EXPECT_EQ("1#D1/1 1#D2/1 |  | 1#D5/1 1#D6/1 1#D7/1", lists());
    EXPECT_EQ(Texts(), calls);
}

TEST_F(EndOfExchange, LastConditionalReadIsToldByStationTypeNumberAndCount)
{
    for (const VARIABLE& other :
         {request("D", 3, 1, 2), request("d", 3, 1), request("D", 2, 1), request("D", 3, 2)}) {
        driver.conditionReadList.prepend(request("D", 3, 1));
        driver.lastConditionRead = other;
        end(3, false);
    }
    EXPECT_EQ(Texts(), calls);
}

TEST_F(EndOfExchange, TagOfTheLastConditionalReadMakesNoDifference)
{
    driver.lastConditionRead = request("D", 3, 1);
    driver.lastConditionRead.tag = 99;
    end(3, false);
    EXPECT_EQ((Texts{"-1,-1,-1,0"}), calls);
}

TEST_F(EndOfExchange, ConditionalReadOfAnEmptyQueueDoesNothing)
{
    driver.conditionReadList.clear();
    driver.lastConditionRead = VARIABLE();
    end(3, false);
    end(3, true);
    EXPECT_EQ(Texts(), calls);
}

TEST_F(EndOfExchange, CyclicReadMovesToTheEndAfterSuccessAndFailureAlike)
{
    end(4, false);
    EXPECT_EQ("1#D6/1 1#D7/1 1#D5/1", textOf(driver.readList));
    end(4, true);
    EXPECT_EQ("1#D7/1 1#D5/1 1#D6/1", textOf(driver.readList));
}

TEST_F(EndOfExchange, ShortPlansDoNotRotate)
{
    driver.readList.clear();
    end(4, false);
    EXPECT_TRUE(driver.readList.isEmpty());
    driver.readList << request("D", 5, 1);
    end(4, true);
    EXPECT_EQ("1#D5/1", textOf(driver.readList));
    driver.readList << request("D", 6, 1);
    end(4, false);
    EXPECT_EQ("1#D6/1 1#D5/1", textOf(driver.readList));
}

TEST_F(EndOfExchange, UploadGoesOnToTheNextEntryThenClearsItsByte)
{
    end(6, false);
    EXPECT_EQ("1 1 1", transfer());
    end(6, false);
    EXPECT_EQ("0 1 0", transfer());
    EXPECT_EQ(untouchedLists, lists());
}

TEST_F(EndOfExchange, TransferOfAnEmptyListEnds)
{
    driver.recipeVars.clear();
    driver.recipeIndex = 5;
    end(5, false);
    EXPECT_EQ("0 0 1", transfer());
    driver.recipeIndex = 3;
    end(6, false);
    EXPECT_EQ("0 0 0", transfer());
}

TEST_F(EndOfExchange, OtherKindsDoNothing)
{
    for (const int kind : {0, 1, 7, -1, 2147483647}) {
        end(kind, false);
        end(kind, true);
    }
    EXPECT_EQ(untouchedLists, lists());
    EXPECT_EQ("0 1 1", transfer());
    EXPECT_EQ(Texts(), calls);
}

TEST_F(EndOfExchange, WholeConditionalReadIsReportedOnceWithItsLastPiece)
{
    driver.conditionReadList.clear();
    driver.writeList.clear();
    hostMemory[fxDownloadRequestByte] = hostMemory[fxUploadRequestByte] = 0;
    readOnce(watch("D", 100, 34));
    ASSERT_EQ("1#D100/32", nextRequest());
    reply("<STX>0000<ETX>C3");
    EXPECT_EQ(Texts(), calls);
    ASSERT_EQ("1#D132/2", nextRequest());
    reply("<STX>0000<ETX>C3");
    EXPECT_EQ((Texts{"-1,-1,-1,0"}), calls);
    EXPECT_TRUE(driver.conditionReadList.isEmpty());
}
}  // namespace
