// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The end of a write: the mirrored value is confirmed or dropped, and every monitored element of
// the write reported, changed or not.

#include "cache/data_areas.h"
#include "cache/write_values.h"
#include "tests/support/driver_fixture.h"

namespace {
class WriteEnd : public DriverTest
{
protected:
    WriteEnd() { setUpDriver(); }

    static void end(const char* registerType, int start, int count, int success)
    {
        write_FailOrSuc(1, QString::fromLatin1(registerType), start, count, success);
    }
};

TEST_F(WriteEnd, SuccessConfirmsTwoBytesOfAWordOnly)
{
    mark("D", 5, 1);
    _DATA_& word = area("D", 5);
    for (unsigned char& byte : word.valueBuffer1)
        byte = 0xEE;
    end("D", 5, 1, 1);
    EXPECT_EQ((Bytes{0xEE, 0xEE, 0, 0}), confirmed("D", 5));
}

TEST_F(WriteEnd, SuccessConfirmsCountersByPairsOfWords)
{
    write("32CV", 200, {1, 2, 3, 4, 5, 6, 7, 8}, 4);
    end("32CV", 200, 3, 1);
    EXPECT_EQ((Bytes{1, 2, 3, 4}), confirmed("32CV", 200));
    EXPECT_EQ((Bytes{0, 0, 0, 0}), confirmed("32CV", 201));
    EXPECT_EQ(1, area("32CV", 201).bufferSelect);
}

TEST_F(WriteEnd, OneWordOfACounterEndsNothing)
{
    mark("32CV", 200, 2);
    write("32CV", 200, {1, 2, 3, 4}, 2);
    calls.clear();
    end("32CV", 200, 1, 1);
    EXPECT_EQ(1, area("32CV", 200).bufferSelect);
    EXPECT_EQ(Texts(), calls);
}

TEST_F(WriteEnd, SuccessOfOneBitConfirmsAllEightOfItsArea)
{
    write("M", 0, {1, 0, 0, 1, 0, 0, 0, 1}, 8);
    end("M", 3, 1, 1);
    EXPECT_EQ((Bytes{0x89, 0, 0, 0}), confirmed("M", 0));
    EXPECT_EQ(0, area("M", 0).bufferSelect);
}

TEST_F(WriteEnd, FailureRestoresThePreviousValueForReaders)
{
    mark("D", 10, 1);
    area("D", 10).valueBuffer0[0] = 7;
    write("D", 10, {1, 2}, 1);
    EXPECT_EQ((Bytes{1, 2}), values("D", 10, 1, 2));
    end("D", 10, 1, 0);
    EXPECT_EQ((Bytes{7, 0}), values("D", 10, 1, 2));
    EXPECT_EQ((Bytes{1, 2, 0, 0}), pending("D", 10));
    EXPECT_EQ(0, area("D", 10).bufferSelect);
}

TEST_F(WriteEnd, AnythingButOneIsAFailure)
{
    for (const int success : {0, 2, -1, 256, 2147483647}) {
        write("D", 10, {1, 2}, 1);
        write("M", 10, {1}, 1);
        write("32CV", 200, {1, 2, 3, 4}, 2);
        end("D", 10, 1, success);
        end("M", 10, 1, success);
        end("32CV", 200, 2, success);
        EXPECT_EQ(Bytes(4, 0), confirmed("D", 10)) << success;
        EXPECT_EQ(Bytes(4, 0), confirmed("M", 8)) << success;
        EXPECT_EQ(Bytes(4, 0), confirmed("32CV", 200)) << success;
    }
}

TEST_F(WriteEnd, EveryMonitoredElementIsReportedChangedOrNot)
{
    mark("D", 100, 2);
    mark("M", 7, 2);
    mark("32CV", 200, 4);
    for (const int success : {1, 0}) {
        calls.clear();
        end("D", 100, 3, success);
        end("M", 6, 4, success);
        end("32CV", 200, 6, success);
        EXPECT_EQ(
            (Texts{"1,1,D,100", "1,1,D,101", "1,1,M,7", "1,1,M,8", "1,1,32CV,200", "1,1,32CV,201"}),
            calls);
    }
}

TEST_F(WriteEnd, CallbackReadsTheConfirmedValueAfterSuccessAndTheOldOneAfterFailure)
{
    mark("D", 100, 1);
    std::vector<Bytes> seen;
    onCall = [this, &seen](QString&, int) {
        seen.push_back(values("D", 100, 1, 2));
        seen.push_back(confirmed("D", 100));
    };
    write("D", 100, {1, 2}, 1);
    seen.clear();
    end("D", 100, 1, 1);
    EXPECT_EQ((std::vector<Bytes>{{1, 2}, {1, 2, 0, 0}}), seen);
    write("D", 100, {3, 4}, 1);
    seen.clear();
    end("D", 100, 1, 0);
    EXPECT_EQ((std::vector<Bytes>{{1, 2}, {1, 2, 0, 0}}), seen);
}

TEST_F(WriteEnd, MissingAreasAreCreated)
{
    end("D", 5, 1, 1);
    end("M", 13, 1, 0);
    EXPECT_EQ("1#D5 1#M8", textOf(driver.dataAreas));
}

TEST_F(WriteEnd, SecondWriteInFlightLeavesTheAreaConfirmedByTheFirst)
{
    write("D", 100, {1, 0}, 1);
    nextFrame();
    write("D", 100, {2, 0}, 1);
    acknowledge();
    // The mirror holds the newer value already: that is what the first end confirms.
    EXPECT_EQ((Bytes{2, 0, 0, 0}), confirmed("D", 100));
    EXPECT_EQ("1#D100/1", textOf(driver.writeList));
}

TEST_F(WriteEnd, HostWriteOfABitIsReportedOnWriteAndOnEnd)
{
    mark("M", 3, 1);
    write("M", 3, {1}, 1);
    nextFrame();
    acknowledge();
    EXPECT_EQ((Texts{"1,1,M,3", "1,1,M,3"}), calls);
}
}  // namespace
