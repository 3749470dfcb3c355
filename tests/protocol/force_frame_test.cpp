// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Requests that force one bit on or off, byte by byte: the address goes out low byte first.

#include "protocol/frame_codec.h"
#include "tests/support/driver_fixture.h"

namespace {
struct Row
{
    const char* name;
    const char* registerType;
    int addressIndex;
    int firstDataByte;
    const char* frame;
};

class ForceFrame : public DriverTest, public ::testing::WithParamInterface<Row>
{};

TEST_P(ForceFrame, IsBuilt)
{
    const Row& row = GetParam();
    VARIABLE var = request(row.registerType, row.addressIndex, 1);
    var.data[0] = static_cast<unsigned char>(row.firstDataByte);
    getWriteFrame(var);
    ASSERT_EQ(1, driver.frames.size());
    const FRAME_PRO& built = driver.frames.at(0);
    EXPECT_EQ(9, built.frameLength);
    EXPECT_EQ(row.frame, wireText(built.frame, 9));
    EXPECT_EQ(1, built.replyLength);
    EXPECT_EQ(0, built.isRead);
    EXPECT_EQ(0, built.replyDataChars);
    EXPECT_EQ(0, built.spare);
}

const Row rows[] = {
    {"FirstStateOn", "S", 0, 1, "<STX>70000<ETX>FA"},
    {"FirstStateOff", "S", 0, 0, "<STX>80000<ETX>FB"},
    {"LastState", "S", 999, 1, "<STX>7E703<ETX>19"},
    {"FirstOutput", "Y", 0, 1, "<STX>70005<ETX>FF"},
    {"Output10", "Y", 8, 1, "<STX>70805<ETX>07"},
    {"LastOutput", "Y", 255, 0, "<STX>8FF05<ETX>2C"},
    {"FirstTimer", "T", 0, 1, "<STX>70006<ETX>00"},
    {"LastTimer", "T", 255, 0, "<STX>8FF06<ETX>2D"},
    {"FirstRelay", "M", 0, 1, "<STX>70008<ETX>02"},
    {"LastRelay", "M", 3071, 0, "<STX>8FF13<ETX>2B"},
    {"FirstCounter", "C", 0, 1, "<STX>7000E<ETX>0F"},
    {"LastCounter", "C", 255, 0, "<STX>8FF0E<ETX>3C"},
    {"FirstSpecialRelay", "SM", 8000, 1, "<STX>7000F<ETX>10"},
    {"LastSpecialRelay", "SM", 8255, 0, "<STX>8FF0F<ETX>3D"},
    {"InputGoesOutAsTheStateOfThatNumber", "X", 0, 1, "<STX>70000<ETX>FA"},
    {"Input17GoesOutAsTheStateOfThatNumber", "X", 15, 0, "<STX>80F00<ETX>11"},
    {"DataTwoIsOff", "Y", 8, 2, "<STX>80805<ETX>08"},
    {"Data255IsOff", "Y", 8, 255, "<STX>80805<ETX>08"},
    {"NegativeRelay", "M", -1, 1, "<STX>7FF07<ETX>2D"},
    {"SmallestSpecialRelay", "SM", -2147483647 - 1, 1, "<STX>7C0EF<ETX>38"},
};

INSTANTIATE_TEST_SUITE_P(Bits, ForceFrame, ::testing::ValuesIn(rows), nameOf<Row>);

using ForceFrameRecord = DriverTest;

TEST_F(ForceFrameRecord, CountMakesNoDifference)
{
    for (const int count : {0, 1, 2, 300, -1, 2147483647}) {
        driver.frames.clear();
        VARIABLE var = request("Y", 8, count);
        var.data[0] = 1;
        getWriteFrame(var);
        EXPECT_EQ("<STX>70805<ETX>07", wireText(driver.frames.at(0).frame, 9));
        EXPECT_EQ(9, driver.frames.at(0).frameLength);
        EXPECT_EQ(count, driver.frames.at(0).variable.count);
    }
}
}  // namespace
