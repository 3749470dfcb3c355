// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What came back, judged from the outside: reads and writes, byte by byte.

#include "tools/exchange/reply_verdict.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace fxtools;

namespace {

FRAME_PRO frameOf(const QByteArray& bytes, int replyLength, bool isRead)
{
    FRAME_PRO frame;
    std::copy(bytes.begin(), bytes.end(), frame.frame);
    frame.frameLength = bytes.size();
    frame.replyLength = replyLength;
    frame.isRead = isRead ? 1 : 0;
    return frame;
}

const QByteArray readRequest("\x02"
                             "0100002\x03"
                             "57");
const QByteArray writeRequest("\x02"
                              "11000021234\x03"
                              "22");

struct Reply
{
    QByteArray bytes;
    ReplyVerdict verdict;
};

}  // namespace

TEST(Verdicts, OfAReadNameWhatCame)
{
    const FRAME_PRO read = frameOf(readRequest, 8, true);
    const Reply replies[] = {
        {"\x02"
         "1234\x03"
         "CD",
         ReplyVerdict::Good},
        {"", ReplyVerdict::Silence},
        {"\x15", ReplyVerdict::Refused},
        {"\x15"
         "1234\x03"
         "CD",
         ReplyVerdict::Refused},
        {"\x02"
         "12",
         ReplyVerdict::Incomplete},
        {"\x06", ReplyVerdict::Incomplete},
        {"\x02"
         "1234\x03"
         "C",
         ReplyVerdict::Incomplete},
        {"\x02"
         "1234\x03"
         "CD\x02",
         ReplyVerdict::TooLong},
        {"\x02"
         "1234\x03"
         "CD"
         "\x02"
         "1234\x03"
         "CD",
         ReplyVerdict::TooLong},
        {"\x02"
         "1234\x03"
         "DD",
         ReplyVerdict::WrongSum},
        {"\x02"
         "1234\x03"
         "CE",
         ReplyVerdict::WrongSum},
        {"\x02"
         "1235\x03"
         "CD",
         ReplyVerdict::WrongSum},
        {"\x02"
         "1234\x03"
         "cd",
         ReplyVerdict::WrongSum},
        {"?1234\x03"
         "CD",
         ReplyVerdict::NotAFrame},
        {"\x02"
         "12345CD",
         ReplyVerdict::NotAFrame},
        {"\x82"
         "1234\x03"
         "CD",
         ReplyVerdict::HighBits},
        {"\x02"
         "1234\x03"
         "C\xC4",
         ReplyVerdict::HighBits},
        {readRequest, ReplyVerdict::Echo},
        {readRequest + "\x02"
                       "1234\x03"
                       "CD",
         ReplyVerdict::Echo},
    };
    for (const Reply& reply : replies)
        EXPECT_EQ(judgeReply(read, reply.bytes), reply.verdict) << reply.bytes.toStdString();
}

TEST(Verdicts, OfAWriteNameWhatCame)
{
    const FRAME_PRO write = frameOf(writeRequest, 1, false);
    const Reply replies[] = {
        {"\x06", ReplyVerdict::Good},        {"", ReplyVerdict::Silence},
        {"\x15", ReplyVerdict::Refused},     {"\x02", ReplyVerdict::NotAFrame},
        {"\x06\x06", ReplyVerdict::TooLong}, {"\x86", ReplyVerdict::HighBits},
        {writeRequest, ReplyVerdict::Echo},
    };
    for (const Reply& reply : replies)
        EXPECT_EQ(judgeReply(write, reply.bytes), reply.verdict) << reply.bytes.toStdString();
}

// A reply that is no frame at all must not be looked at behind its end.
TEST(Verdicts, OfAReadTooShortForAFrameIsNone)
{
    EXPECT_EQ(judgeReply(frameOf(readRequest, 1, true), "\x02"), ReplyVerdict::NotAFrame);
    EXPECT_EQ(judgeReply(frameOf(readRequest, 3, true), "\x03"
                                                        "03"),
              ReplyVerdict::NotAFrame);
    EXPECT_EQ(judgeReply(frameOf(readRequest, 4, true), "\x02\x03"
                                                        "03"),
              ReplyVerdict::Good);
}

TEST(Verdicts, EachHaveAWordAndAText)
{
    QStringList rows;
    for (int verdict = 0; verdict < replyVerdicts; ++verdict) {
        const auto one = static_cast<ReplyVerdict>(verdict);
        rows += verdictName(one) + ": " + verdictText(one);
    }
    EXPECT_EQ(rows.join('\n').toStdString(), R"(good: good
silence: no answer
refused: refused by the PLC (NAK)
incomplete: the answer broke off
too-long: more came than was asked for
high-bits: bit 7 is set: data bits or parity differ
echo: the request came back as an echo
not-a-frame: no frame
wrong-sum: damaged: the sum is wrong
late: the answer came too late
link-lost: the link was lost)");
}

TEST(RequestBytes, AreThoseOfTheFrameAndNoMore)
{
    FRAME_PRO frame = frameOf(readRequest, 8, true);
    EXPECT_EQ(requestBytes(frame), readRequest);
    frame.frameLength = -1;
    EXPECT_EQ(requestBytes(frame), "");
    frame.frameLength = 5000;
    EXPECT_EQ(requestBytes(frame).size(), 1024);
}
