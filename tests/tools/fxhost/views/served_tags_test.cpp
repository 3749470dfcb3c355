// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is told of tags, at times that are given.

#include "tests/tools/support/loaded_driver.h"
#include "tools/fxhost/serving/serve_protocol.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

Tag tagAt(const char* name, const char* address, ValueFormat format = ValueFormat::Signed)
{
    Tag tag;
    tag.name = QString::fromLatin1(name);
    tag.asked = askedAddress(takeApart(QString::fromLatin1(address)), catalogue());
    tag.asked.range.together = tag.asked.range.count;
    tag.style.format = format;
    return tag;
}

Moment momentOf(qint64 ms)
{
    return {1000 * ms, 5000000 + ms};
}

class TagsServed : public testing::Test
{
protected:
    TagsServed()
    {
        Tag slow = tagAt("slow", "D9");
        slow.periodMs = 2000;
        served.emplace(QVector<Tag>{tagAt("word", "D0"), tagAt("wide", "D0:2", ValueFormat::Long),
                                    tagAt("text", "D100:40", ValueFormat::Text), slow},
                       momentOf(0));
    }

    // Registers hold their own numbers, plus what was added.
    void read(const char* block, qint64 ms, quint32 added = 0)
    {
        served->noteRead(
            range(block),
            [added](const RegisterRange& range) {
                QVector<quint32> values;
                for (int index = 0; index < range.count; ++index)
                    values.append(static_cast<quint32>(range.first + index) + added);
                return values;
            },
            momentOf(ms));
    }

    std::string told(qint64 ms) { return nextValuesEvent(*served, momentOf(ms)).toStdString(); }

    std::optional<ServedTags> served;
};

}  // namespace

TEST_F(TagsServed, AreNotGoodBeforeTheyAreRead)
{
    EXPECT_EQ(told(1000), "");
    EXPECT_EQ(told(1001), R"({"event":"values","time":5001001,"stale":{"word":"not read yet",)"
                          R"("wide":"not read yet","text":"not read yet","slow":"not read yet"}})");
    EXPECT_EQ(told(1002), "");
}

// The second half of what is wide was not in this reply.
TEST_F(TagsServed, AreTakenFromOneReply)
{
    read("D0", 1, 5);
    EXPECT_EQ(told(1), R"({"event":"values","time":5000001,"good":{"word":5}})");
    read("D0:4", 2, 6);
    EXPECT_EQ(told(2), R"({"event":"values","time":5000002,"good":{"word":6,"wide":458758}})");
    read("D0", 3, 7);
    EXPECT_EQ(told(3), R"({"event":"values","time":5000003,"good":{"word":7}})");
}

TEST_F(TagsServed, AreToldWithTheTimeOfTheirOwnReply)
{
    read("D0:2", 1);
    read("D9", 2);
    EXPECT_EQ(told(3), R"({"event":"values","time":5000001,"good":{"word":0,"wide":65536}})");
    EXPECT_EQ(told(3), R"({"event":"values","time":5000002,"good":{"slow":9}})");
    EXPECT_EQ(told(3), "");
    read("D9", 4);
    EXPECT_EQ(told(4), "") << "the same value";
    served->tellAgain();
    EXPECT_NE(told(5), "");
}

TEST_F(TagsServed, AreStaleAfterThreePeriodsAndASecond)
{
    read("D0:10", 100);
    told(100);
    EXPECT_EQ(told(1100).find("word"), std::string::npos);
    EXPECT_NE(told(1101).find(R"("word":"not read for 3 periods")"), std::string::npos);
    EXPECT_EQ(told(6100).find("slow"), std::string::npos);
    EXPECT_NE(told(6101).find(R"("slow":"not read for 3 periods")"), std::string::npos);
    read("D9", 7000);
    served->setPeriods({2, {{2000000, 1.0, {}, 5000000}}});
    told(7000);
    EXPECT_EQ(told(22000), "") << "the line cannot keep 2 s";
    EXPECT_NE(told(22001), "");
}

TEST_F(TagsServed, AreBadFromAFailureUntilTheNextReply)
{
    read("D0:10", 1);
    told(1);
    served->noteFailure(range("D9"));
    read("D0:2", 2);
    served->noteProblems([](const RegisterRange&, int) { return ReplyVerdict::Refused; },
                         momentOf(3));
    EXPECT_EQ(told(3),
              R"~({"event":"values","time":5000003,"bad":{"slow":"refused by the PLC (NAK)"}})~");
    read("D9", 4);
    EXPECT_EQ(told(4), R"({"event":"values","time":5000004,"good":{"slow":9}})");
    // Cut out of its block and read alone before anybody asked.
    served->noteFailure(range("D0:10"));
    read("D9", 5);
    served->noteProblems(
        [](const RegisterRange& range, int) {
            return range.first == 9 ? std::optional(ReplyVerdict::Silence) : std::nullopt;
        },
        momentOf(6));
    EXPECT_EQ(told(6), "");
}

TEST_F(TagsServed, AreAllBadWhileTheLinkIsDownAndUntilTheyAreReadAgain)
{
    read("D0:10", 1);
    told(1);
    served->noteDown(QStringLiteral("the link was lost"), momentOf(2));
    EXPECT_EQ(told(2), R"({"event":"values","time":5000002,"bad":{"word":"the link was lost",)"
                       R"("wide":"the link was lost","text":"the link was lost",)"
                       R"("slow":"the link was lost"}})");
    read("D0:2", 3);
    EXPECT_EQ(told(3), R"({"event":"values","time":5000003,"good":{"word":0,"wide":65536}})");
    EXPECT_EQ(told(900), "");
}

TEST(ManyTags, AreToldInLinesOfBoundedLength)
{
    QVector<Tag> tags;
    for (int number = 0; number < 2000; ++number) {
        tags.append(tagAt("x", "D0"));
        tags.last().name = QString("a").repeated(50) + QString::number(number);
    }
    ServedTags served(tags, momentOf(0));
    int lines = 0;
    int told = 0;
    for (QByteArray line = nextValuesEvent(served, momentOf(2000)); !line.isEmpty();
         line = nextValuesEvent(served, momentOf(2000))) {
        ++lines;
        told += line.count("not read yet");
        EXPECT_LT(line.size(), 65536);
    }
    EXPECT_EQ(told, 2000);
    EXPECT_GT(lines, 1);
}
