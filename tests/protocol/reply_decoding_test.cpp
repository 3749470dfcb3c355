// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How the data characters of a good reply become cached values, and whom that tells.

#include "protocol/reply_decoding.h"
#include "tests/support/driver_fixture.h"

#include <limits>

namespace {
class ReplyDecoding : public DriverTest
{
protected:
    ReplyDecoding() { setUpDriver(); }
};

TEST_F(ReplyDecoding, WordsComeLowByteFirst)
{
    poll("D", 100, 2, "<STX>12345678<ETX>A7");
    EXPECT_EQ((Bytes{0x12, 0x34, 0, 0}), confirmed("D", 100));
    EXPECT_EQ((Bytes{0x56, 0x78, 0, 0}), confirmed("D", 101));
    EXPECT_EQ("1#D100 1#D101", textOf(driver.dataAreas));
    EXPECT_EQ((Bytes{0x12, 0x34, 0x56, 0x78}), values("D", 100, 2, 4));
}

TEST_F(ReplyDecoding, CountersComeInFourBytes)
{
    poll("32CV", 200, 2, "<STX>7856341201020304<ETX>31");
    EXPECT_EQ((Bytes{0x78, 0x56, 0x34, 0x12}), confirmed("32CV", 200));
    EXPECT_EQ((Bytes{1, 2, 3, 4}), confirmed("32CV", 201));
    EXPECT_EQ("1#32CV200 1#32CV201", textOf(driver.dataAreas));
}

// A changed byte is looked up for its report by the start of the area, which creates that too.
TEST_F(ReplyDecoding, UnalignedBitReadFillsUnalignedAreas)
{
    poll("M", 13, 2, "<STX>3041<ETX>CB");
    EXPECT_EQ("1#M13 1#M8 1#M21 1#M16", textOf(driver.dataAreas));
    EXPECT_EQ((Bytes{0, 0, 0, 0}), confirmed("M", 8));
    EXPECT_EQ((Bytes{0x41, 0, 0, 0}), confirmed("M", 21));
    EXPECT_EQ((Bytes{0x30, 0, 0, 0}), confirmed("M", 13));
}

// Rows of sixteen codes from 00 to FF, one hexadecimal digit each.
constexpr char nibbleOfCode[] = "0000000000000000"
                                "0000000000000000"
                                "0000000000000000"
                                "0123456789ABCDEF"
                                "0ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678"
                                "9ABCDEF012345678";

int wantedNibble(int code)
{
    const char digit = nibbleOfCode[code];
    return digit <= '9' ? digit - '0' : digit - 'A' + 10;
}

TEST_F(ReplyDecoding, EveryCharacterCodeDecodesInEitherPlace)
{
    for (int code = 0; code < 256; ++code) {
        const char hex[] = {"0123456789ABCDEF"[code / 16], "0123456789ABCDEF"[code % 16], '\0'};
        const std::string character = std::string("<") + hex + '>';
        const QByteArray high = framedReply(character + '0');
        const QByteArray low = framedReply('0' + character);
        for (const QByteArray& good : {high, low}) {
            driver.readList.clear();
            driver.readList << request("M", 0, 1);
            nextFrame();
            QByteArray copy = good;
            QString error;
            ASSERT_EQ(1, intf_dealRcvFrame(copy, error)) << "code " << code;
            ASSERT_EQ(wantedNibble(code) * (good == high ? 16 : 1), area("M", 0).valueBuffer0[0])
                << "code " << code;
        }
    }
}

TEST_F(ReplyDecoding, ReplyWithoutDataDecodesItsOwnFrameCharacters)
{
    poll("D", 100, 2, "<STX><ETX>03");
    // ETX and "0" give 00, "3" and nothing give 30.
    EXPECT_EQ((Bytes{0x00, 0x30, 0, 0}), confirmed("D", 100));
    EXPECT_EQ((Bytes{0, 0, 0, 0}), confirmed("D", 101));
}

TEST_F(ReplyDecoding, ShortReplyDecodesEtxAndSumThenZeros)
{
    poll("D", 100, 3, "<STX>1234<ETX>CD");
    EXPECT_EQ((Bytes{0x12, 0x34, 0, 0}), confirmed("D", 100));
    // ETX and "C" give 0C, "D" and nothing give D0.
    EXPECT_EQ((Bytes{0x0C, 0xD0, 0, 0}), confirmed("D", 101));
    EXPECT_EQ((Bytes{0, 0, 0, 0}), confirmed("D", 102));
}

// A host's own buffer goes on behind the reply, where Qt's ends with a zero.
TEST_F(ReplyDecoding, NothingBehindAShortReplyIsDecoded)
{
    driver.readList << request("D", 100, 2);
    ASSERT_EQ("1#D100/2", nextRequest());
    const QByteArray buffer = wireBytes("<STX>1234<ETX>CD5678");
    QByteArray reply = QByteArray::fromRawData(buffer.constData(), 8);
    QString error;
    EXPECT_EQ(1, intf_dealRcvFrame(reply, error));
    EXPECT_EQ((Bytes{0x12, 0x34, 0x0C, 0xD0}), values("D", 100, 2, 4));
}

TEST_F(ReplyDecoding, LongReplyUpdatesNoMoreThanWasAskedFor)
{
    poll("D", 100, 1, "<STX>12345678<ETX>A7");
    EXPECT_EQ("1#D100", textOf(driver.dataAreas));
}

TEST_F(ReplyDecoding, MonitoredWordIsReportedWhenItChanges)
{
    mark("D", 100, 2);
    poll("D", 100, 2, "<STX>12345678<ETX>A7");
    EXPECT_EQ((Texts{"1,1,D,100", "1,1,D,101"}), calls);
    calls.clear();
    poll("D", 100, 2, "<STX>12345678<ETX>A7");
    EXPECT_EQ(Texts(), calls);
    poll("D", 100, 2, "<STX>12340000<ETX>8D");
    EXPECT_EQ((Texts{"1,1,D,101"}), calls);
}

TEST_F(ReplyDecoding, ChangeOfEitherByteOfAWordIsReported)
{
    mark("D", 0, 1);
    poll("D", 0, 1, "<STX>0100<ETX>C4");
    poll("D", 0, 1, "<STX>0300<ETX>C6");
    poll("D", 0, 1, "<STX>0000<ETX>C3");
    EXPECT_EQ((Texts{"1,1,D,0", "1,1,D,0", "1,1,D,0"}), calls);
}

TEST_F(ReplyDecoding, MonitoredCounterIsReportedWhenAnyByteChanges)
{
    mark("32CV", 200, 2);
    for (const char* changed : {"<STX>01000000<ETX>84", "<STX>01010000<ETX>85",
                                "<STX>01010100<ETX>86", "<STX>01010101<ETX>87"}) {
        calls.clear();
        poll("32CV", 200, 1, changed);
        EXPECT_EQ((Texts{"1,1,32CV,200"}), calls) << changed;
        poll("32CV", 200, 1, changed);
        EXPECT_EQ((Texts{"1,1,32CV,200"}), calls) << changed << " again";
    }
}

TEST_F(ReplyDecoding, UnmonitoredWordIsNotReported)
{
    mark("D", 101, 1);
    poll("D", 100, 2, "<STX>12345678<ETX>A7");
    EXPECT_EQ((Texts{"1,1,D,101"}), calls);
}

TEST_F(ReplyDecoding, BitsThatChangeInThePlcAreNeverReported)
{
    mark("M", 0, 8);
    poll("M", 0, 1, "<STX>FF<ETX>8F");
    poll("M", 0, 1, "<STX>00<ETX>63");
    EXPECT_EQ(Texts(), calls);
}

TEST_F(ReplyDecoding, PolledBitsReplaceAPendingWriteOfTheirByte)
{
    write("M", 3, {1}, 1);
    driver.writeList.clear();
    poll("M", 0, 1, "<STX>FF<ETX>8F");
    EXPECT_EQ(0, area("M", 0).bufferSelect);
    EXPECT_EQ((Bytes{1, 1, 1, 1, 1, 1, 1, 1}), values("M", 0, 8, 8));
}

TEST_F(ReplyDecoding, PolledCounterReplacesAPendingWrite)
{
    write("32CV", 200, {9, 9, 9, 9}, 2);
    driver.writeList.clear();
    poll("32CV", 200, 1, "<STX>12345678<ETX>A7");
    EXPECT_EQ(0, area("32CV", 200).bufferSelect);
    EXPECT_EQ((Bytes{0x12, 0x34, 0x56, 0x78}), values("32CV", 200, 2, 4));
}

TEST_F(ReplyDecoding, StationsAreStoredApart)
{
    driver.readList << request("D", 0, 1, 1) << request("D", 0, 1, 2);
    nextFrame();
    reply("<STX>1234<ETX>CD");
    nextFrame();
    reply("<STX>ABCD<ETX>0D");
    EXPECT_EQ("1#D0 2#D0", textOf(driver.dataAreas));
    EXPECT_EQ(0xAB, area("D", 0, 2).valueBuffer0[0]);
}

TEST_F(ReplyDecoding, TakesNoMoreThanAllCountersThatAPlcCanHave)
{
    FRAME_PRO frame;
    frame.replyDataChars = std::numeric_limits<int>::max();
    EXPECT_EQ(2 * 4 * 65536, dataChars(frame));
    frame.replyDataChars = -1;
    EXPECT_EQ(0, dataChars(frame));
}
}  // namespace
