// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The duplicate rule and the limit that the host's writes and one-off reads share.

#include "driver/request_queue.h"
#include "tests/support/record_text.h"

#include <gtest/gtest.h>

namespace {
VARIABLE tagged(VARIABLE request, int tag)
{
    request.tag = tag;
    return request;
}

QList<VARIABLE> queueOf(int size)
{
    QList<VARIABLE> queue;
    for (int i = 0; i < size; ++i)
        queue << request("D", i, 1);
    return queue;
}

TEST(RequestQueue, SameRequestIsStationTypeNumberAndCount)
{
    const VARIABLE one = request("D", 5, 2, 1);
    EXPECT_TRUE(isSameRequest(one, request("D", 5, 2, 1)));
    EXPECT_FALSE(isSameRequest(one, request("D", 5, 2, 2)));
    EXPECT_FALSE(isSameRequest(one, request("d", 5, 2, 1)));
    EXPECT_FALSE(isSameRequest(one, request("D", 6, 2, 1)));
    EXPECT_FALSE(isSameRequest(one, request("D", 5, 1, 1)));
}

TEST(RequestQueue, TagAndDataMakeNoDifference)
{
    VARIABLE other = tagged(request("D", 5, 2), 99);
    other.data[0] = 1;
    EXPECT_TRUE(isSameRequest(request("D", 5, 2), other));
}

TEST(RequestQueue, EqualHeadIsNeverReplaced)
{
    QList<VARIABLE> queue = queueOf(1);
    enqueueRequest(queue, tagged(request("D", 0, 1), 7));
    ASSERT_EQ("1#D0/1 1#D0/1", textOf(queue));
    EXPECT_EQ(0, queue.at(0).tag);
    EXPECT_EQ(7, queue.at(1).tag);
}

TEST(RequestQueue, EqualEntryBehindTheHeadIsReplacedInPlace)
{
    QList<VARIABLE> queue = queueOf(3);
    VARIABLE newer = tagged(request("D", 1, 1), 7);
    newer.data[1023] = 0xEE;
    enqueueRequest(queue, newer);
    EXPECT_EQ("1#D0/1 1#D1/1 1#D2/1", textOf(queue));
    EXPECT_EQ(7, queue.at(1).tag);
    EXPECT_EQ(0xEE, queue.at(1).data[1023]);
}

TEST(RequestQueue, EqualLastEntryIsReplacedInPlace)
{
    QList<VARIABLE> queue = queueOf(3);
    enqueueRequest(queue, tagged(request("D", 2, 1), 7));
    EXPECT_EQ("1#D0/1 1#D1/1 1#D2/1", textOf(queue));
    EXPECT_EQ(7, queue.at(2).tag);
}

TEST(RequestQueue, NewestOfSeveralEqualEntriesIsReplaced)
{
    QList<VARIABLE> queue = queueOf(2);
    queue << request("D", 1, 1) << request("D", 5, 1);
    enqueueRequest(queue, tagged(request("D", 1, 1), 7));
    ASSERT_EQ("1#D0/1 1#D1/1 1#D1/1 1#D5/1", textOf(queue));
    EXPECT_EQ(0, queue.at(1).tag);
    EXPECT_EQ(7, queue.at(2).tag);
}

TEST(RequestQueue, Behind512EntriesOnlyTheNewestIsKept)
{
    QList<VARIABLE> queue = queueOf(512);
    for (const int number : {8, 9}) {
        enqueueRequest(queue, request("M", number, 1));
        ASSERT_EQ(513, queue.size());
        EXPECT_EQ("1#M" + std::to_string(number) + "/1", textOf(queue.at(512)));
        EXPECT_EQ("1#D511/1", textOf(queue.at(511)));
    }
}

TEST(RequestQueue, FullQueueStillUpdatesAnEqualEntryInItsPlace)
{
    QList<VARIABLE> queue = queueOf(513);
    enqueueRequest(queue, tagged(request("D", 1, 1), 7));
    EXPECT_EQ(513, queue.size());
    EXPECT_EQ(7, queue.at(1).tag);
    EXPECT_EQ("1#D512/1", textOf(queue.at(512)));
}

TEST(RequestQueue, FullQueueReplacesPosition513EvenForTheEqualOfTheHead)
{
    QList<VARIABLE> queue = queueOf(513);
    enqueueRequest(queue, tagged(request("D", 0, 1), 7));
    EXPECT_EQ(513, queue.size());
    EXPECT_EQ(0, queue.at(0).tag);
    EXPECT_EQ("1#D0/1", textOf(queue.at(512)));
    EXPECT_EQ(7, queue.at(512).tag);
}

TEST(RequestQueue, RequestThatLiesInTheQueueItselfMayBeQueuedAgain)
{
    QList<VARIABLE> queue = queueOf(1);
    enqueueRequest(queue, queue.at(0));
    EXPECT_EQ("1#D0/1 1#D0/1", textOf(queue));
}
}  // namespace
