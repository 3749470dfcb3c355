// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the host owns on behalf of the driver: values in and out, recipes, request bytes, callbacks.

#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/polling.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

using Values = QVector<quint32>;

}  // namespace

TEST(Session, SetsTheDriverUpAsItIsTold)
{
    Bench bench(badLine(0, ""), SessionSettings{4, 16});
    EXPECT_EQ(bench.session.propertyString(), "1#0#0#4#16");
    EXPECT_EQ(bench.session.setPlan({range("D0:32"), range("M0:8")}), 3);
    EXPECT_EQ(bench.session.setPlan({}), 0);
    EXPECT_FALSE(bench.loop.step());
}

TEST(Session, ShowsWrittenValuesAtOnce)
{
    Bench bench;
    bench.session.write(range("D10:2"), {1, 65535});
    bench.session.write(range("32CV201"), {0x89ABCDEF});
    bench.session.write(range("M3:3"), {1, 0, 1});
    EXPECT_EQ(bench.session.values(range("D9:4")), Values({0, 1, 65535, 0}));
    EXPECT_EQ(bench.session.values(range("32CV200:3")), Values({0, 0x89ABCDEF, 0}));
    EXPECT_EQ(bench.session.values(range("M2:5")), Values({0, 1, 0, 1, 0}));
    bench.session.forgetValues();
    EXPECT_EQ(bench.session.values(range("D10:2")), Values({0, 0}));
    EXPECT_FALSE(bench.loop.step());  // nor is anything sent
}

TEST(Session, TellsOfChangesAndRecipeWords)
{
    Bench bench;
    QStringList told;
    bench.session.onValueChanged = [&](const QString& type, int station, int number) {
        told += QString("%1#%2%3").arg(station).arg(type).arg(number);
    };
    bench.session.onRecipeWord = [&](int word) { told += QString("word %1").arg(word); };
    bench.session.setPlan({range("2#D7")});
    bench.session.write(range("2#D7"), {1});
    bench.session.startRecipe(RecipeDirection::Upload, {range("D30:2")});
    runUntil(bench.loop, [](const Round& round) { return round.ended.size() == 3; });
    EXPECT_EQ(told.join(", ").toStdString(), "2#D7, word 0, word 1, 2#D7");
}

TEST(Session, AsksForARecipeThatHasEntriesOnly)
{
    Bench bench;
    EXPECT_EQ(bench.session.startRecipe(RecipeDirection::Download, {}), 0);
    EXPECT_FALSE(bench.session.recipeRuns(RecipeDirection::Download));
    EXPECT_EQ(bench.session.startRecipe(RecipeDirection::Upload, {range("D0"), range("D9")}), 2);
    EXPECT_TRUE(bench.session.recipeRuns(RecipeDirection::Upload));
    EXPECT_FALSE(bench.session.recipeRuns(RecipeDirection::Download));
}

// The plan takes a counter of two words for one.
TEST(Session, HalvesItsFramesForMoreCountersThanHalfAFrameHas)
{
    Bench bench(badLine(0, ""), SessionSettings{4, 32});
    bench.session.fitFrames({range("D0:100"), range("32CV210:4"), range("32CV200:16")});
    EXPECT_EQ(bench.session.settings().wordsPerFrame, 32);
    bench.session.fitFrames({range("32CV216"), range("32CV200")});
    EXPECT_EQ(bench.session.settings().wordsPerFrame, 16);
    EXPECT_EQ(bench.session.propertyString(), "1#0#0#4#16");
    bench.session.fitFrames({range("32CV200:56")});
    EXPECT_EQ(bench.session.settings().wordsPerFrame, 16) << "once is enough";
}

TEST(Session, LeavesNothingInTheDriver)
{
    {
        Bench bench;
        bench.session.setPlan({range("D0")});
        bench.session.write(range("D1"), {1});
    }
    FRAME_PRO frame;
    EXPECT_EQ(driver().getSendFrame(&frame), fxNothingToSend);
}

namespace {

class Recipes : public testing::Test
{
protected:
    RecipeOutcome transfer(RecipeDirection direction)
    {
        return transferRecipe(bench.loop, direction, entries, [this](int done, int total) {
            progress += QString("%1/%2").arg(done).arg(total);
        });
    }

    std::vector<quint16> words(size_t count)
    {
        const std::vector<quint16>& all = bench.session.recipeWords();
        return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count)};
    }

    Bench bench{badLine(0, ""), SessionSettings{2, 32}};
    const QVector<RegisterRange> entries = {range("D100:2"), range("32CV201:2"), range("TV3")};
    const std::vector<quint16> values = {11, 12, 0x1111, 0x2222, 0x3333, 0x4444, 13};
    QStringList progress;
};

}  // namespace

TEST_F(Recipes, GoDownEntryAfterEntry)
{
    std::copy(values.begin(), values.end(), bench.session.recipeWords().begin());
    const RecipeOutcome outcome = transfer(RecipeDirection::Download);
    EXPECT_TRUE(outcome.isGood());
    EXPECT_FALSE(outcome.isUncertain);
    EXPECT_EQ(bench.plcWord(addressOfD(100)), 11U);
    EXPECT_EQ(bench.plcWord(addressOfD(101)), 12U);
    EXPECT_EQ(bench.plcDoubleWord(0x0C04), 0x22221111U);
    EXPECT_EQ(bench.plcDoubleWord(0x0C08), 0x44443333U);
    EXPECT_EQ(bench.plcWord(0x0806), 13U);
    EXPECT_EQ(progress.join(' '), "0/3 1/3 2/3 3/3");
    EXPECT_FALSE(bench.session.recipeRuns(RecipeDirection::Download));
}

TEST_F(Recipes, ComeUpEntryAfterEntry)
{
    bench.setD(100, 11);
    bench.setD(101, 12);
    bench.line.memory().setValue(0x0C04, 4, 0x22221111);
    bench.line.memory().setValue(0x0C08, 4, 0x44443333);
    bench.line.memory().setValue(0x0806, 2, 13);
    EXPECT_TRUE(transfer(RecipeDirection::Upload).isGood());
    EXPECT_EQ(words(7), values);
    EXPECT_FALSE(bench.session.recipeRuns(RecipeDirection::Upload));
}

TEST_F(Recipes, EndAtTheFirstEntryThatFails)
{
    bench.line.setFaults("nak@2-");
    const RecipeOutcome outcome = transfer(RecipeDirection::Download);
    EXPECT_FALSE(outcome.isGood());
    EXPECT_EQ(outcome.entries, 3);
    EXPECT_EQ(outcome.transferred, 1);
    EXPECT_EQ(outcome.problem, ReplyVerdict::Refused);
    EXPECT_FALSE(outcome.isUncertain) << "a refusal changes nothing";
    EXPECT_EQ(progress.join(' '), "0/3 1/3 1/3");
}

TEST_F(Recipes, ThatAreCancelledBetweenTwoEntriesLeaveNoneUncertain)
{
    LoopSettings settings = bench.line.loopSettings();
    bool isCancelled = false;
    settings.isInterrupted = [&isCancelled] { return isCancelled; };
    ExchangeLoop loop(bench.session, bench.line, settings);
    const RecipeOutcome outcome =
        transferRecipe(loop, RecipeDirection::Download, entries,
                       [&isCancelled](int done, int) { isCancelled = done == 2; });
    EXPECT_EQ(outcome.transferred, 2);
    EXPECT_EQ(outcome.problem, ReplyVerdict::Interrupted);
    EXPECT_FALSE(outcome.isUncertain) << "nothing was sent of the third";
}

// The driver keeps its place in the list.
TEST_F(Recipes, StartAtTheirFirstEntryAfterOneThatALostLinkBrokeOff)
{
    bench.setD(100, 11);
    bench.line.memory().setValue(0x0806, 2, 13);
    bench.line.setFaults("link-drop@3");
    const RecipeOutcome outcome = transfer(RecipeDirection::Upload);
    EXPECT_EQ(outcome.transferred, 2);
    EXPECT_EQ(outcome.problem, ReplyVerdict::LinkLost);
    EXPECT_TRUE(outcome.isUncertain);
    EXPECT_FALSE(bench.session.recipeRuns(RecipeDirection::Upload));
    bench.line.open();
    bench.session.setPlan({range("D0")});
    EXPECT_EQ(bench.loop.step()->kind, ExchangeKind::CyclicRead) << "no repeat of the recipe's";
    EXPECT_TRUE(transfer(RecipeDirection::Upload).isGood());
    EXPECT_EQ(words(7), std::vector<quint16>({11, 0, 0, 0, 0, 0, 13}));
    EXPECT_EQ(progress.join(' '), "0/3 1/3 2/3 0/3 1/3 2/3 3/3");
}
