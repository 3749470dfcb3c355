// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Raw values and what they mean: every word there and back, rounding, limits.

#include "tests/support/times_shorter.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/tags/tag.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

Tag tagAt(const char* address, double scale = 1, double offset = 0,
          ValueFormat format = ValueFormat::Signed)
{
    Tag tag;
    tag.name = "t";
    tag.asked = askedAddress(takeApart(address), catalogue());
    tag.style = {format};
    tag.scale = scale;
    tag.offset = offset;
    return tag;
}

std::string shown(const Tag& tag, const QVector<quint32>& registers)
{
    return tag.valueOf(tag.rawOf(registers)).toVariant().toString().toStdString();
}

std::string written(const Tag& tag, const char* value)
{
    try {
        QStringList words;
        for (const quint32 word : assignmentOf(tag, value, catalogue()).values)
            words += QString::number(word);
        return words.join(' ').toStdString();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::Usage);
        return failure.what();
    }
}

// How many of all words do not come back from the value that they are shown as.
int wordsLost(const Tag& tag)
{
    int lost = 0;
    for (quint32 word = 0; word <= 0xFFFF; word += timesShorter) {
        const QJsonValue value = tag.valueOf(tag.rawOf({word}));
        lost += written(tag, value.toVariant().toString().toLatin1()) != std::to_string(word);
    }
    return lost;
}

}  // namespace

class AllWords : public testing::TestWithParam<Tag>
{};

TEST_P(AllWords, ComeBackFromTheirScaledValues)
{
    EXPECT_TRUE(GetParam().isExact());
    EXPECT_EQ(wordsLost(GetParam()), 0);
}

INSTANTIATE_TEST_SUITE_P(Tags, AllWords,
                         testing::Values(tagAt("D0"), tagAt("D0", 0.1), tagAt("D0", 0.1, -3276.8),
                                         tagAt("D0", -0.01), tagAt("D0", 1.0 / 3),
                                         tagAt("D0", 100.0 / 4095, -12.5), tagAt("D0", 1000, 7),
                                         tagAt("D0", 1e-9, 1),
                                         tagAt("D0", 0.1, 0, ValueFormat::Unsigned)));

TEST(Tags, TellWhenWordsAreLost)
{
    for (const Tag& tag : {tagAt("D0", 1e-13), tagAt("D0", 1e-9, 1e9)}) {
        EXPECT_FALSE(tag.isExact());
        EXPECT_GT(wordsLost(tag), 0);
    }
    EXPECT_FALSE(tagAt("D0:2", 0.1, 0, ValueFormat::Float).isExact());
    EXPECT_TRUE(tagAt("D0:2", 0.1, 0, ValueFormat::Long).isExact());
}

TEST(Tags, AreShownAsExactlyAsTheirScaleIsWritten)
{
    EXPECT_EQ(shown(tagAt("D0", 0.1), {3}), "0.3");
    EXPECT_EQ(shown(tagAt("D0", 0.1, -3276.8), {0x8000}), "-6553.6");
    EXPECT_EQ(shown(tagAt("D0", 0.125), {1}), "0.125");
    EXPECT_EQ(shown(tagAt("D0", 100.0 / 4095), {4095}), "100");
    EXPECT_EQ(shown(tagAt("D0", 100.0 / 4095), {961}), "23.4676");
    EXPECT_EQ(shown(tagAt("D0:2", 0.1, 0, ValueFormat::Long), {0xFFFF, 0xFFFF}), "-0.1");
    EXPECT_EQ(shown(tagAt("D0", 0.5, 0, ValueFormat::Bcd), {0x123A}), "not BCD: 0x123A");
    EXPECT_EQ(shown(tagAt("K2M0", 10), {1, 0, 1, 0, 0, 0, 0, 0}), "50");
}

TEST(Tags, RoundToTheNearestRawValueHalvesAwayFromZero)
{
    const Tag tag = tagAt("D0", 0.1);
    EXPECT_EQ(written(tag, "71.5"), "715");
    EXPECT_EQ(written(tag, "0.04"), "0");
    EXPECT_EQ(written(tag, "0.15"), "2");
    EXPECT_EQ(written(tag, "0.25"), "3");
    EXPECT_EQ(written(tag, "-0.15"), "65534");
    EXPECT_EQ(written(tagAt("D0", 2.5, 32), "33.25"), "1");
    EXPECT_EQ(written(tagAt("D0:2", 0.1, 0, ValueFormat::Float), "1"), "0 16672");  // 10.0
}

TEST(Tags, RefuseWhatTheirRegistersDoNotHold)
{
    EXPECT_EQ(written(tagAt("D0", 0.1), "3276.7"), "32767");
    EXPECT_EQ(written(tagAt("D0", 0.1), "3276.8"), "'t=3276.8' does not fit: -3276.8 to 3276.7");
    EXPECT_EQ(written(tagAt("D0"), "65535"), "'t=65535' does not fit: -32768 to 32767");
    EXPECT_EQ(written(tagAt("D0"), "0xFFFF"), "65535");
    EXPECT_EQ(written(tagAt("D0", -1), "-32768"), "'t=-32768' does not fit: -32767 to 32768");
    EXPECT_EQ(written(tagAt("D0", 0.1, 0, ValueFormat::Bcd), "1000"),
              "'t=1000' does not fit: 0 to 999.9");
    EXPECT_EQ(written(tagAt("K2M0", 10), "2560"), "'t=2560' does not fit: 0 to 2550");
    EXPECT_EQ(written(tagAt("32CV200", 10), "21474836480"),
              "'t=21474836480' does not fit: -21474836480 to 21474836470");
    EXPECT_EQ(written(tagAt("D0"), "7.5"), "'t=7.5' is not a whole number");
    EXPECT_EQ(written(tagAt("D0", 0.1), "7,5"), "t: '7,5' is not a number; use a decimal point");
    EXPECT_EQ(written(tagAt("D0", 0.1), "nan"), "t: 'nan' is not a number; use for example 71.5");
}

TEST(Tags, KeepTheirLimitsAlsoAfterRounding)
{
    Tag tag = tagAt("D0", 0.1);
    tag.min = -5;
    tag.max = 71.56;
    tag.unit = QStringLiteral("°C");
    EXPECT_EQ(written(tag, "71.54"), "715");
    EXPECT_EQ(written(tag, "71.56"),
              "'t=71.56' becomes 71.6 °C, which is above the maximum of 71.56 °C");
    EXPECT_EQ(written(tag, "72"), "'t=72' is above the maximum of 71.56 °C");
    EXPECT_EQ(written(tag, "-5.01"), "'t=-5.01' is below the minimum of -5 °C");
    EXPECT_EQ(written(tag, "-5"), "65486");
    tag.max = 71.5;
    EXPECT_EQ(written(tag, "71.5"), "715");
    tag.unit.clear();
    tag.min = 11;
    tag.max = 100;
    tag.scale = 7;
    tag.offset = 3;
    EXPECT_EQ(written(tag, "98"), "'t=98' becomes 101, which is above the maximum of 100");
    EXPECT_EQ(written(tag, "11"), "'t=11' becomes 10, which is below the minimum of 11");
    tag.max = 71.56;
    tag.unit = QStringLiteral("°C");
    tag.scale = 1;
    tag.offset = 0;
    EXPECT_EQ(written(tag, "0x100"), "'t=0x100' is above the maximum of 71.56 °C");
    tag.access = TagAccess::ReadOnly;
    EXPECT_EQ(written(tag, "1"), "'t=1' is not written: the tag is read-only");
}

TEST(Tags, HaveAnAlarmBeyondTheirLimits)
{
    Tag tag;
    EXPECT_EQ(tag.alarmOf(-99), "");
    tag.alarmLow = -5;
    tag.alarmHigh = 5;
    EXPECT_EQ(tag.alarmOf(-5.1), "low");
    EXPECT_EQ(tag.alarmOf(-5), "");
    EXPECT_EQ(tag.alarmOf(5), "");
    EXPECT_EQ(tag.alarmOf(5.1), "high");
    EXPECT_EQ(tag.alarmOf("0x1F"), "");
}

TEST(Tags, MayBeTextsAndBits)
{
    EXPECT_EQ(written(tagAt("D0:2", 1, 0, ValueFormat::Text), "a,1"), "11361 49");
    EXPECT_EQ(shown(tagAt("D0:2", 1, 0, ValueFormat::Text), {11361, 49}), "a,1");
    EXPECT_EQ(written(tagAt("D0.5"), "on"), "1");
    EXPECT_EQ(written(tagAt("M0"), "2"), "'t=2' is not a bit; use 0, 1, on or off");
    EXPECT_EQ(written(tagAt("D0", 1, 0, ValueFormat::Hex), "1F"), "31");
    EXPECT_EQ(written(tagAt("X0"), "1"), "'t=1' is not written: X registers are read-only");
}

// Advice such as "use D0:2" would write the neighbour of the tag.
TEST(Tags, SayWhatTheirOwnRegistersHold)
{
    EXPECT_EQ(written(tagAt("D0", 1, 0, ValueFormat::Hex), "70000"),
              "'t=70000' is not a number from 0x0000 to 0xFFFF");
    EXPECT_EQ(written(tagAt("D0", 1, 0, ValueFormat::Hex), "7.5"),
              "'t=7.5' is not a number from 0x0000 to 0xFFFF");
    EXPECT_EQ(written(tagAt("K1M0", 1, 0, ValueFormat::Binary), "10000"),
              "'t=10000' is not a number from 0b0000 to 0b1111");
    EXPECT_EQ(written(tagAt("D0"), "0x1FFFF"), "'t=0x1FFFF' is not a number from -32768 to 32767");
    EXPECT_EQ(written(tagAt("D0", 1, 0, ValueFormat::Bcd), "1,2"),
              "'t=1,2' is not a number from 0 to 9999");
    EXPECT_EQ(written(tagAt("D0:2", 1, 0, ValueFormat::Float), "x"),
              "'t=x' is not a number; use for example 71.5");
    EXPECT_EQ(written(tagAt("D0:2", 1, 0, ValueFormat::Text), "abcde"),
              "'t=abcde' does not fit: up to 4 characters, each of one byte");
    EXPECT_EQ(written(tagAt("D0.5"), "x"), "'t=x' is not a bit; use 0, 1, on or off");
}

TEST(Tags, RememberAValueAsItWasWritten)
{
    EXPECT_EQ(assignmentOf(tagAt("D0", 0.1), " 71.50 ", catalogue()).written, "71.50");
}

TEST(Tag, HasAWritableValueWhereALimitIsOneOrARawValueLiesBetween)
{
    Tag tag = tagAt("D0", 7, 1);  // ... 1, 8, 15 ...
    tag.min = 9;
    tag.max = 14;
    EXPECT_FALSE(tag.hasWritable());
    tag.max = 15;
    EXPECT_TRUE(tag.hasWritable());
    tag.min = 2;
    tag.max = 8;
    EXPECT_TRUE(tag.hasWritable());
    tag.max = 7;
    EXPECT_FALSE(tag.hasWritable());
}

TEST(ShortestDecimal, IsWithinTheTolerance)
{
    EXPECT_EQ(shortestDecimal(100.1 - 100, 1e-13), 0.1);
    EXPECT_EQ(shortestDecimal(100.0 / 4095, 0), 100.0 / 4095);
    EXPECT_EQ(shortestDecimal(-4e-16, 4e-15), 0);
}
