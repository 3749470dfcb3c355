// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What came back, judged from the outside: reads and writes, byte by byte.

#include "tests/tools/support/wire.h"
#include "tools/exchange/reply_verdict.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace fxtools;
using namespace tool_tests;

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

const QByteArray readRequest = wire("␂0100002␃57");
const QByteArray writeRequest = wire("␂11000021234␃22");

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
        {wire("␂1234␃CD"), ReplyVerdict::Good},
        {"", ReplyVerdict::Silence},
        {wire("␕"), ReplyVerdict::Refused},
        {wire("␕␂1234␃CD"), ReplyVerdict::Refused},
        {wire("␂12"), ReplyVerdict::Incomplete},
        {wire("␆"), ReplyVerdict::Incomplete},
        {wire("␂1234␃C"), ReplyVerdict::Incomplete},
        {wire("␂1234␃CE␂"), ReplyVerdict::TooLong},
        {wire("␂1234␃CD␂4321␃CD"), ReplyVerdict::TooLong},
        {wire("␂1234␃CD␂1234␃CD"), ReplyVerdict::Surrounded},
        {wire("␂1234␃CD␍␊"), ReplyVerdict::Surrounded},
        {QByteArray(3, 0) + wire("␂1234␃CD"), ReplyVerdict::Surrounded},
        {QByteArray(3, '\xFF') + wire("␂␂1234␃CD"), ReplyVerdict::Surrounded},
        {wire("12␂12"), ReplyVerdict::Incomplete},
        {wire("␂1234␃DD"), ReplyVerdict::WrongSum},
        {wire("␂1234␃CE"), ReplyVerdict::WrongSum},
        {wire("␂1235␃CD"), ReplyVerdict::WrongSum},
        {wire("␂1234␃cd"), ReplyVerdict::WrongSum},
        {wire("?1234␃CD"), ReplyVerdict::NotAFrame},
        {wire("␂12345CD"), ReplyVerdict::NotAFrame},
        {wire("\x82"
              "1234␃CD"),
         ReplyVerdict::HighBits},
        {wire("␂1234␃C\xC4"), ReplyVerdict::HighBits},
        {readRequest, ReplyVerdict::Echo},
        {readRequest + wire("␂1234␃CD"), ReplyVerdict::Echo},
    };
    for (const Reply& reply : replies)
        EXPECT_EQ(judgeReply(read, reply.bytes), reply.verdict) << reply.bytes.toStdString();
}

TEST(Verdicts, OfAWriteNameWhatCame)
{
    const FRAME_PRO write = frameOf(writeRequest, 1, false);
    const Reply replies[] = {
        {wire("␆"), ReplyVerdict::Good},
        {"", ReplyVerdict::Silence},
        {wire("␕"), ReplyVerdict::Refused},
        {wire("␂"), ReplyVerdict::NotAFrame},
        {wire("␆␆"), ReplyVerdict::Surrounded},
        {"\x86", ReplyVerdict::HighBits},
        {QByteArray(2, 0) + wire("␆"), ReplyVerdict::Surrounded},
        {wire("␂␆␕"), ReplyVerdict::TooLong},
        {writeRequest, ReplyVerdict::Echo},
    };
    for (const Reply& reply : replies)
        EXPECT_EQ(judgeReply(write, reply.bytes), reply.verdict) << reply.bytes.toStdString();
}

TEST(RightReply, IsTakenFromBetweenOtherCharacters)
{
    const FRAME_PRO read = frameOf(readRequest, 8, true);
    EXPECT_EQ(rightReplyIn(read, wire("x␂1234␃CD␍")), wire("␂1234␃CD"));
    EXPECT_EQ(rightReplyIn(read, wire("␂1234␃CD␂4321␃CD")), "") << "which of the two?";
    EXPECT_EQ(rightReplyIn(frameOf(writeRequest, 1, false), wire("x␆")), wire("␆"));
}

// A reply that is no frame at all must not be looked at behind its end.
TEST(Verdicts, OfAReadTooShortForAFrameIsNone)
{
    EXPECT_EQ(judgeReply(frameOf(readRequest, 1, true), wire("␂")), ReplyVerdict::NotAFrame);
    EXPECT_EQ(judgeReply(frameOf(readRequest, 3, true), wire("␃03")), ReplyVerdict::NotAFrame);
    EXPECT_EQ(judgeReply(frameOf(readRequest, 4, true), wire("␂␃03")), ReplyVerdict::Good);
}

TEST(Verdicts, EachHaveAWordAndAText)
{
    QStringList rows;
    for (const ReplyVerdict verdict : allVerdicts())
        rows += verdictName(verdict) + ": " + verdictText(verdict);
    EXPECT_EQ(rows.join('\n').toStdString(), R"(good: good
silence: no reply
refused: refused by the PLC (NAK)
incomplete: incomplete reply
too-long: reply too long
high-bits: bit 7 set: check data bits and parity
echo: echo of the request
not-a-frame: not a frame
surrounded: right reply among extra characters
babble: something on this line sends by itself
wrong-sum: damaged: wrong checksum
late: late reply
link-lost: the link was lost
interrupted: interrupted)");
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
