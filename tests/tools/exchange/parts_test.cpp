// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The small parts of the host that need no link: values, times, verdicts.

#include "tests/tools/support/loaded_driver.h"
#include "tools/exchange/adaptive_timeout.h"
#include "tools/exchange/histogram.h"
#include "tools/library/values.h"

#include "tools/exchange/reply_verdict.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace fxtools;
using namespace tool_tests;

namespace {

// A read of one word: 0 1000 02, answered by eight characters.
FRAME_PRO readOfOneWord()
{
    static const QByteArray bytes("\x02"
                                  "0100002\x03"
                                  "57");
    FRAME_PRO frame;
    std::copy(bytes.begin(), bytes.end(), frame.frame);
    frame.frameLength = bytes.size();
    frame.replyLength = 8;
    frame.isRead = 1;
    return frame;
}

struct Reply
{
    const char* name;
    QByteArray bytes;
    ReplyVerdict verdict;
};

void PrintTo(const Reply& reply, std::ostream* out)
{
    *out << reply.name;
}

}  // namespace

class Verdicts : public testing::TestWithParam<Reply>
{};

TEST_P(Verdicts, NameWhatCame)
{
    EXPECT_EQ(judgeReply(readOfOneWord(), GetParam().bytes), GetParam().verdict);
}

INSTANTIATE_TEST_SUITE_P(Replies, Verdicts,
                         testing::Values(Reply{"Good",
                                               "\x02"
                                               "1234\x03"
                                               "CD",
                                               ReplyVerdict::Good},
                                         Reply{"Nothing", "", ReplyVerdict::Silence},
                                         Reply{"Nak", "\x15", ReplyVerdict::Refused},
                                         Reply{"BrokenOff",
                                               "\x02"
                                               "12",
                                               ReplyVerdict::Incomplete},
                                         Reply{"Twice",
                                               "\x02"
                                               "1234\x03"
                                               "CD"
                                               "\x02"
                                               "1234\x03"
                                               "CD",
                                               ReplyVerdict::TooLong},
                                         Reply{"WrongSum",
                                               "\x02"
                                               "1234\x03"
                                               "CE",
                                               ReplyVerdict::WrongSum},
                                         Reply{"LowerCaseSum",
                                               "\x02"
                                               "1234\x03"
                                               "cd",
                                               ReplyVerdict::WrongSum},
                                         Reply{"NoStx",
                                               "?1234\x03"
                                               "CD",
                                               ReplyVerdict::NotAFrame},
                                         Reply{"NoEtx",
                                               "\x02"
                                               "12345CD",
                                               ReplyVerdict::NotAFrame},
                                         Reply{"HighBits",
                                               "\x82"
                                               "1234\x03"
                                               "CD",
                                               ReplyVerdict::HighBits},
                                         Reply{"Echo",
                                               "\x02"
                                               "0100002\x03"
                                               "57",
                                               ReplyVerdict::Echo}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Values, AreWrittenAsPeopleWriteThem)
{
    const RegisterType word = *catalogue().find("D");
    const RegisterType counter = *catalogue().find("32CV");
    EXPECT_EQ(parseValue("65535", word), QVector<quint32>({65535}));
    EXPECT_EQ(parseValue("-1", word), QVector<quint32>({65535}));
    EXPECT_EQ(parseValue("-32768", word), QVector<quint32>({32768}));
    EXPECT_EQ(parseValue("-32769", word), QVector<quint32>({0x7FFF, 0xFFFF}));
    EXPECT_EQ(parseValue("65536", word), QVector<quint32>({0, 1}));
    EXPECT_EQ(parseValue("0x1e", word), QVector<quint32>({30}));
    EXPECT_EQ(parseValue("0b101", word), QVector<quint32>({5}));
    EXPECT_EQ(parseValue("3.14", word), QVector<quint32>({0xF5C3, 0x4048}));
    EXPECT_EQ(parseValue("-1", counter), QVector<quint32>({0xFFFFFFFF}));
    EXPECT_THROW(parseValue("1.5", counter), Failure);
    EXPECT_THROW(parseValue("", word), Failure);
}

TEST(Timeout, FollowsTheLineBetweenFloorAndCeiling)
{
    AdaptiveTimeout timeout(TimeoutLimits{});
    EXPECT_EQ(timeout.milliseconds(), 1000);  // nothing is known yet
    for (int answer = 0; answer < 100; ++answer)
        timeout.answered(100);
    EXPECT_EQ(timeout.milliseconds(), 50);  // so fast that it is no slow line
    timeout.timedOut();
    EXPECT_EQ(timeout.milliseconds(), 100);
    for (int answer = 0; answer < 100; ++answer)
        timeout.answered(25000);
    EXPECT_EQ(timeout.milliseconds(), 250);  // room for the longest frame at 9600 baud
    for (int answer = 0; answer < 100; ++answer)
        timeout.answered(5000000);
    EXPECT_EQ(timeout.milliseconds(), 1000);
}

TEST(Times, PercentilesAreExactToABucket)
{
    Histogram times;
    EXPECT_EQ(times.percentileUs(50), 0);
    for (int value = 1; value <= 1000; ++value)
        times.add(value);
    EXPECT_EQ(times.total(), 1000);
    EXPECT_EQ(times.largestUs(), 1000);
    EXPECT_NEAR(static_cast<double>(times.percentileUs(50)), 500, 25);
    EXPECT_NEAR(static_cast<double>(times.percentileUs(99)), 990, 45);
    EXPECT_EQ(times.percentileUs(100), 1000);
}
