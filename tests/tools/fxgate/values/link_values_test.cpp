// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which values are worth telling, and what the plant then holds.

#include "tests/tools/support/failure_of.h"
#include "tools/fxgate/values/link_values.h"

#include <gtest/gtest.h>

using namespace fxgate;

namespace {

ServedTag tagOf(const char* name, ValueKind kind, double deadband = 0)
{
    ServedTag tag;
    tag.name = name;
    tag.kind = kind;
    tag.deadband = deadband;
    return tag;
}

// "flow=12.5 good", a line each.
std::string shown(const QVector<Change>& changes)
{
    QStringList lines;
    for (const Change& change : changes) {
        const char* const quality[] = {"good", "stale", "bad"};
        lines += QString("%1.%2=%3 %4 %5 at %6")
                     .arg(change.link, change.tag, change.sample.value.toVariant().toString(),
                          quality[static_cast<int>(change.sample.quality)], change.sample.reason)
                     .arg(change.sample.timeMs);
    }
    return lines.join('\n').toStdString();
}

class LinkValuesTest : public testing::Test
{
protected:
    LinkValuesTest()
    {
        values.begin({tagOf("flow", ValueKind::Real, 0.5), tagOf("run", ValueKind::Bit),
                      tagOf("parts", ValueKind::Integer), tagOf("name", ValueKind::Text)});
    }

    std::string take(const QMap<QString, QJsonValue>& good,
                     const QMap<QString, QString>& stale = {},
                     const QMap<QString, QString>& bad = {})
    {
        ValuesLine line;
        line.timeMs = ++timeMs;
        line.good = good;
        line.stale = stale;
        line.bad = bad;
        return shown(values.take(line));
    }

    std::string refusalOf(const char* tag, const QJsonValue& value)
    {
        return tool_tests::failureOf(fxtools::ExitCode::Damaged, [&] { take({{tag, value}}); });
    }

    Plant plant;
    LinkValues values{"press1", plant};
    qint64 timeMs = 0;
};

}  // namespace

TEST_F(LinkValuesTest, TellsEachTagTheFirstTime)
{
    EXPECT_EQ(take({{"flow", 12.5}, {"run", false}, {"parts", 0}, {"name", ""}}),
              "press1.flow=12.5 good  at 1\n"
              "press1.name= good  at 1\n"
              "press1.parts=0 good  at 1\n"
              "press1.run=false good  at 1");
    EXPECT_EQ(take({{"flow", 12.5}, {"run", false}, {"parts", 0}, {"name", ""}}), "");
}

TEST_F(LinkValuesTest, IgnoresChangesUpToTheDeadbandOfWhatWasTold)
{
    take({{"flow", 10}});
    EXPECT_EQ(take({{"flow", 10.4}}), "");
    EXPECT_EQ(take({{"flow", 10.5}}), "");  // not of 10.4: nobody was told that
    EXPECT_EQ(plant["press1"].samples["flow"].value, QJsonValue(10));
    EXPECT_EQ(take({{"flow", 10.6}}), "press1.flow=10.6 good  at 4");
    EXPECT_EQ(take({{"flow", 10.0}}), "press1.flow=10 good  at 5");
    EXPECT_EQ(plant["press1"].samples["flow"].value, QJsonValue(10));
}

TEST_F(LinkValuesTest, TellsEveryChangeWithoutADeadband)
{
    take({{"parts", 10}, {"run", false}, {"name", "a"}});
    EXPECT_EQ(take({{"parts", 11}}), "press1.parts=11 good  at 2");
    EXPECT_EQ(take({{"run", true}}), "press1.run=true good  at 3");
    EXPECT_EQ(take({{"name", "b"}}), "press1.name=b good  at 4");
}

TEST_F(LinkValuesTest, TellsQualityAndReasonWithTheValueThatWas)
{
    take({{"flow", 10}, {"parts", 7}});
    EXPECT_EQ(take({}, {{"flow", "old"}}, {{"parts", "refused"}}),
              "press1.flow=10 stale old at 2\n"
              "press1.parts=7 bad refused at 2");
    EXPECT_EQ(take({}, {{"flow", "old"}}, {{"parts", "damaged"}}),
              "press1.parts=7 bad damaged at 3");
    EXPECT_EQ(take({{"flow", 10.1}}), "press1.flow=10.1 good  at 4");  // within the deadband
}

TEST_F(LinkValuesTest, HaveNoValueBeforeTheFirst)
{
    EXPECT_EQ(take({}, {}, {{"flow", "refused"}}), "press1.flow= bad refused at 1");
    EXPECT_TRUE(plant["press1"].samples["flow"].value.isNull());
}

TEST_F(LinkValuesTest, AreLostTogether)
{
    take({{"flow", 10}, {"run", true}});
    EXPECT_EQ(shown(values.lose(Quality::Stale, "silent", 9)), "press1.flow=10 stale silent at 9\n"
                                                               "press1.run=true stale silent at 9\n"
                                                               "press1.parts= stale silent at 9\n"
                                                               "press1.name= stale silent at 9");
    EXPECT_EQ(shown(values.lose(Quality::Stale, "silent", 10)), "");
}

TEST_F(LinkValuesTest, AreToldAgainOnce)
{
    take({{"flow", 10}, {"parts", 7}});
    values.tellAllAgain();
    EXPECT_EQ(take({{"flow", 10.1}}), "press1.flow=10.1 good  at 2");  // despite the deadband
    EXPECT_EQ(take({{"flow", 10.1}, {"parts", 7}}), "press1.parts=7 good  at 3");
    EXPECT_EQ(take({{"flow", 10.1}, {"parts", 7}}), "");
}

TEST_F(LinkValuesTest, StayWhenAWorkerServesTheSameTagAgain)
{
    take({{"flow", 10}, {"parts", 7}, {"name", "a"}});
    values.begin({tagOf("flow", ValueKind::Real), tagOf("parts", ValueKind::Real)});
    EXPECT_EQ(plant["press1"].samples.keys(), QStringList("flow"));  // parts is of another kind
    EXPECT_EQ(plant["press1"].tags.size(), 2);
}

TEST_F(LinkValuesTest, AreRefusedWhereTheyCannotBeOfTheseTags)
{
    EXPECT_EQ(refusalOf("flaw", 1), "'flaw' is not one of its tags");
    EXPECT_EQ(refusalOf("flow", true), "the value of 'flow' is not of its kind");
    EXPECT_EQ(refusalOf("parts", 1.5), "the value of 'parts' is not of its kind");
    EXPECT_EQ(refusalOf("run", 1), "the value of 'run' is not of its kind");
    EXPECT_EQ(refusalOf("name", 1), "the value of 'name' is not of its kind");
    EXPECT_EQ(tool_tests::failureOf(fxtools::ExitCode::Damaged,
                                    [this] {
                                        take({}, {}, {{"flaw", "refused"}});
                                    }),
              "'flaw' is not one of its tags");
    EXPECT_TRUE(plant["press1"].samples.isEmpty());
}
