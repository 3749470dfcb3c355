// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Rounds of the exchange loop: until the plan has had its turn, until the queued writes have gone,
// until anything else has happened. Commands and the demo are made of them.

#pragma once

#include "tools/exchange/exchange_loop.h"

namespace fxtools {

enum class RoundEnd
{
    Done,           // what the round was made for has happened
    NothingToSend,  // the driver has no frame
    NeverAnswered,  // in time, in any round: a PLC that may not be there is not asked for the rest
    LinkLost,       // and it did not come back
    Interrupted,    // the user wants an end
};

// As the verdict of what the round did not come to; Good when it is done.
ReplyVerdict verdictOf(RoundEnd end);

// What became of the exchanges of one round.
struct Round
{
    QVector<Exchange> ended;           // in their order, accepted or failed
    std::optional<Exchange> inFlight;  // sent, and neither accepted nor given up at the end
    RoundEnd end = RoundEnd::Done;

    bool allGood() const;
    int failed() const;
};

using Enough = std::function<bool(const Round&)>;

// Steps until `enough` says so, or until the round ends for another reason than NeverAnswered.
Round runUntil(ExchangeLoop& loop, const Enough& enough);

// Until each of the plan's blocks was read once, whatever else went out in between.
Round pollCycle(ExchangeLoop& loop, int blocks);

// Until `writes` host writes have ended. Needs a plan: without one the driver sends three at most.
Round flushWrites(ExchangeLoop& loop, int writes);

// Reads a range once, ahead of the plan: good when the driver's completion callback said so, else
// why not. Needs a plan as well. A read in several frames ends with the first that fails.
ReplyVerdict readOnce(ExchangeLoop& loop, const RegisterRange& range);

// The same for what was written: the driver forgets what it holds of it before, so that all values
// are the PLC's. Replaces the plan by the range's first register; nothing may be under way.
ReplyVerdict readBack(ExchangeLoop& loop, const RegisterRange& range);

// What became of a write, frame by frame: one a bit, else as many as the words need.
struct WriteOutcome
{
    int frames = 0;  // that the whole takes
    QVector<RegisterRange> acknowledged;
    QVector<RegisterRange> uncertain;     // sent without a clear answer: they may have arrived
    std::optional<ReplyVerdict> problem;  // of the first frame that failed, or was not sent

    bool isGood() const { return !problem; }
};

// Writes and waits for the acknowledges, a portion at a time that the driver's queue can hold.
// Stops at the first portion that fails. Replaces the plan by the range's first register.
WriteOutcome writeRegisters(ExchangeLoop& loop, const RegisterRange& range,
                            const QVector<quint32>& values);

}  // namespace fxtools
