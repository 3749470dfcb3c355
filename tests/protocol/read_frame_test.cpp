// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Read requests byte by byte, and what each says about the reply that it expects.

#include "protocol/frame_codec.h"
#include "tests/support/driver_fixture.h"

namespace {
struct ReadRow
{
    const char* name;
    const char* registerType;
    int addressIndex;
    int count;
    const char* frame;
    int replyLength;
    int replyDataChars;
};

class ReadFrame : public DriverTest, public ::testing::WithParamInterface<ReadRow>
{};

TEST_P(ReadFrame, IsBuilt)
{
    const ReadRow& row = GetParam();
    VARIABLE var = request(row.registerType, row.addressIndex, row.count);
    getReadFrame(var);
    ASSERT_EQ(1, driver.frames.size());
    const FRAME_PRO& built = driver.frames.at(0);
    EXPECT_EQ(11, built.frameLength);
    EXPECT_EQ(row.frame, wireText(built.frame, 11));
    EXPECT_EQ(row.replyLength, built.replyLength);
    EXPECT_EQ(row.replyDataChars, built.replyDataChars);
    EXPECT_EQ(1, built.isRead);
}

constexpr int largest = 2147483647;
constexpr int smallest = -2147483647 - 1;

const ReadRow memoryMap[] = {
    {"FirstState", "S", 0, 1, "<STX>0000001<ETX>54", 6, 2},
    {"LastState", "S", 999, 1, "<STX>0007C01<ETX>6E", 6, 2},
    {"FirstInputs", "X", 0, 3, "<STX>0008003<ETX>5E", 10, 6},
    {"Input17", "X", 15, 1, "<STX>0008101<ETX>5D", 6, 2},
    {"LastInput", "X", 255, 1, "<STX>0009F01<ETX>73", 6, 2},
    {"FirstOutput", "Y", 0, 1, "<STX>000A001<ETX>65", 6, 2},
    {"Output10", "Y", 8, 2, "<STX>000A102<ETX>67", 8, 4},
    {"FirstTimer", "T", 0, 1, "<STX>000C001<ETX>67", 6, 2},
    {"LastTimer", "T", 255, 1, "<STX>000DF01<ETX>7E", 6, 2},
    {"FirstRelay", "M", 0, 1, "<STX>0010001<ETX>55", 6, 2},
    {"RelayOfTheSameByte", "M", 7, 1, "<STX>0010001<ETX>55", 6, 2},
    {"RelayOfTheNextByte", "M", 8, 1, "<STX>0010101<ETX>56", 6, 2},
    {"LastRelay", "M", 3071, 1, "<STX>0027F01<ETX>73", 6, 2},
    {"FirstCounter", "C", 0, 1, "<STX>001C001<ETX>68", 6, 2},
    {"LastCounter", "C", 255, 1, "<STX>001DF01<ETX>7F", 6, 2},
    {"FirstSpecialRelay", "SM", 8000, 1, "<STX>001E001<ETX>6A", 6, 2},
    {"SpecialRelayOfTheSameByte", "SM", 8007, 1, "<STX>001E001<ETX>6A", 6, 2},
    {"SpecialRelayOfTheNextByte", "SM", 8008, 1, "<STX>001E101<ETX>6B", 6, 2},
    {"LastSpecialRelay", "SM", 8255, 1, "<STX>001FF01<ETX>81", 6, 2},
    {"FirstTimerValue", "TV", 0, 1, "<STX>0080002<ETX>5D", 8, 4},
    {"LastTimerValue", "TV", 255, 1, "<STX>009FE02<ETX>89", 8, 4},
    {"FirstCounterValue", "CV", 0, 1, "<STX>00A0002<ETX>66", 8, 4},
    {"LastCounterValue", "CV", 199, 1, "<STX>00B8E02<ETX>84", 8, 4},
    {"TwoLongCounters", "32CV", 200, 2, "<STX>00C0008<ETX>6E", 20, 16},
    {"LastLongCounter", "32CV", 255, 1, "<STX>00CDC04<ETX>91", 12, 8},
    {"FirstSpecialRegister", "SD", 8000, 1, "<STX>00E0002<ETX>6A", 8, 4},
    {"LastSpecialRegister", "SD", 8255, 1, "<STX>00FFE02<ETX>96", 8, 4},
    {"FirstRegister", "D", 0, 1, "<STX>0100002<ETX>56", 8, 4},
    {"TwoRegisters", "D", 100, 2, "<STX>010C804<ETX>73", 12, 8},
    {"LastRegister", "D", 7999, 1, "<STX>04E7E02<ETX>8A", 8, 4},
    {"UnknownTypeIsAWordTypeAtZero", "ZZ", 5, 1, "<STX>0000A02<ETX>66", 8, 4},
    {"LowerCaseTypeIsUnknown", "d", 5, 1, "<STX>0000A02<ETX>66", 8, 4},
    {"EmptyTypeIsUnknown", "", 5, 1, "<STX>0000A02<ETX>66", 8, 4},
};

// Address and byte count keep what fits their digits; the reply is expected in full.
const ReadRow cutFields[] = {
    {"CountOf255Bytes", "M", 0, 255, "<STX>00100FF<ETX>80", 514, 510},
    {"CountOf256BytesKeepsItsLowByte", "M", 0, 256, "<STX>0010000<ETX>54", 516, 512},
    {"WordsOf254Bytes", "D", 0, 127, "<STX>01000FE<ETX>7F", 512, 508},
    {"WordsOf256BytesKeepTheLowByte", "D", 0, 128, "<STX>0100000<ETX>54", 516, 512},
    {"WordsOf258BytesKeepTheLowByte", "D", 0, 129, "<STX>0100002<ETX>56", 520, 516},
    {"CountersOf252Bytes", "32CV", 200, 63, "<STX>00C00FC<ETX>8F", 508, 504},
    {"CountersOf256BytesKeepTheLowByte", "32CV", 200, 64, "<STX>00C0000<ETX>66", 516, 512},
    {"AddressKeepsItsLowHalf", "D", 32768, 1, "<STX>0100002<ETX>56", 8, 4},
    {"CountZero", "D", 0, 0, "<STX>0100000<ETX>54", 4, 0},
    {"BitCountZero", "M", 0, 0, "<STX>0010000<ETX>54", 4, 0},
};

const ReadRow hostile[] = {
    {"OffsetTruncatesTowardZero", "SM", 7999, 1, "<STX>001E001<ETX>6A", 6, 2},
    {"OffsetBelowTheFirst", "SM", 7992, 1, "<STX>001DF01<ETX>7F", 6, 2},
    {"NegativeInput", "X", -5, 1, "<STX>0008001<ETX>5C", 6, 2},
    {"NegativeInputByte", "X", -9, 1, "<STX>0007F01<ETX>71", 6, 2},
    {"SmallestSpecialRelay", "SM", smallest, 1, "<STX>0FDF801<ETX>9C", 6, 2},
    {"LargestSpecialRelay", "SM", largest, 1, "<STX>0FDF701<ETX>9B", 6, 2},
    {"SmallestRelay", "M", smallest, 1, "<STX>0010001<ETX>55", 6, 2},
    {"LargestRelay", "M", largest, 1, "<STX>000FF01<ETX>80", 6, 2},
    {"SmallestRegister", "D", smallest, 1, "<STX>0100002<ETX>56", 8, 4},
    {"LargestRegister", "D", largest, 1, "<STX>00FFE02<ETX>96", 8, 4},
    {"SmallestLongCounter", "32CV", smallest, 1, "<STX>008E004<ETX>74", 12, 8},
    {"SmallestSpecialRegister", "SD", smallest, 1, "<STX>0CF8002<ETX>86", 8, 4},
    {"NegativeCount", "D", 0, -1, "<STX>01000FE<ETX>7F", 0, -4},
    {"LargestCount", "D", 0, largest, "<STX>01000FE<ETX>7F", largest, largest},
    {"SmallestCount", "D", 0, smallest, "<STX>0100000<ETX>54", smallest, smallest},
    {"LargestBitCount", "M", 0, largest, "<STX>00100FF<ETX>80", largest, largest},
    {"LargestCounterCount", "32CV", 200, largest, "<STX>00C00FC<ETX>8F", largest, largest},
};

INSTANTIATE_TEST_SUITE_P(MemoryMap, ReadFrame, ::testing::ValuesIn(memoryMap), nameOf<ReadRow>);
INSTANTIATE_TEST_SUITE_P(CutFields, ReadFrame, ::testing::ValuesIn(cutFields), nameOf<ReadRow>);
INSTANTIATE_TEST_SUITE_P(Hostile, ReadFrame, ::testing::ValuesIn(hostile), nameOf<ReadRow>);

using ReadFrameRecord = DriverTest;

TEST_F(ReadFrameRecord, CarriesTheWholeRequest)
{
    VARIABLE var = request("D", 100, 2, 7);
    var.tag = -3;
    var.data[0] = 1;
    var.data[1023] = 0xEE;
    getReadFrame(var);
    const VARIABLE& carried = driver.frames.at(0).variable;
    EXPECT_EQ("7#D100/2", textOf(carried));
    EXPECT_EQ(-3, carried.tag);
    EXPECT_EQ(1, carried.data[0]);
    EXPECT_EQ(0xEE, carried.data[1023]);
    EXPECT_EQ(0, driver.frames.at(0).spare);
}

TEST_F(ReadFrameRecord, IsAppendedBehindOthers)
{
    VARIABLE first = request("D", 100, 2);
    VARIABLE second = request("M", 0, 1);
    getReadFrame(first);
    getReadFrame(second);
    ASSERT_EQ(2, driver.frames.size());
    EXPECT_EQ("1#D100/2", textOf(driver.frames.at(0).variable));
    EXPECT_EQ("1#M0/1", textOf(driver.frames.at(1).variable));
}
}  // namespace
