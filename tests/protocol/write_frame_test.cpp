// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Write requests byte by byte: words, and single bits that are forced on or off, whose address goes
// out low byte first.

#include "protocol/frame_codec.h"
#include "tests/support/driver_fixture.h"

namespace {
struct WriteRow
{
    const char* name;
    const char* registerType;
    int addressIndex;
    Bytes data;
    const char* frame;
};

class WriteFrame : public DriverTest, public ::testing::WithParamInterface<WriteRow>
{};

TEST_P(WriteFrame, IsBuilt)
{
    const WriteRow& row = GetParam();
    const int byteCount = static_cast<int>(row.data.size());
    VARIABLE var = request(row.registerType, row.addressIndex, byteCount / 2);
    for (int i = 0; i < byteCount; ++i)
        var.data[i] = static_cast<unsigned char>(row.data[static_cast<std::size_t>(i)]);
    var.data[byteCount] = 0x99;  // not sent
    getWriteFrame(var);
    ASSERT_EQ(1, driver.frames.size());
    const FRAME_PRO& built = driver.frames.at(0);
    EXPECT_EQ(row.frame, wireText(built.frame, built.frameLength));
    EXPECT_EQ(1, built.replyLength);
    EXPECT_EQ(0, built.isRead);
    EXPECT_EQ(0, built.replyDataChars);
    EXPECT_EQ(0, built.spare);
}

const WriteRow words[] = {
    {"FirstRegister", "D", 0, {0x34, 0x12}, "<STX>11000023412<ETX>21"},
    {"TwoRegisters", "D", 100, {0x01, 0x02, 0x03, 0x04}, "<STX>110C80401020304<ETX>FE"},
    {"LastRegister", "D", 7999, {0xFF, 0xFF}, "<STX>14E7E02FFFF<ETX>A3"},
    {"FirstSpecialRegisterHasAWriteBaseOfItsOwn",
     "SD",
     8000,
     {0xAB, 0xCD},
     "<STX>10F0002ABCD<ETX>76"},
    {"LastSpecialRegister", "SD", 8255, {0xAB, 0xCD}, "<STX>110FE02ABCD<ETX>8C"},
    {"FirstTimerValue", "TV", 0, {0x01, 0x00}, "<STX>10800020100<ETX>1F"},
    {"LastTimerValue", "TV", 255, {0x01, 0x00}, "<STX>109FE020100<ETX>4B"},
    {"FirstCounterValue", "CV", 0, {0x01, 0x00}, "<STX>10A00020100<ETX>28"},
    {"LastCounterValue", "CV", 199, {0x01, 0x00}, "<STX>10B8E020100<ETX>46"},
    {"FirstLongCounter", "32CV", 200, {0x78, 0x56, 0x34, 0x12}, "<STX>10C000478563412<ETX>0F"},
    {"SecondLongCounterCountsWords",
     "32CV",
     201,
     {0x78, 0x56, 0x34, 0x12},
     "<STX>10C040478563412<ETX>13"},
    {"HalfALongCounter", "32CV", 255, {0x01, 0x00}, "<STX>10CDC020100<ETX>51"},
    {"UnknownTypeIsAWordTypeAtZero", "ZZ", 5, {0x01, 0x00}, "<STX>1000A020100<ETX>28"},
    {"LowerCaseTypeIsUnknown", "m", 5, {0x01, 0x00}, "<STX>1000A020100<ETX>28"},
    {"NoWords", "D", 0, {}, "<STX>1100000<ETX>55"},
    {"AddressKeepsItsLowHalf", "D", 32768, {0x01, 0x00}, "<STX>11000020100<ETX>18"},
    {"SmallestSpecialRegister", "SD", -2147483647 - 1, {0x01, 0x00}, "<STX>1D080020100<ETX>33"},
};

const WriteRow bits[] = {
    {"FirstStateOn", "S", 0, {1}, "<STX>70000<ETX>FA"},
    {"FirstStateOff", "S", 0, {0}, "<STX>80000<ETX>FB"},
    {"LastState", "S", 999, {1}, "<STX>7E703<ETX>19"},
    {"FirstOutput", "Y", 0, {1}, "<STX>70005<ETX>FF"},
    {"Output10", "Y", 8, {1}, "<STX>70805<ETX>07"},
    {"LastOutput", "Y", 255, {0}, "<STX>8FF05<ETX>2C"},
    {"FirstTimer", "T", 0, {1}, "<STX>70006<ETX>00"},
    {"LastTimer", "T", 255, {0}, "<STX>8FF06<ETX>2D"},
    {"FirstRelay", "M", 0, {1}, "<STX>70008<ETX>02"},
    {"LastRelay", "M", 3071, {0}, "<STX>8FF13<ETX>2B"},
    {"FirstCounter", "C", 0, {1}, "<STX>7000E<ETX>0F"},
    {"LastCounter", "C", 255, {0}, "<STX>8FF0E<ETX>3C"},
    {"FirstSpecialRelay", "SM", 8000, {1}, "<STX>7000F<ETX>10"},
    {"LastSpecialRelay", "SM", 8255, {0}, "<STX>8FF0F<ETX>3D"},
    {"InputGoesOutAsTheStateOfThatNumber", "X", 0, {1}, "<STX>70000<ETX>FA"},
    {"Input17GoesOutAsTheStateOfThatNumber", "X", 15, {0}, "<STX>80F00<ETX>11"},
    {"DataTwoIsOff", "Y", 8, {2}, "<STX>80805<ETX>08"},
    {"Data255IsOff", "Y", 8, {255}, "<STX>80805<ETX>08"},
    {"NegativeRelay", "M", -1, {1}, "<STX>7FF07<ETX>2D"},
    {"SmallestSpecialRelay", "SM", -2147483647 - 1, {1}, "<STX>7C0EF<ETX>38"},
};

INSTANTIATE_TEST_SUITE_P(Words, WriteFrame, ::testing::ValuesIn(words), nameOf<WriteRow>);
INSTANTIATE_TEST_SUITE_P(Bits, WriteFrame, ::testing::ValuesIn(bits), nameOf<WriteRow>);

using WriteFrameRecord = DriverTest;

TEST_F(WriteFrameRecord, LongestWriteFillsTheFrameButOneByte)
{
    VARIABLE var = request("D", 0, 253);
    for (int i = 0; i < 1024; ++i)
        var.data[i] = 0x5A;
    getWriteFrame(var);
    const FRAME_PRO& built = driver.frames.at(0);
    EXPECT_EQ(1023, built.frameLength);
    // 506 bytes: the byte count keeps its low byte, FA.
    EXPECT_EQ("<STX>11000FA5A", wireText(built.frame, 10));
    EXPECT_EQ("5A5A<ETX>B8", wireText(built.frame + 1016, 7));
    EXPECT_EQ(0, built.frame[1023]);
}

TEST_F(WriteFrameRecord, CountBeyondTheFrameOverrunsNothing)
{
    for (const int count : {254, 255, 512, 513, 65536, 2147483647, -1, -2, -3, -2147483647 - 1}) {
        driver.frames.clear();
        VARIABLE var = request("D", 0, count);
        getWriteFrame(var);
        ASSERT_EQ(1, driver.frames.size()) << count;
        EXPECT_EQ(count < 0 ? 11 : 1023, driver.frames.at(0).frameLength) << count;
        EXPECT_EQ(0, driver.frames.at(0).frame[1023]) << count;
        EXPECT_EQ(count, driver.frames.at(0).variable.count) << count;
    }
}

TEST_F(WriteFrameRecord, CountOfABitMakesNoDifference)
{
    for (const int count : {0, 2, 300, -1, 2147483647}) {
        driver.frames.clear();
        VARIABLE var = request("Y", 8, count);
        var.data[0] = 1;
        getWriteFrame(var);
        const FRAME_PRO& built = driver.frames.at(0);
        EXPECT_EQ("<STX>70805<ETX>07", wireText(built.frame, built.frameLength));
        EXPECT_EQ(count, built.variable.count);
    }
}

TEST_F(WriteFrameRecord, CarriesTheWholeRequest)
{
    VARIABLE var = request("D", 100, 1, 7);
    var.tag = -3;
    var.data[1023] = 0xEE;
    getWriteFrame(var);
    const VARIABLE& carried = driver.frames.at(0).variable;
    EXPECT_EQ("7#D100/1", textOf(carried));
    EXPECT_EQ(-3, carried.tag);
    EXPECT_EQ(0xEE, carried.data[1023]);
}
}  // namespace
