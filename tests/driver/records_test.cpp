// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The five plain records: what a fresh one holds, that a copy is a whole copy, and that the
// fields lie in the order that host and driver agree on.

#include "driver/records.h"
#include "tests/support/record_text.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace {
void fillData(unsigned char* data)
{
    for (int i = 0; i < 1024; ++i)
        data[i] = static_cast<unsigned char>(i % 251);
}

void expectFilled(const unsigned char* data)
{
    for (int i = 0; i < 1024; ++i)
        ASSERT_EQ(i % 251, data[i]) << "data byte " << i;
}

VARIABLE filledRequest()
{
    VARIABLE filled = request("SD", 8001, 2, 9);
    filled.tag = -5;
    fillData(filled.data);
    return filled;
}

void expectFilledRequest(const VARIABLE& copy)
{
    EXPECT_EQ(-5, copy.tag);
    EXPECT_EQ(9, copy.stationNo);
    EXPECT_EQ("SD", plain(copy.registerType));
    EXPECT_EQ(8001, copy.addressIndex);
    EXPECT_EQ(2, copy.count);
    expectFilled(copy.data);
}

TEST(Records, AssignedRequestCarriesAllDataBytesEvenWhenCountIsSmall)
{
    const VARIABLE original = filledRequest();
    VARIABLE copy;
    copy = original;
    expectFilledRequest(copy);
}

TEST(Records, CopiedRequestCarriesAllDataBytesEvenWhenCountIsSmall)
{
    const VARIABLE original = filledRequest();
    const VARIABLE copy(original);
    expectFilledRequest(copy);
}

TEST(Records, ARequestAssignedToItselfStaysWhole)
{
    VARIABLE same = filledRequest();
    const VARIABLE& alias = same;
    same = alias;
    expectFilledRequest(same);
}

TEST(Records, CopiedKeyAddressCarriesEveryField)
{
    KEY_ADDRESS original = watch("CV", 7, 3, 4);
    original.hostText1 = QString::fromLatin1("one");
    original.hostText2 = QString::fromLatin1("two");
    original.hostValue1 = 11;
    original.hostValue2 = 22;
    original.bitIndex = -1;
    fillData(original.data);

    const KEY_ADDRESS copy(original);

    EXPECT_EQ("one", plain(copy.hostText1));
    EXPECT_EQ(11, copy.hostValue1);
    EXPECT_EQ(22, copy.hostValue2);
    EXPECT_EQ(4, copy.stationNo);
    EXPECT_EQ("CV", plain(copy.registerType));
    EXPECT_EQ("two", plain(copy.hostText2));
    EXPECT_EQ(7, copy.startIndex);
    EXPECT_EQ(-1, copy.bitIndex);
    EXPECT_EQ(3, copy.length);
    expectFilled(copy.data);
}

TEST(Records, CopiedFrameCarriesItsRequest)
{
    FRAME_PRO original;
    fillData(original.frame);
    original.frameLength = 11;
    original.replyLength = 8;
    original.isRead = 1;
    original.replyDataChars = 4;
    original.spare = 99;
    original.variable = filledRequest();

    const FRAME_PRO copy(original);

    expectFilled(copy.frame);
    EXPECT_EQ(11, copy.frameLength);
    EXPECT_EQ(8, copy.replyLength);
    EXPECT_EQ(1, copy.isRead);
    EXPECT_EQ(4, copy.replyDataChars);
    EXPECT_EQ(99, copy.spare);
    expectFilledRequest(copy.variable);
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

// Each field lies behind the one before it.
TEST(Records, FieldsKeepTheGivenOrder)
{
    EXPECT_LT(offsetof(VARIABLE, tag), offsetof(VARIABLE, stationNo));
    EXPECT_LT(offsetof(VARIABLE, stationNo), offsetof(VARIABLE, registerType));
    EXPECT_LT(offsetof(VARIABLE, registerType), offsetof(VARIABLE, addressIndex));
    EXPECT_LT(offsetof(VARIABLE, addressIndex), offsetof(VARIABLE, count));
    EXPECT_LT(offsetof(VARIABLE, count), offsetof(VARIABLE, data));

    EXPECT_EQ(1024U, offsetof(FRAME_PRO, frameLength));
    EXPECT_EQ(1028U, offsetof(FRAME_PRO, replyLength));
    EXPECT_EQ(1032U, offsetof(FRAME_PRO, isRead));
    EXPECT_EQ(1036U, offsetof(FRAME_PRO, replyDataChars));
    EXPECT_EQ(1040U, offsetof(FRAME_PRO, spare));
    EXPECT_LT(offsetof(FRAME_PRO, spare), offsetof(FRAME_PRO, variable));

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
