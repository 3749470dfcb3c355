// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Registers with periods on a line whose exchanges take what they cost, in a time that only counts.

#include "tests/support/times_shorter.h"
#include "tests/tools/tags/every.h"

#include <gtest/gtest.h>

#include <QHash>

#include <random>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr LineCost slowLine = {20000, 9600};
constexpr qint64 longestExchangeUs = exchangeCost(slowLine, 64) / slowLine.baud;

class Line
{
public:
    explicit Line(const QVector<PeriodicRange>& wanted, const LineCost& line = slowLine)
        : m_schedule(wanted, 32, line), m_line(line)
    {
        m_schedule.begin(0);
    }

    // Reads what is to be read; returns it.
    std::string read()
    {
        m_nowUs = std::max(m_nowUs, m_schedule.nextUs());
        QStringList texts;
        const QVector<RegisterRange> read = m_schedule.next(m_nowUs);
        for (const RegisterRange& part : read) {
            texts += part.text();
            for (int index = 0; index < part.count; ++index)
                m_readUs[part.nameOf(index)].append(m_nowUs);
        }
        const int registers = read.last().first + read.last().count - read.first().first;
        const qint64 bytes = read.first().type.isBit() ? (registers + 7) / 8
                                                       : registers * read.first().type.valueBytes();
        m_nowUs += exchangeCost(m_line, static_cast<int>(bytes)) / m_line.baud + m_extraUs();
        return texts.join(' ').toStdString();
    }

    void readUntil(qint64 timeUs)
    {
        while (std::max(m_nowUs, m_schedule.nextUs()) < timeUs)
            read();
        m_nowUs = std::max(m_nowUs, timeUs);
    }

    void pause(qint64 timeUs) { m_nowUs += timeUs; }
    void setExtra(const std::function<qint64()>& extraUs) { m_extraUs = extraUs; }
    Schedule& schedule() { return m_schedule; }
    qint64 nowUs() const { return m_nowUs; }

    int readings(const char* name) const { return m_readUs[name].size(); }
    qint64 longestGapUs(const char* name) const
    {
        qint64 gapUs = 0;
        const QVector<qint64> timesUs = m_readUs[name];
        for (int index = 1; index < timesUs.size(); ++index)
            gapUs = std::max(gapUs, timesUs[index] - timesUs[index - 1]);
        return gapUs;
    }

private:
    Schedule m_schedule;
    LineCost m_line;
    qint64 m_nowUs = 0;
    QHash<QString, QVector<qint64>> m_readUs;
    std::function<qint64()> m_extraUs = [] { return 0; };
};

}  // namespace

TEST(Schedule, KeepsEveryPeriodThatTheLineHasTimeFor)
{
    struct Row
    {
        double used;
        int shortMs, middleMs;
    };
    for (const Row& row : {Row{0.30, 550, 4000}, Row{0.90, 150, 600}, Row{0.99, 130, 550}}) {
        Line line({every(row.shortMs, "D0:10"), every(row.middleMs, "D1000:30"),
                   every(5000, "D2000:100")});
        EXPECT_NEAR(line.schedule().load().used, row.used, 0.01);
        line.readUntil(100 * second);
        EXPECT_NEAR(line.readings("D9"), 100000 / row.shortMs, 1);
        EXPECT_NEAR(line.readings("D1029"), 100000 / row.middleMs, 1);
        EXPECT_NEAR(line.readings("D2099"), 100000 / 5000, 1);
        EXPECT_LE(line.longestGapUs("D9"), 2000 * row.shortMs + longestExchangeUs);
        EXPECT_LE(line.longestGapUs("D1029"), 2000 * row.middleMs + longestExchangeUs);
    }
}

TEST(Schedule, StretchesLongPeriodsBeforeShortOnes)
{
    Line line({every(5000, "D2000:100"), every(100, "D0:10"), every(200, "D1000:30")});
    const LineLoad& load = line.schedule().load();
    EXPECT_NEAR(load.used, 1.69, 0.01);
    ASSERT_EQ(load.periods.size(), 3);
    EXPECT_EQ(load.periods[0].registers.first().text().toStdString(), "D0:10");
    EXPECT_FALSE(load.periods[0].isLate());
    EXPECT_TRUE(load.periods[1].isLate());
    EXPECT_TRUE(load.periods[2].isLate());
    line.readUntil(1000 * second);
    EXPECT_NEAR(line.readings("D9"), 10000, 2);
    for (const PeriodLoad& period : {load.periods[1], load.periods[2]}) {
        const double readings = 1000.0 * second / static_cast<double>(period.expectedUs);
        const RegisterRange& registers = period.registers.first();
        const QByteArray name = registers.nameOf(registers.count - 1).toLatin1();
        EXPECT_NEAR(line.readings(name.data()) / readings, 1, 0.1) << name.data();
    }
}

TEST(Schedule, LetsTheShortestPeriodTakeAllButATwentieth)
{
    Line line({every(10, "D0:10"), every(5000, "D1000:200")});
    line.readUntil(100 * second);
    const double alone = 100.0 * second * slowLine.baud / exchangeCost(slowLine, 20);
    EXPECT_GE(line.readings("D9") / alone, 0.95);
}

// None waits longer than for its part of the twentieth, whatever the others want.
TEST(Schedule, LetsNoneWaitForEver)
{
    std::mt19937 random(1);
    for (int set = 0; set < 20; set += timesShorter) {
        QVector<PeriodicRange> wanted;
        for (int range = 0; range < 5; ++range) {
            const int periodMs = static_cast<int>(random() % 5) * 40;  // 0: as fast as possible
            const QString address =
                QStringLiteral("D%1:%2").arg(1000 * range).arg(random() % 70 + 1);
            wanted.append(every(periodMs, qPrintable(address)));
        }
        Line line(wanted);
        line.readUntil(100 * second);
        const LineLoad& load = line.schedule().load();
        for (const PeriodLoad& period : load.periods) {
            const Cost cost = costOf(shortestPlan(period.registers, 32, slowLine), slowLine);
            EXPECT_LE(period.expectedUs,
                      std::max<qint64>(period.wantedUs,
                                       20 * load.periods.size() * cost / slowLine.baud + 20));
            const QByteArray name = period.registers.first().nameOf(0).toLatin1();
            EXPECT_LE(line.longestGapUs(name.data()), 2 * (period.expectedUs + longestExchangeUs))
                << name.data();
        }
    }
}

TEST(Schedule, GivesWhatIsLeftInTurnToWhatHasNoPeriod)
{
    Line line({every(200, "D0:10"), every(0, "D1000:100"), every(0, "D3000")});
    line.readUntil(100 * second);
    EXPECT_NEAR(line.readings("D9"), 500, 1);
    EXPECT_GT(line.readings("D1000"), 50);
    EXPECT_NEAR(line.readings("D1000"), line.readings("D1099"), 2);
    EXPECT_NEAR(line.readings("D1000"), line.readings("D3000"), 2);
    EXPECT_LE(line.schedule().nextUs(), line.nowUs());
}

TEST(Schedule, GivesTheTimeThatExchangesDoNotTakeToWhatWantsMore)
{
    Line line({every(1000, "D0:10"), every(10, "D1000:32")});
    line.setExtra([] { return -15000; });
    line.readUntil(100 * second);
    const qint64 expectedUs = line.schedule().load().periods.first().expectedUs;
    EXPECT_GT(line.readings("D1000"), 105 * second / expectedUs);
}

TEST(Schedule, KeepsPeriodsOnALineWhoseTurnaroundVaries)
{
    Line line({every(150, "D0:10"), every(1000, "D1000:30"), every(5000, "D2000:100")});
    std::mt19937 random(1);
    line.setExtra([&random] { return qint64(random() % 39) * 1000 - 19000; });
    line.readUntil(150 * second);
    EXPECT_NEAR(line.readings("D9"), 1000, 2);
    EXPECT_NEAR(line.readings("D1029"), 150, 1);
    EXPECT_NEAR(line.readings("D2099"), 30, 1);
}

TEST(Schedule, MakesUpForAnExchangeButNotForAPause)
{
    Line line({every(100, "D0:2"), every(5000, "D1000:64")});
    line.readUntil(10 * second);
    const int before = line.readings("D0");
    EXPECT_NEAR(before, 100, 1);
    line.pause(60 * second);
    line.readUntil(71 * second);
    EXPECT_LE(line.readings("D0") - before, 12);
}

TEST(Schedule, WaitsForItsPeriodAgainAfterAPause)
{
    Line line({every(1000, "D0")});
    line.pause(10 * second);
    line.read();
    line.read();  // makes up for one
    EXPECT_GT(line.schedule().nextUs(), line.nowUs());
}

TEST(Schedule, ReadsOnTheWayWhatIsNotDueYet)
{
    Line line({every(100, "D0"), every(5000, "D2"), every(100, "D4"), every(5000, "D6")});
    EXPECT_EQ(line.read(), "D0 D2 D4");
    line.readUntil(5 * second);
    EXPECT_EQ(line.readings("D2"), 49);
    EXPECT_EQ(line.readings("D6"), 0);
    line.readUntil(5 * second + 1);
    EXPECT_EQ(line.readings("D6"), 1);
}

TEST(Schedule, ReadsAgainAPeriodAfterWhatWasReadOnTheWay)
{
    Line line({every(3000, "D0"), every(5000, "D2"), every(3000, "D4")});
    EXPECT_EQ(line.read(), "D0 D2 D4");
    EXPECT_EQ(line.schedule().nextUs(), 6 * second);
}

TEST(Schedule, ReadsNoBlockOverUnreadableRegisters)
{
    Line line({every(100, "D0:10")});
    const double before = line.schedule().load().used;
    line.schedule().setUnreadable({range("D4"), range("D7"), range("M5")});
    EXPECT_GT(line.schedule().load().used, before);
    EXPECT_EQ(line.read(), "D0:4");
    EXPECT_EQ(line.read(), "D5:2");
    EXPECT_EQ(line.read(), "D8:2");
    line.schedule().setUnreadable({range("D0:10")});
    EXPECT_TRUE(line.schedule().load().periods.isEmpty());
    EXPECT_TRUE(line.schedule().next(5 * second).isEmpty());
    line.schedule().setUnreadable({});
    EXPECT_EQ(line.read(), "D4:4");
}

TEST(Schedule, ReadsAPartOfAnUnreadableValueByItself)
{
    PeriodicRange text = every(100, "D0:4");
    text.registers.together = 4;
    Line line({every(100, "D0"), text, every(100, "D4")});
    EXPECT_EQ(line.read(), "D0 D0:4 D4");
    line.schedule().setUnreadable({text.registers});
    EXPECT_EQ(line.read(), "D0");
    EXPECT_EQ(line.read(), "D4");
    EXPECT_EQ(line.read(), "D0");
}

TEST(Schedule, ReadsPastWhatIsUnreadableElsewhere)
{
    Line line({every(100, "D1"), every(100, "D3"), every(100, "D5")});
    line.schedule().setUnreadable({range("D0"), range("D6"), range("M2")});
    EXPECT_EQ(line.read(), "D1 D3 D5");
}

TEST(Schedule, TakesTheShortestOfSeveralPeriods)
{
    const Schedule schedule({every(0, "D0:3"), every(300, "D1"), every(200, "D1:2")}, 32, slowLine);
    std::string text;
    for (const PeriodLoad& period : schedule.load().periods)
        text +=
            std::to_string(period.wantedUs) + period.registers.first().text().toStdString() + ' ';
    EXPECT_EQ(text, "200000D1:2 0D0 ");
}

TEST(Schedule, ReadsTheSameRegistersOfEachStation)
{
    Line line({every(100, "D0"), every(100, "2#D0"), every(100, "D1")});
    EXPECT_EQ(line.read(), "D0:2");
    EXPECT_EQ(line.read(), "2#D0");
}

TEST(Schedule, KeepsTogetherWhatIsOneValue)
{
    RegisterRange pairs = range("D1:40");
    pairs.together = 2;
    RegisterRange longText = range("D100:40");  // longer than a frame
    longText.together = 40;
    Line line({{pairs, second}, {range("D32"), second}, {longText, second}});
    EXPECT_EQ(line.read(), "D1:32 D32");
    EXPECT_EQ(line.read(), "D33:8");
    EXPECT_EQ(line.read(), "D100:32");
    EXPECT_EQ(line.read(), "D132:8");
    line.readUntil(2 * second);
    EXPECT_EQ(line.readings("D100"), 1);
    EXPECT_EQ(line.readings("D139"), 1);
}

TEST(Schedule, KeepsTogetherWhatFillsAFrame)
{
    RegisterRange text = range("D100:32");
    text.together = 32;
    Line line({{range("D99"), second}, {text, second}});
    EXPECT_EQ(line.read(), "D99");
    EXPECT_EQ(line.read(), "D100:32");
}

TEST(Schedule, ReadsAValueWithinAnother)
{
    RegisterRange text = range("D0:8");
    text.together = 8;
    Line line({{text, second}, every(1000, "D2")});
    EXPECT_EQ(line.read(), "D0:8 D2");
}

// Its registers are read one by one, so that a block may end anywhere in it.
TEST(Schedule, FillsAFrameWithWhatIsLongerThanOne)
{
    RegisterRange text = range("D100:40");
    text.together = 40;
    Line line({{range("D99"), second}, {text, second}});
    EXPECT_EQ(line.read(), "D99:32");
}

TEST(Schedule, ReadsBitsByTheirBytes)
{
    Line line({every(100, "M0:4"), every(5000, "M4:8")});
    EXPECT_EQ(line.read(), "M0:8");
    line.readUntil(5 * second);
    EXPECT_EQ(line.read(), "M0:12");
}

TEST(Schedule, StretchesWhenTheLineTurnsOutSlower)
{
    Schedule schedule({every(100, "D0:10")}, 32, slowLine);
    EXPECT_FALSE(schedule.load().periods.first().isLate());
    schedule.setLine({60000, 9600});
    EXPECT_EQ(schedule.load().periods.first().expectedUs, 60000 + 57291);
}

// Over 17 words: more than an exchange costs with 20 ms, less than with 60 ms.
TEST(Schedule, PlansForTheLineAsItTurnsOut)
{
    for (const int turnaroundMs : {20, 60}) {
        Line line({every(100, "D0"), every(100, "D18")});
        line.schedule().setLine({1000 * turnaroundMs, 9600});
        EXPECT_EQ(line.read(), turnaroundMs == 20 ? "D0" : "D0 D18");
    }
}

TEST(Schedule, BeginsAPeriodAfterEverythingWasRead)
{
    Schedule schedule({every(100, "D0")}, 32, slowLine);
    schedule.begin(7 * second);
    EXPECT_EQ(schedule.nextUs(), 7 * second + 100000);
}

TEST(Schedule, HasNothingToReadWhereNothingIsWanted)
{
    Schedule schedule({}, 32, slowLine);
    EXPECT_TRUE(schedule.next(second).isEmpty());
    EXPECT_EQ(schedule.load().used, 0);
}
