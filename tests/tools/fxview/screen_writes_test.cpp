// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What screens write, and above all: whatever happens, what was pressed is released.

#include "tests/tools/fxview/view_support.h"
#include "tools/fxview/screens/screen_writes.h"

#include <gtest/gtest.h>

using namespace fxview;
using namespace view_tests;
using Outcome = WriteResult::Outcome;

namespace {

constexpr int motor = 1;

struct ScreenWritesTest : testing::Test
{
    ScreenWritesTest()
    {
        emit plc.linkChanged(true, {});
        pass(0);
    }

    void pass(qint64 ms) { writes->showMoment(clockMs += ms); }

    void answer(int write, Outcome outcome, const QJsonValue& after = 0, bool isAcknowledged = true)
    {
        emit plc.written(
            {plc.writes[write].id, plc.writes[write].tag, outcome, 1, after, {}, isAcknowledged});
    }

    // What was sent, in order: "1" and "0".
    std::string sent() const
    {
        std::string texts;
        for (const FakePlc::Write& write : plc.writes)
            texts += write.text.toStdString();
        return texts;
    }

    qint64 clockMs = view_tests::nowMs;
    FakePlc plc{someTags()};
    std::unique_ptr<ScreenWrites> writes = std::make_unique<ScreenWrites>(plc);
};

}  // namespace

TEST_F(ScreenWritesTest, SendsOneWriteForAPressAndOneForItsRelease)
{
    writes->press(motor);
    writes->press(motor);
    EXPECT_EQ(sent(), "1");
    EXPECT_EQ(plc.writes[0].tag, motor);
    EXPECT_LT(plc.writes[0].id, 0) << "not the ids of the write bar";
    writes->release(motor);
    writes->release(motor);
    EXPECT_EQ(sent(), "10");
    EXPECT_TRUE(plc.writes[0].isSoon) << "nobody holds the button any more";
    EXPECT_FALSE(plc.writes[1].isSoon) << "better late than never";
    EXPECT_FALSE(writes->isReleased());
    answer(0, Outcome::Done, 1);
    EXPECT_FALSE(writes->isReleased()) << "the press, not the release";
    answer(1, Outcome::Done);
    EXPECT_TRUE(writes->isReleased());
    EXPECT_TRUE(writes->overdue().isEmpty());
    pass(60000);
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenWritesTest, ReleasesOfItselfOnALostLinkAndAgainWhenItIsBack)
{
    writes->press(motor);
    emit plc.linkChanged(false, "no answer");
    EXPECT_EQ(sent(), "1") << "nothing can be sent";
    EXPECT_EQ(writes->overdue(), QVector<int>{motor});
    writes->release(motor);
    pass(60000);
    EXPECT_EQ(sent(), "1");
    emit plc.linkChanged(true, {});
    EXPECT_EQ(sent(), "10") << "at once";
    EXPECT_EQ(writes->overdue(), QVector<int>{motor}) << "until it is confirmed";
    answer(1, Outcome::Done);
    EXPECT_TRUE(writes->isReleased());
    EXPECT_TRUE(writes->overdue().isEmpty());
}

TEST_F(ScreenWritesTest, SendsAReleaseAgainThatTheLostLinkSwallowed)
{
    writes->press(motor);
    writes->release(motor);
    emit plc.linkChanged(false, "no answer");
    EXPECT_EQ(writes->overdue(), QVector<int>{motor});
    answer(1, Outcome::Unknown);
    EXPECT_EQ(writes->overdue(), QVector<int>{motor});
    pass(60000);
    EXPECT_EQ(sent(), "10");
    emit plc.linkChanged(true, {});
    EXPECT_EQ(sent(), "100");
    answer(2, Outcome::Done);
    EXPECT_TRUE(writes->isReleased());
}

TEST_F(ScreenWritesTest, SendsAReleaseAgainEachSecondUntilItIsDone)
{
    writes->press(motor);
    writes->release(motor);
    answer(1, Outcome::Refused);
    EXPECT_EQ(writes->overdue(), QVector<int>{motor});
    pass(999);
    EXPECT_EQ(sent(), "10");
    pass(1);
    EXPECT_EQ(sent(), "100");
    pass(60000);
    EXPECT_EQ(sent(), "100") << "its result is awaited";
    answer(2, Outcome::Unknown);
    pass(1000);
    EXPECT_EQ(sent(), "1000");
    answer(3, Outcome::Done);
    EXPECT_TRUE(writes->isReleased());
}

TEST_F(ScreenWritesTest, DoesNotFightThePlcsOwnProgram)
{
    QVector<int> stillOn;
    QObject::connect(writes.get(), &ScreenWrites::stillOn, [&](int tag) { stillOn += tag; });
    writes->press(motor);
    writes->release(motor);
    for (int write = 1; write <= 3; ++write) {
        EXPECT_TRUE(stillOn.isEmpty());
        answer(write, Outcome::Failed, 1);
        pass(1000);
    }
    EXPECT_EQ(sent(), "1000");
    EXPECT_EQ(stillOn, QVector<int>{motor});
    EXPECT_TRUE(writes->isReleased());
}

TEST_F(ScreenWritesTest, GoesOnReleasingWhereNothingArrives)
{
    writes->press(motor);
    writes->release(motor);
    for (int write = 1; write <= 10; ++write) {
        answer(write, Outcome::Failed, 1, false);
        pass(1000);
    }
    EXPECT_EQ(sent(), "100000000000");
    EXPECT_EQ(writes->overdue(), QVector<int>{motor});
}

TEST_F(ScreenWritesTest, SaysWhenAReleaseTakesLong)
{
    writes->press(motor);
    pass(60000);
    writes->release(motor);
    pass(1999);
    EXPECT_TRUE(writes->overdue().isEmpty());
    pass(1);
    EXPECT_EQ(writes->overdue(), QVector<int>{motor});
    EXPECT_EQ(sent(), "10") << "it still waits in its turn";
}

TEST_F(ScreenWritesTest, TakesAPressBeforeTheReleaseOfTheLastOneIsConfirmed)
{
    writes->press(motor);
    writes->release(motor);
    writes->press(motor);
    EXPECT_EQ(sent(), "101");
    answer(1, Outcome::Done);
    EXPECT_FALSE(writes->isReleased()) << "it is pressed again";
    writes->release(motor);
    answer(3, Outcome::Done);
    EXPECT_TRUE(writes->isReleased());
}

TEST_F(ScreenWritesTest, WritesNothingNewOnALostLinkOrAtTheEnd)
{
    emit plc.linkChanged(false, "no answer");
    EXPECT_FALSE(writes->mayWrite());
    writes->press(motor);
    writes->write(0, "5");
    EXPECT_TRUE(plc.writes.isEmpty());
    emit plc.linkChanged(true, {});
    writes->press(motor);
    writes->end();
    EXPECT_EQ(sent(), "10");
    writes->press(2);
    writes->write(0, "5");
    EXPECT_EQ(sent(), "10");
    EXPECT_FALSE(writes->isReleased());
    answer(1, Outcome::Done);
    EXPECT_TRUE(writes->isReleased());
}

TEST_F(ScreenWritesTest, ReleasesWhenItEnds)
{
    writes->press(motor);
    writes.reset();
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenWritesTest, SendsWhatIsOwedOnceMoreWhenItEnds)
{
    writes->press(motor);
    writes->release(motor);
    answer(1, Outcome::Refused);
    writes.reset();
    EXPECT_EQ(sent(), "100");
}

TEST_F(ScreenWritesTest, WaitsForTheResultBeforeTheNextWriteOfATag)
{
    QVector<int> told;
    QObject::connect(writes.get(), &ScreenWrites::told,
                     [&](const WriteResult& result) { told += result.tag; });
    writes->write(0, "5");
    writes->write(0, "6");
    writes->write(motor, "1");
    ASSERT_EQ(plc.writes.size(), 2);
    EXPECT_TRUE(writes->isWaiting(0));
    answer(0, Outcome::Refused);
    EXPECT_FALSE(writes->isWaiting(0));
    EXPECT_EQ(told, QVector<int>{0});
    emit plc.written({1, 0, Outcome::Done, 5, 6, {}});
    EXPECT_EQ(told.size(), 1) << "of the write bar";
    writes->write(0, "6");
    EXPECT_EQ(plc.writes.size(), 3);
}
