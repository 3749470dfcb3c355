// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Rounds of the exchange loop: until every block of the plan has been read, until the queued writes
// have ended, or until any other condition. Commands and the demo are built from them.

#pragma once

#include "tools/exchange/exchange_loop.h"

namespace fxtools {

enum class RoundEnd
{
    Done,           // the condition of the round is true
    NothingToSend,  // the driver has no frame
    NoAnswer,       // never in time, in any round, or no more: the rest is skipped
    LinkLost,       // and it did not come back
    Interrupted,    // by the user
};

// The verdict for what a round that ended so did not reach; Good if it is done.
ReplyVerdict verdictOf(RoundEnd end);

// The exchanges of one round.
struct Round
{
    QVector<Exchange> ended;           // in their order, accepted or failed
    std::optional<Exchange> inFlight;  // sent, and neither accepted nor given up at the end
    RoundEnd end = RoundEnd::Done;

    ReplyVerdict verdict() const;  // for what it did not reach, as its last exchange tells it
    bool allGood() const;
    int failed() const;
};

using Enough = std::function<bool(const Round&)>;

// Steps until `enough` returns true, or until the round ends for another reason.
Round runUntil(ExchangeLoop& loop, const Enough& enough);

// One cycle: until each block of the plan has been read once, whatever else is sent in between.
Round pollCycle(ExchangeLoop& loop, int blocks);

// Until `writes` host writes have ended. Needs a plan: without one the driver sends at most three.
Round flushWrites(ExchangeLoop& loop, int writes);

// Reads a range once, ahead of the plan: Good, or why it could not be read. Needs a plan as well. A
// read in several frames ends with the first that fails.
ReplyVerdict readOnce(ExchangeLoop& loop, const RegisterRange& range);

// The same for what was written: empties the cache first, so that all values come from the PLC.
// Replaces the plan by the range's first register; what is queued or in flight is dropped.
ReplyVerdict readBack(ExchangeLoop& loop, const RegisterRange& range);

// The result of a write, frame by frame: one frame for each bit, or as many as the words need.
struct WriteOutcome
{
    int frames = 0;  // of the whole write
    QVector<RegisterRange> acknowledged;
    QVector<RegisterRange> uncertain;     // sent without a clear reply: possibly written
    std::optional<ReplyVerdict> problem;  // of the first frame that failed, or was not sent

    bool isGood() const { return !problem; }
};

// Writes and waits for the ACKs, one portion at a time that fits in the driver's queue.
// Stops at the first portion that fails. Replaces the plan by the range's first register.
WriteOutcome writeRegisters(ExchangeLoop& loop, const RegisterRange& range,
                            const QVector<quint32>& values);

// A recipe transfer. The driver transfers entry after entry between the recipe memory and the PLC
// and reports only the end; which entry failed, and why, follows from the exchanges.
struct RecipeOutcome
{
    int entries = 0;
    int transferred = 0;
    std::optional<ReplyVerdict> problem;  // of the entry after the transferred ones
    bool isUncertain = false;             // that entry may have been written

    bool isGood() const { return !problem && transferred == entries; }
};

// Calls `onProgress` at the start and after each entry.
RecipeOutcome transferRecipe(ExchangeLoop& loop, RecipeDirection direction,
                             const QVector<RegisterRange>& entries, const Progress& onProgress);

}  // namespace fxtools
