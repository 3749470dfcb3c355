// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// At most three writes or one-off reads go out between two cyclic reads.

#include "tests/support/driver_fixture.h"

namespace {
class Fairness : public DriverTest
{
protected:
    Fairness() { setUpDriver(); }

    // The requests that the next exchanges serve, all of which end well.
    std::string served(int exchanges)
    {
        std::string texts;
        for (int i = 0; i < exchanges; ++i) {
            FRAME_PRO out;
            if (intf_getSendFrame(&out) == 0)
                return texts + "nothing";
            texts += textOf(out.variable) + ' ';
            EXPECT_EQ(1, out.isRead == 1 ? reply("<STX>0000<ETX>C3") : acknowledge());
        }
        return texts;
    }
    static void queueWrites(int count)
    {
        for (int i = 0; i < count; ++i)
            driver.writeList << request("D", i, 1);
    }
    static void queueReads(int count)
    {
        for (int i = 0; i < count; ++i)
            driver.conditionReadList << request("TV", i, 1);
    }
};

TEST_F(Fairness, FourWritesLetOneCyclicReadThrough)
{
    driver.readList << request("CV", 0, 1);
    queueWrites(4);
    EXPECT_EQ("1#D0/1 1#D1/1 1#D2/1 1#CV0/1 1#D3/1 ", served(5));
}

TEST_F(Fairness, SevenConditionalReadsLetTwoCyclicReadsThrough)
{
    driver.readList << request("CV", 0, 1);
    queueReads(7);
    EXPECT_EQ("1#TV0/1 1#TV1/1 1#TV2/1 1#CV0/1 1#TV3/1 1#TV4/1 1#TV5/1 1#CV0/1 1#TV6/1 1#CV0/1 ",
              served(10));
}

TEST_F(Fairness, WritesAndConditionalReadsShareTheThree)
{
    driver.readList << request("CV", 0, 1);
    queueWrites(2);
    queueReads(2);
    EXPECT_EQ("1#D0/1 1#D1/1 1#TV0/1 1#CV0/1 1#TV1/1 ", served(5));
}

TEST_F(Fairness, CyclicReadsDoNotCount)
{
    driver.readList << request("CV", 0, 1);
    EXPECT_EQ("1#CV0/1 1#CV0/1 ", served(2));
    EXPECT_EQ(0, driver.burstCount);
    queueWrites(3);
    EXPECT_EQ("1#D0/1 1#D1/1 1#D2/1 1#CV0/1 ", served(4));
}

// Wanted: writes wait for a cyclic read that never comes.
TEST_F(Fairness, WithoutAPlanThreeGoOutAndTheRestWaits)
{
    queueWrites(2);
    queueReads(3);
    EXPECT_EQ("1#D0/1 1#D1/1 1#TV0/1 nothing", served(4));
    EXPECT_EQ(0, driver.operationKind);
    EXPECT_EQ(2, driver.conditionReadList.size());
    EXPECT_EQ("nothing", served(1));
}

TEST_F(Fairness, APlanThatArrivesLetsTheWaitingWritesGo)
{
    queueWrites(4);
    EXPECT_EQ("1#D0/1 1#D1/1 1#D2/1 nothing", served(4));
    driver.readList << request("CV", 0, 1);
    EXPECT_EQ("1#CV0/1 1#D3/1 ", served(2));
}

TEST_F(Fairness, RepeatsOfOneWriteDoNotCount)
{
    driver.readList << request("CV", 0, 1);
    queueWrites(3);
    nextRequest();
    EXPECT_EQ(8, reply("<NAK>"));
    nextRequest();
    EXPECT_EQ(8, reply("<NAK>"));
    EXPECT_EQ(1, driver.burstCount);
    EXPECT_EQ("1#D0/1 1#D1/1 1#D2/1 1#CV0/1 ", served(4));
}

TEST_F(Fairness, FailedWritesCount)
{
    setUpDriver("1#0#0#1#32");
    driver.readList << request("CV", 0, 1);
    queueWrites(4);
    for (int i = 0; i < 3; ++i) {
        nextRequest();
        EXPECT_EQ(2, reply("<NAK>"));
    }
    EXPECT_EQ("1#CV0/1", nextRequest());
}

TEST_F(Fairness, RecipeStepsDoNotCountAndAreNotHeldBack)
{
    driver.readList << request("CV", 0, 1);
    queueWrites(4);
    served(3);
    driver.recipeVars << recipeEntry("D", 100, 1, 0) << recipeEntry("D", 101, 1, 0);
    requestDownload();
    EXPECT_EQ("1#D100/1 1#D101/1 1#CV0/1 1#D3/1 ", served(4));
}
}  // namespace
