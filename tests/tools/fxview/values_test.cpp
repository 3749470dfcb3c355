// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The values and their table: an old value never looks new, a bad one never looks like a value.

#include "tests/tools/fxview/view_support.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/fxview/models/value_table.h"

#include <QPersistentModelIndex>

#include <gtest/gtest.h>

using namespace fxview;
using namespace view_tests;

namespace {

enum SomeTag
{
    Temp,
    Motor,
    Door,
    RecipeName,
    Pump10,
    Pump2
};

struct Values : testing::Test
{
    ValueBook book{someTags()};
    ValueTable table{book};

    std::string cell(int tag, ValueTable::Column column) const
    {
        return table.index(table.rowOf(tag), column).data().toString().toStdString();
    }

    QString names() const
    {
        QStringList names;
        for (int row = 0; row < table.rowCount(); ++row)
            names += table.index(row, ValueTable::Name).data().toString();
        return names.join(' ');
    }
};

}  // namespace

TEST_F(Values, AreNoneBeforeTheFirstReading)
{
    table.showMoment(nowMs);
    EXPECT_EQ(cell(Temp, ValueTable::Value), "–");
    EXPECT_EQ(cell(Temp, ValueTable::Age), "–");
    EXPECT_EQ(cell(Temp, ValueTable::State), "bad: not read yet");
}

TEST_F(Values, AreShownWithUnitAndAge)
{
    book.take(good(Temp, 71.5));
    book.take(good(Motor, 1));
    book.take(good(RecipeName, "bread"));
    table.showMoment(nowMs + 1200);
    EXPECT_EQ(cell(Temp, ValueTable::Value), "71.5 °C");
    EXPECT_EQ(cell(Temp, ValueTable::Age), "1.2 s");
    EXPECT_EQ(cell(Temp, ValueTable::State), "good");
    EXPECT_EQ(cell(Temp, ValueTable::Address), "D100");
    EXPECT_EQ(cell(Motor, ValueTable::Value), "on");
    EXPECT_EQ(cell(RecipeName, ValueTable::Value), "bread");
    EXPECT_EQ(table.index(Motor, 0).data(ValueTable::LampRole), true);
    EXPECT_FALSE(table.index(Temp, 0).data(ValueTable::LampRole).isValid());
}

TEST_F(Values, KeepTheirDecimals)
{
    const QVector<fxtools::Tag> tags = tagsOf("level,D1,signed,0.25,,l,,,,,,,,,\n"
                                              "count,D2,signed,,,,,,,,,,,,\n"
                                              "speed,D4,float,,,,,,,,,,,,\n");
    EXPECT_EQ(valueWithUnit(tags[0], 7), "7.00 l");
    EXPECT_EQ(valueWithUnit(tags[0], -0.5), "-0.50 l");
    EXPECT_EQ(valueWithUnit(tags[0], 6.75), "6.75 l");
    EXPECT_EQ(valueText(tags[0], 0.125), "0.125") << "no digit is lost";
    EXPECT_EQ(valueText(tags[0], "7"), "7") << "a text stays as it is";
    EXPECT_EQ(valueText(tags[1], 7), "7");
    EXPECT_EQ(valueText(tags[2], 7.5), "7.5") << "a float has no number of its own";
    EXPECT_EQ(valueText(tags[2], 1e30), "1e+30");
}

TEST_F(Values, AgeByThemselvesAndBecomeStale)
{
    book.take(good(Temp, 71.5));
    book.take(good(Pump10, 3));
    table.showMoment(nowMs + 4000);
    EXPECT_EQ(cell(Temp, ValueTable::State), "good");
    EXPECT_EQ(cell(Pump10, ValueTable::State), "stale: no newer reading");
    table.showMoment(nowMs + 11000);
    EXPECT_EQ(cell(Temp, ValueTable::State), "stale: no newer reading");
    EXPECT_EQ(cell(Temp, ValueTable::Age), "11 s");
    EXPECT_EQ(cell(Temp, ValueTable::Value), "71.5 °C");
}

TEST_F(Values, KeepTheirAgeWhenTheyGoStaleOrBad)
{
    book.take(good(Temp, 71.5));
    book.take(stale(Temp, "no answer", nowMs + 5000));
    table.showMoment(nowMs + 6000);
    EXPECT_EQ(cell(Temp, ValueTable::Age), "6.0 s");
    EXPECT_EQ(cell(Temp, ValueTable::State), "stale: no answer");
    book.take(bad(Temp, "refused by the PLC", nowMs + 6000));
    table.showMoment(nowMs + 7000);
    EXPECT_EQ(cell(Temp, ValueTable::Value), "–");
    EXPECT_EQ(cell(Temp, ValueTable::State), "bad: refused by the PLC");
    EXPECT_EQ(cell(Temp, ValueTable::Age), "7.0 s");
    book.take(good(Temp, 72, nowMs + 8000));
    table.showMoment(nowMs + 8000);
    EXPECT_EQ(cell(Temp, ValueTable::State), "good");
}

TEST_F(Values, ShowAlarmsInWords)
{
    book.take(good(Temp, 181));
    table.showMoment(nowMs);
    EXPECT_EQ(cell(Temp, ValueTable::State), "ALARM high");
    table.showMoment(nowMs + 20000);
    EXPECT_EQ(cell(Temp, ValueTable::State), "ALARM high, stale: no newer reading");
    book.take(bad(Temp, "refused"));
    EXPECT_EQ(cell(Temp, ValueTable::State), "bad: refused");
}

TEST_F(Values, AreNotFreshBecauseTheClockWasSetBack)
{
    book.take(good(Temp, 100));
    table.showMoment(nowMs - 3600000);
    EXPECT_EQ(cell(Temp, ValueTable::State), "stale: no newer reading");
    book.take(good(Temp, 101, nowMs - 3600000));
    table.showMoment(nowMs - 3600000);
    EXPECT_EQ(cell(Temp, ValueTable::State), "good");
}

TEST_F(Values, AreSortedAsPeopleCount)
{
    table.sort(ValueTable::Name, Qt::AscendingOrder);
    EXPECT_EQ(names(), "door motor.run oven.temp pump2 pump10 recipe.name");
    table.sort(ValueTable::Name, Qt::DescendingOrder);
    EXPECT_EQ(names(), "recipe.name pump10 pump2 oven.temp motor.run door");
    book.take(good(Pump2, 3));
    book.take(good(Pump10, 20));
    book.take(good(Temp, 100));
    table.showMoment(nowMs);
    table.sort(ValueTable::Value, Qt::DescendingOrder);
    EXPECT_TRUE(names().startsWith("oven.temp pump10 pump2 ")) << names().toStdString();
}

TEST_F(Values, MoveTheirRowsNowAndThenAndSelectionsWithThem)
{
    for (int tag = 0; tag < book.size(); ++tag)
        book.take(good(tag, tag));
    table.showMoment(nowMs);
    table.sort(ValueTable::Value, Qt::AscendingOrder);
    const QPersistentModelIndex selected = table.index(table.rowOf(Temp), 0);
    book.take(good(Temp, 99));
    table.showMoment(nowMs + 500);
    EXPECT_EQ(selected.row(), 0);
    table.showMoment(nowMs + 2500);
    EXPECT_EQ(selected.row(), 5);
    EXPECT_EQ(table.tagAt(5), Temp);
}

TEST_F(Values, AreFoundByPartsOfWhatIsKnownOfThem)
{
    table.setFilter("TEMP");
    EXPECT_EQ(names(), "oven.temp");
    table.setFilter("d1 oven");
    EXPECT_EQ(names(), "oven.temp");
    EXPECT_EQ(table.rowOf(Pump2), -1);
    table.setFilter("d1");
    EXPECT_EQ(names(), "oven.temp pump10");
    table.setFilter("closed");
    EXPECT_EQ(names(), "door");
    table.setFilter("nothing");
    table.showMoment(nowMs);
    EXPECT_EQ(table.rowCount(), 0);
}

TEST_F(Values, AreCopiedAsCsv)
{
    book.take(good(Temp, 71.5));
    book.take(bad(Motor, "refused, as it says"));
    table.showMoment(nowMs);
    EXPECT_EQ(table.csv({Temp, Motor}).toStdString(),
              "name,address,value,unit,state,read (UTC),description\n"
              "oven.temp,D100,71.5,°C,good,2023-11-14T22:13:20.000Z,Temperature of the oven\n"
              "motor.run,M0,,,\"bad: refused, as it says\",,\n");
}

TEST_F(Values, HaveAHistoryOfNumbersOnly)
{
    book.take(good(Temp, 71.5));
    book.take(good(RecipeName, "bread"));
    EXPECT_FALSE(book.state(RecipeName).history);
    ASSERT_TRUE(book.state(Temp).history);
    book.take(bad(Temp, "refused", nowMs + 100));
    book.take(good(Temp, 80, nowMs + 300));
    const auto columns = book.state(Temp).history->columns(nowMs, nowMs + 400, 4);
    EXPECT_EQ(columns[0].highest, 71.5);
    EXPECT_TRUE(columns[2].isEmpty());
    EXPECT_EQ(columns[3].lowest, 80);
    EXPECT_GT(book.historyBytes(), 0);
}

TEST(Ages, AreTexts)
{
    EXPECT_EQ(ageText(0), "0.0 s");
    EXPECT_EQ(ageText(9999), "10.0 s");
    EXPECT_EQ(ageText(119999), "119 s");
    EXPECT_EQ(ageText(120000), "2 min");
    EXPECT_EQ(ageText(7200000), "2 h");
    EXPECT_EQ(ageText(172800000), "2 d");
}

// A hundred thousand rows are a hundred thousand numbers; texts are made of what is looked at.
TEST(ManyValues, AreSortedAndFilteredLikeFew)
{
    fxtools::Tag tag = someTags()[Pump2];
    QVector<fxtools::Tag> tags;
    for (int number = 0; number < 100000; ++number) {
        tag.name = "tag" + QString::number(number);
        tags += tag;
    }
    ValueBook book(tags);
    ValueTable table(book);
    for (int each = 0; each < tags.size(); ++each)
        book.take(good(each, -each));
    EXPECT_EQ(book.historyBytes(), 0);
    table.showMoment(nowMs);
    table.sort(ValueTable::Value, Qt::AscendingOrder);
    EXPECT_EQ(table.tagAt(0), 99999);
    table.setFilter("tag99");
    EXPECT_EQ(table.rowCount(), 1111);
}
