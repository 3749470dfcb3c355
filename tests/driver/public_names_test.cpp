// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The named facts of the public header, each restated as the number or text that hosts built with
// an earlier header have compiled in.

#include "driver/intf.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(PublicNames, HostMemory)
{
    EXPECT_EQ(60117, fxHostMemoryBytes);
    EXPECT_EQ(60115, fxDownloadRequestByte);
    EXPECT_EQ(60116, fxUploadRequestByte);
    EXPECT_EQ(1, fxRecipeRequested);
}

TEST(PublicNames, Callback)
{
    EXPECT_STREQ("-1", fxReadEndText);
    EXPECT_STREQ("RWI", fxRecipeWordText);
    EXPECT_EQ(0, fxReadSucceeded);
    EXPECT_EQ(-1, fxReadFailed);
}

TEST(PublicNames, Limits)
{
    EXPECT_EQ(1024, fxRecordBytes);
    EXPECT_EQ(513, fxMaxQueuedRequests);
    EXPECT_EQ(3, fxMaxBurst);
    EXPECT_EQ(65536, fxMaxElements);
    EXPECT_EQ(253, fxMaxWriteWords);
    EXPECT_EQ(512, fxMaxUploadWords);
    EXPECT_EQ(1000000, fxMaxCopies);
}

TEST(PublicNames, Planning)
{
    EXPECT_EQ(4, fxPlanTag);
    EXPECT_EQ(0, fxUnpolledStation);
    EXPECT_EQ(-1, fxSplitByBits);
    EXPECT_EQ(0, fxSplitByWords);
}

TEST(PublicNames, ResultsOfTheExchange)
{
    EXPECT_EQ(1, fxDone);
    EXPECT_EQ(0, fxNothingToSend);
    EXPECT_EQ(1, fxFrameToSend);
    EXPECT_EQ(0, fxNoFrameInFlight);
    EXPECT_EQ(1, fxReplyAccepted);
    EXPECT_EQ(2, fxExchangeFailed);
    EXPECT_EQ(8, fxSendAgain);
}

TEST(PublicNames, ArgumentsOfTheAddressServices)
{
    EXPECT_EQ(-1, fxBitDataType);
    EXPECT_EQ((std::vector<int>{1, 3, 5, 6, 9}),
              std::vector<int>(std::begin(fxCounterDataTypes), std::end(fxCounterDataTypes)));
    EXPECT_EQ(0, fxReadAccess);
    EXPECT_EQ(1, fxWriteAccess);
    EXPECT_EQ(2, fxReadWriteAccess);
    EXPECT_EQ(0, fxBitAccess);
    EXPECT_EQ(1, fxWordAccess);
    EXPECT_EQ(0, fxBitTypes);
    EXPECT_EQ(1, fxWordTypes);
    EXPECT_EQ(-1, fxPlainStep);
    EXPECT_EQ(-2, fxStepOf32Bits);
}

TEST(PublicNames, ResultsOfTheAddressServices)
{
    EXPECT_EQ(0, fxAddressValid);
    EXPECT_EQ(1, fxWrongWidth);
    EXPECT_EQ(2, fxAddressOutOfRange);
    EXPECT_EQ(3, fxUnknownType);
    EXPECT_EQ(4, fxNotANumber);
    EXPECT_EQ(5, fxNotACounterDataType);
    EXPECT_EQ(6, fxWriteToInput);
    EXPECT_EQ(0, fxSeriesUnknownType);
    EXPECT_EQ(1, fxSeriesFitted);
    EXPECT_EQ(2, fxSeriesClamped);
}

}  // namespace
