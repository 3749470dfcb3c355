// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The framing check of a reply: 0 rejected, 1 data of a read, 2 acknowledgement of a write.

#include "protocol/frame_codec.h"
#include "tests/support/driver_fixture.h"

namespace {
struct Waiting
{
    int replyLength;
    int replyDataChars;
};

constexpr Waiting twoWords = {12, 8};
constexpr Waiting oneByte = {6, 2};
constexpr Waiting aWrite = {1, 0};
constexpr Waiting nothingRead = {4, 0};  // a read of count 0

struct ReplyRow
{
    const char* name;
    Waiting waiting;
    const char* reply;
    int answer;
};

class ReplyCheck : public DriverTest, public ::testing::WithParamInterface<ReplyRow>
{};

// The bytes lie in a block of their own size, so that a memory checker sees a read beside them.
int judge(const Waiting& waiting, const char* reply)
{
    FRAME_PRO frame;
    frame.replyLength = waiting.replyLength;
    frame.replyDataChars = waiting.replyDataChars;
    driver.frames.clear();
    driver.frames << frame;
    const QByteArray bytes = wireBytes(reply);
    std::vector<unsigned char> exact(bytes.begin(), bytes.end());
    return check_rcv_data(exact.data(), static_cast<int>(exact.size()));
}

TEST_P(ReplyCheck, IsJudged)
{
    EXPECT_EQ(GetParam().answer, judge(GetParam().waiting, GetParam().reply));
}

const ReplyRow reads[] = {
    {"GoodData", twoWords, "<STX>12345678<ETX>A7", 1},
    {"GoodDataWithLettersInTheSum", twoWords, "<STX>1234<ETX>CD", 1},
    {"ShorterThanExpectedPasses", twoWords, "<STX>1234<ETX>CD", 1},
    {"LongerThanExpectedPasses", twoWords, "<STX>1234567890<ETX>10", 1},
    {"DataCharactersAreNotLookedAt", oneByte, "<STX>zz<ETX>F7", 1},
    {"LowerCaseDataPasses", twoWords, "<STX>abcd<ETX>8D", 1},
    {"EtxWithinTheDataPasses", oneByte, "<STX>1<ETX>2<ETX>69", 1},
    {"HighBytesAreSummedUnsigned", oneByte, "<STX><FF><FF><ETX>01", 1},
    {"FourBytesWithoutDataPass", twoWords, "<STX><ETX>03", 1},
    {"WrongSum", twoWords, "<STX>12345678<ETX>A8", 0},
    {"WrongHighSumDigit", twoWords, "<STX>12345678<ETX>B7", 0},
    {"SwappedSumDigits", twoWords, "<STX>12345678<ETX>7A", 0},
    {"LowerCaseSum", twoWords, "<STX>1234<ETX>cd", 0},
    {"DamagedData", twoWords, "<STX>12345679<ETX>A7", 0},
    {"WrongStart", twoWords, "<ACK>12345678<ETX>A7", 0},
    {"MissingStart", twoWords, "12345678<ETX>A7", 0},
    {"MissingEtx", twoWords, "<STX>12345678A7", 0},
    {"EtxOnePlaceEarly", twoWords, "<STX>12345678<ETX>A70", 0},
    {"EtxOnePlaceLate", twoWords, "<STX>12345678<ETX>A", 0},
    {"SumWithTheStartCounted", twoWords, "<STX>12345678<ETX>A9", 0},
    {"SumWithoutTheEtx", twoWords, "<STX>12345678<ETX>A4", 0},
    {"AckToARead", twoWords, "<ACK>", 0},
    {"NakToARead", twoWords, "<NAK>", 0},
    {"Nothing", twoWords, "", 0},
    {"StartAlone", twoWords, "<STX>", 0},
    {"TwoBytes", twoWords, "<STX><ETX>", 0},
    {"ThreeBytes", twoWords, "<STX><ETX><ETX>", 0},
    {"ThreeBytesFromEtx", twoWords, "<ETX>03", 0},
    {"ThreeBytesFromStart", twoWords, "<STX>03", 0},
    {"FourBytesWithAWrongSum", twoWords, "<STX><ETX>02", 0},
};

const ReplyRow writes[] = {
    {"Ack", aWrite, "<ACK>", 2},
    {"Nak", aWrite, "<NAK>", 0},
    {"StartByte", aWrite, "<STX>", 0},
    {"ZeroByte", aWrite, "<00>", 0},
    {"HighByte", aWrite, "<FF>", 0},
    {"AckWithTheTopBitSet", aWrite, "<86>", 0},
    {"TwoAcks", aWrite, "<ACK><ACK>", 0},
    {"AckBehindAnother", aWrite, "<NAK><ACK>", 0},
    {"WellFramedData", aWrite, "<STX>1234<ETX>CD", 0},
    {"WellFramedWithoutData", aWrite, "<STX><ETX>03", 0},
    {"Nothing", aWrite, "", 0},
};

// A reply of less than six expected bytes can only be an acknowledgement.
const ReplyRow literalJudgements[] = {
    {"ReadOfCountZeroTakesAnAck", nothingRead, "<ACK>", 2},
    {"ReadOfCountZeroRefusesItsOwnReply", nothingRead, "<STX><ETX>03", 0},
    {"ReadOfCountZeroRefusesNak", nothingRead, "<NAK>", 0},
    {"NegativeCountTakesNoAck", {0, -4}, "<ACK>", 0},
    {"NegativeCountTakesNoData", {0, -4}, "<STX>1234<ETX>CD", 0},
    {"FiveExpectedBytesTakeNoData", {5, 2}, "<STX>1234<ETX>CD", 0},
    {"SixExpectedBytesTakeData", {6, 2}, "<STX>1234<ETX>CD", 1},
    {"FramedReplyWithoutExpectedDataIsAnAcknowledgement", {6, 0}, "<STX>1234<ETX>CD", 2},
    {"LargestExpectationTakesData", {2147483647, 2147483647}, "<STX>1234<ETX>CD", 1},
};

INSTANTIATE_TEST_SUITE_P(Reads, ReplyCheck, ::testing::ValuesIn(reads), nameOf<ReplyRow>);
INSTANTIATE_TEST_SUITE_P(Writes, ReplyCheck, ::testing::ValuesIn(writes), nameOf<ReplyRow>);
INSTANTIATE_TEST_SUITE_P(Literal, ReplyCheck, ::testing::ValuesIn(literalJudgements),
                         nameOf<ReplyRow>);

using ReplyCheckOfBadBuffers = DriverTest;

TEST_F(ReplyCheckOfBadBuffers, NoBytesAreRejected)
{
    driver.frames << FRAME_PRO();
    unsigned char byte = 0x06;
    EXPECT_EQ(0, check_rcv_data(nullptr, 0));
    EXPECT_EQ(0, check_rcv_data(&byte, 0));
    EXPECT_EQ(0, check_rcv_data(&byte, -1));
    EXPECT_EQ(0, check_rcv_data(&byte, -2147483647 - 1));
}

TEST_F(ReplyCheckOfBadBuffers, NoBufferIsRejectedWhateverItsLength)
{
    driver.frames << FRAME_PRO();
    EXPECT_EQ(0, check_rcv_data(nullptr, 1));
    EXPECT_EQ(0, check_rcv_data(nullptr, 12));
}

TEST_F(ReplyCheckOfBadBuffers, WithoutAFrameInFlightEverythingIsRejected)
{
    unsigned char byte = 0x06;
    EXPECT_EQ(0, check_rcv_data(&byte, 1));
}

TEST_F(ReplyCheckOfBadBuffers, FirstFrameOfTheListIsTheOneInFlight)
{
    FRAME_PRO write;
    write.replyLength = 1;
    FRAME_PRO read;
    read.replyLength = 8;
    read.replyDataChars = 4;
    driver.frames << write << read;
    unsigned char byte = 0x06;
    EXPECT_EQ(2, check_rcv_data(&byte, 1));
}
}  // namespace
