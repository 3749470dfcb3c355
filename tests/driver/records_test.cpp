// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The five plain records: what a fresh one holds, that a copy is a whole copy, and where the fields
// lie on which host and driver agree.

#include "driver/records.h"
#include "tests/support/record_text.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace {
TEST(Records, ARequestCarriesAllDataBytesEvenWhenCountIsSmall)
{
    VARIABLE original = request("SD", 8001, 2, 9);
    original.tag = -5;
    for (int i = 0; i < 1024; ++i)
        original.data[i] = static_cast<unsigned char>(i % 251);
    VARIABLE assigned;
    assigned = original;
    for (const VARIABLE& copy : {assigned, VARIABLE(original)}) {
        EXPECT_EQ("9#SD8001/2", textOf(copy));
        EXPECT_EQ(-5, copy.tag);
        EXPECT_EQ(firstBytes(original.data, 1024), firstBytes(copy.data, 1024));
    }
}

using Numbers = std::vector<int>;

Numbers numbersOf(const VARIABLE& request)
{
    return {request.tag, request.stationNo, request.addressIndex, request.count};
}

TEST(Records, FreshRequestIsAllZero)
{
    const VARIABLE fresh;
    EXPECT_EQ(Numbers(4, 0), numbersOf(fresh));
    EXPECT_EQ(Bytes(1024, 0), firstBytes(fresh.data, 1024));
}

TEST(Records, FreshKeyAddressIsAllZero)
{
    const KEY_ADDRESS fresh;
    EXPECT_EQ(Numbers(6, 0), (Numbers{fresh.hostValue1, fresh.hostValue2, fresh.stationNo,
                                      fresh.startIndex, fresh.bitIndex, fresh.length}));
    EXPECT_EQ(Bytes(1024, 0), firstBytes(fresh.data, 1024));
}

TEST(Records, FreshFrameIsAllZero)
{
    const FRAME_PRO fresh;
    EXPECT_EQ(Numbers(5, 0), (Numbers{fresh.frameLength, fresh.replyLength, fresh.isRead,
                                      fresh.replyDataChars, fresh.spare}));
    EXPECT_EQ(Bytes(1024, 0), firstBytes(fresh.frame, 1024));
    EXPECT_EQ(Numbers(4, 0), numbersOf(fresh.variable));
}

TEST(Records, FreshRecipeEntryIsAllZero)
{
    const _RCP_VAR_PRO fresh;
    EXPECT_EQ(Numbers(6, 0), (Numbers{fresh.linkNo, fresh.stationNo, fresh.addressIndex,
                                      fresh.count, fresh.recipeWordOffset, fresh.hostValue}));
}

TEST(Records, FreshDataAreaIsAllZero)
{
    const _DATA_ fresh;
    EXPECT_EQ(Numbers(7, 0),
              (Numbers{fresh.flag0, fresh.bufferSelect, fresh.word1, fresh.monitorFlags,
                       fresh.changeFlags, fresh.stationNo, fresh.startIndex}));
    EXPECT_EQ(Bytes(4, 0), firstBytes(fresh.valueBuffer0, 4));
    EXPECT_EQ(Bytes(4, 0), firstBytes(fresh.valueBuffer1, 4));
}

// Those of the other records are asserted where they are declared.
TEST(Records, FieldsOfADataAreaKeepTheGivenOrder)
{
    EXPECT_EQ(0U, offsetof(_DATA_, flag0));
    EXPECT_EQ(1U, offsetof(_DATA_, bufferSelect));
    EXPECT_EQ(4U, offsetof(_DATA_, word1));
    EXPECT_EQ(8U, offsetof(_DATA_, monitorFlags));
    EXPECT_EQ(12U, offsetof(_DATA_, changeFlags));
    EXPECT_EQ(16U, offsetof(_DATA_, stationNo));
    EXPECT_LT(offsetof(_DATA_, stationNo), offsetof(_DATA_, registerType));
    EXPECT_LT(offsetof(_DATA_, registerType), offsetof(_DATA_, startIndex));
    EXPECT_EQ(offsetof(_DATA_, startIndex) + 4, offsetof(_DATA_, valueBuffer0));
    EXPECT_EQ(offsetof(_DATA_, startIndex) + 8, offsetof(_DATA_, valueBuffer1));
}

TEST(Records, ValueBuffersLieInsideTheRecord)
{
    EXPECT_EQ(1024U, sizeof(VARIABLE::data));
    EXPECT_EQ(1024U, sizeof(KEY_ADDRESS::data));
    EXPECT_EQ(1024U, sizeof(FRAME_PRO::frame));
    EXPECT_EQ(4U, sizeof(_DATA_::valueBuffer0));
    EXPECT_EQ(4U, sizeof(_DATA_::valueBuffer1));
}
}  // namespace
