// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What waits for a window that stands still.

#include "tests/tools/fxview/view_support.h"
#include "tools/fxview/models/alarm_book.h"
#include "tools/fxview/models/value_book.h"
#include "tools/fxview/plc/pending_readings.h"

#include <gtest/gtest.h>

using namespace fxview;
using namespace view_tests;

namespace {

constexpr int oven = 0, pump = 5;  // of someTags()

QStringList eventsOf(const QVector<Reading>& readings)
{
    AlarmBook alarms(someTags());
    for (const Reading& reading : readings)
        alarms.take(reading);
    QStringList events;
    for (const AlarmEvent& event : alarms.events())
        events += QStringLiteral("%1 %2 %3")
                      .arg((event.timeMs - nowMs) / 1000)
                      .arg(event.kind, whatText(event.what));
    return events;
}

}  // namespace

TEST(PendingReadings, AreTakenOnceInTheirOrder)
{
    PendingReadings pending(someTags());
    pending.add(good(oven, 1, nowMs));
    pending.add(good(pump, 2, nowMs + 1));
    pending.add(good(oven, 3, nowMs + 2));
    const QVector<Reading> taken = pending.take();
    ASSERT_EQ(taken.size(), 3);
    EXPECT_EQ(taken[1].tag, pump);
    EXPECT_EQ(taken[2].value, 3);
    EXPECT_TRUE(pending.take().isEmpty());
}

// A day at 100 ms, with 100 ms of all that matters.
TEST(PendingReadings, KeepAlarmsAndPeaksOfADayInBoundedMemory)
{
    PendingReadings pending(someTags());
    constexpr int steps = 864000;
    for (int step = 0; step < steps; ++step) {
        const double high = step == 300000 ? 181 : step == 500000 ? 190 : 50;
        pending.add(good(oven, step == 400000 ? 9 : high, nowMs + step * 100));
        pending.add(step == 600000 ? bad(pump, "damaged") : good(pump, step % 7, nowMs));
    }
    pending.add(good(pump, 123, nowMs + steps * 100));
    const QVector<Reading> taken = pending.take();
    EXPECT_LE(taken.size(), pending.most());
    EXPECT_EQ(eventsOf(taken),
              QStringList({"30000 high raised", "30000 high cleared", "40000 low raised",
                           "40000 low cleared", "50000 high raised", "50000 high cleared"}));
    ValueBook book(someTags());
    int notGood = 0;
    for (const Reading& reading : taken) {
        book.take(reading);
        notGood += reading.quality != Quality::Good;
    }
    EXPECT_EQ(notGood, 1);
    EXPECT_EQ(book.state(pump).value, 123);
    const History& history = *book.state(oven).history;
    EXPECT_EQ(history.at(nowMs + 50000000).highest, 190);
    EXPECT_EQ(history.at(nowMs + 40000000).lowest, 9);
}

TEST(PendingReadings, KeepEachAlarmWhileTheyAreFew)
{
    PendingReadings pending(someTags());
    const auto isHigh = [](int step) { return step < 4 || (step > 9 && step < 12); };
    for (int step = 0; step <= pending.most(); ++step)
        pending.add(good(oven, isHigh(step) ? 200 : 50, nowMs + step * 1000));
    EXPECT_EQ(eventsOf(pending.take()), QStringList({"0 high raised", "4 high cleared",
                                                     "10 high raised", "12 high cleared"}));
}

TEST(PendingReadings, StayFewWhenAnAlarmComesAndGoesAllTheTime)
{
    PendingReadings pending(someTags());
    for (int step = 0; step < 10 * pending.most(); ++step)
        pending.add(good(oven, step % 2 == 0 ? 200 : 50, nowMs + step * 1000));
    const QVector<Reading> taken = pending.take();
    EXPECT_LE(taken.size(), pending.most());
    EXPECT_EQ(eventsOf(taken.mid(0, 1)), QStringList("0 high raised"));
    EXPECT_TRUE(eventsOf(taken).last().endsWith("cleared"));
}

TEST(PendingReadings, AreMoreForMoreTags)
{
    QVector<fxtools::Tag> tags;
    for (int copy = 0; copy < 1000; ++copy)
        tags += someTags();
    PendingReadings pending(tags);
    EXPECT_EQ(pending.most(), 96000);
    for (int time = 0; time < 100; ++time) {
        for (int tag = 0; tag < tags.size(); ++tag)
            pending.add(good(tag, time, nowMs + time));
    }
    const QVector<Reading> taken = pending.take();
    EXPECT_LE(taken.size(), pending.most());
    EXPECT_EQ(taken.last().tag, tags.size() - 1);
    EXPECT_EQ(taken[0].value, 0);
    EXPECT_EQ(taken.last().value, 99);
}
