// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Word write requests byte by byte.

#include "protocol/frame_codec.h"
#include "tests/support/driver_fixture.h"

namespace {
struct Row
{
    const char* name;
    const char* registerType;
    int addressIndex;
    Bytes data;
    const char* frame;
};

class WriteFrame : public DriverTest, public ::testing::WithParamInterface<Row>
{};

TEST_P(WriteFrame, IsBuilt)
{
    const Row& row = GetParam();
    const int byteCount = static_cast<int>(row.data.size());
    VARIABLE var = request(row.registerType, row.addressIndex, byteCount / 2);
    for (int i = 0; i < byteCount; ++i)
        var.data[i] = static_cast<unsigned char>(row.data[static_cast<std::size_t>(i)]);
    var.data[byteCount] = 0x99;  // not sent
    getWriteFrame(var);
    ASSERT_EQ(1, driver.frames.size());
    const FRAME_PRO& built = driver.frames.at(0);
    EXPECT_EQ(11 + 2 * byteCount, built.frameLength);
    EXPECT_EQ(row.frame, wireText(built.frame, built.frameLength));
    EXPECT_EQ(1, built.replyLength);
    EXPECT_EQ(0, built.isRead);
    EXPECT_EQ(0, built.replyDataChars);
    EXPECT_EQ(0, built.spare);
}

const Row rows[] = {
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

INSTANTIATE_TEST_SUITE_P(Requests, WriteFrame, ::testing::ValuesIn(rows), nameOf<Row>);

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
