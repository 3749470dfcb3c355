// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Registers polled at their periods on a line with the timing of a real one, in simulated time.

#include "tests/tools/support/virtual_line.h"
#include "tests/tools/tags/every.h"
#include "tools/exchange/blocks.h"
#include "tools/tags/periodic_poller.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

class OnALineAt9600Baud : public testing::Test
{
protected:
    OnALineAt9600Baud()
    {
        bench.loop.onExchange = [this](const Exchange& exchange) {
            asked.append(blockRange(catalogue(), exchange.frame.variable));
        };
    }

    void start(const QVector<PeriodicRange>& wanted, std::optional<qint64> turnaroundUs = {})
    {
        poller.emplace(bench.loop, catalogue(), wanted, 9600, turnaroundUs,
                       [this](const LineLoad& load) { told.append(load); });
    }

    void pollFor(qint64 timeUs)
    {
        for (const qint64 endUs = bench.line.nowUs() + timeUs; bench.line.nowUs() < endUs;) {
            ASSERT_EQ(poller->poll(), RoundEnd::Done);
            const qint64 untilUs = std::min(poller->nextUs(), endUs);
            const qint64 idleUs = std::max<qint64>(untilUs - bench.line.nowUs(), 0);
            bench.loop.overhear(static_cast<int>((idleUs + 999) / 1000));
        }
    }

    int readings(const char* address) const
    {
        const RegisterRange one = range(address);
        return static_cast<int>(
            std::count_if(asked.begin(), asked.end(),
                          [&one](const RegisterRange& block) { return isInside(one, block); }));
    }

    Bench bench{badLine(9600, "delay:20=100%")};
    QVector<RegisterRange> asked;
    QVector<LineLoad> told;
    std::optional<PeriodicPoller> poller;
};

}  // namespace

// Those of 5 s are read between, also where the line is too slow for both.
TEST_F(OnALineAt9600Baud, TenWordsKeepTheirPeriodAmongTwoHundredLongOnes)
{
    struct Row
    {
        const char* delay;
        double used;
    };
    for (const Row& row : {Row{"delay:20=100%", 0.99}, Row{"delay:30=100%", 1.10}}) {
        bench.line.setFaults(row.delay);
        start({every(100, "D100:10"), every(5000, "D0:200")});
        ASSERT_EQ(poller->poll(), RoundEnd::Done);
        asked.clear();
        pollFor(100 * second);
        EXPECT_NEAR(poller->load().used, row.used, 0.01);
        EXPECT_GE(readings("D100"), 950);
        EXPECT_LE(readings("D100"), 1001);
        const qint64 longPeriodUs = poller->load().periods[1].expectedUs;
        EXPECT_NEAR(readings("D199"), static_cast<int>(100 * second / longPeriodUs), 1);
    }
}

// One word takes 40 ms.
TEST_F(OnALineAt9600Baud, TellsBeforeItPollsWhatIsLate)
{
    start({every(20, "D0"), every(5000, "D100:2")});
    ASSERT_EQ(asked.size(), 1);
    EXPECT_EQ(asked[0].text().toStdString(), "D0");
    ASSERT_EQ(told.size(), 1);
    EXPECT_NEAR(told[0].used, 2.0, 0.02);
    EXPECT_TRUE(told[0].periods[0].isLate());
    EXPECT_FALSE(told[0].periods[1].isLate());
}

TEST_F(OnALineAt9600Baud, TellsNothingWhileAllPeriodsAreKept)
{
    start({every(100, "D0"), every(5000, "D100:2")});
    pollFor(60 * second);
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(OnALineAt9600Baud, NeedsNoExchangeToKnowAGivenTurnaround)
{
    start({every(20, "D0")}, 100000);
    EXPECT_TRUE(asked.isEmpty());
    ASSERT_EQ(told.size(), 1);
    EXPECT_NEAR(told[0].used, 5.9, 0.1);
}

TEST_F(OnALineAt9600Baud, NeedsNoExchangeOnALineThatIsKnown)
{
    start({every(100, "D0")});
    start({every(100, "D0")});
    EXPECT_EQ(asked.size(), 1);
}

// One exchange says little of a line.
TEST_F(OnALineAt9600Baud, MeasuresAgainByTheWholeFirstCycle)
{
    start({every(100, "D0")});
    bench.line.setFaults("delay:200=100%");
    poller->poll();
    EXPECT_EQ(told.size(), 1);
}

// Once for each, however long it lasts.
TEST_F(OnALineAt9600Baud, TellsWhenPeriodsBeginToBeLateAndWhenAllAreKeptAgain)
{
    start({every(200, "D0"), every(500, "D100")});
    pollFor(30 * second);
    EXPECT_TRUE(told.isEmpty());
    bench.line.setFaults("delay:150=100%");
    pollFor(60 * second);
    ASSERT_EQ(told.size(), 1);
    EXPECT_FALSE(told[0].periods[0].isLate());
    EXPECT_TRUE(told[0].periods[1].isLate());
    bench.line.setFaults("delay:250=100%");
    pollFor(120 * second);
    ASSERT_EQ(told.size(), 2);
    EXPECT_TRUE(told[1].periods[0].isLate());
    bench.line.setFaults("delay:20=100%");
    pollFor(60 * second);
    ASSERT_EQ(told.size(), 3);
    EXPECT_FALSE(told[2].periods[1].isLate());
}

// A PLC that is silent to every tenth request costs a time-out each time.
TEST_F(OnALineAt9600Baud, CountsWhatFaultsCost)
{
    start({every(100, "D0")});
    bench.line.setFaults("silence=10%");
    pollFor(120 * second);
    ASSERT_GE(told.size(), 1);
    EXPECT_TRUE(told[0].periods[0].isLate());
}

// It would seem slow for its next hundred exchanges.
TEST_F(OnALineAt9600Baud, DoesNotCountTheTimeInWhichNothingAnswers)
{
    start({every(100, "D0")});
    pollFor(second);
    bench.line.setFaults("power-cycle:600000@1,delay:20=100%");
    const qint64 silentSinceUs = bench.line.nowUs();
    while (bench.line.nowUs() < silentSinceUs + 610 * second) {
        poller->poll();
        bench.loop.overhear(100);
    }
    pollFor(15 * second);
    EXPECT_LT(poller->load().used, 1) << "as if the line could not keep the period";
}
