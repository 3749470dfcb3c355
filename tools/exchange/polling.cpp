// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See polling.h.

#include "tools/exchange/polling.h"

#include "tools/link/interrupt.h"

#include <algorithm>

namespace fxtools {

namespace {

int endedOfKind(const Round& round, ExchangeKind kind)
{
    return static_cast<int>(
        std::count_if(round.ended.begin(), round.ended.end(),
                      [kind](const Exchange& exchange) { return exchange.kind == kind; }));
}

bool isDead(const ExchangeLoop& loop, const Round& round)
{
    return !round.ended.isEmpty() && round.ended.last().verdict == ReplyVerdict::Silence &&
           loop.statistics().total().accepted == 0;
}

// The driver holds 513 writes at most and overwrites the last of them silently.
constexpr int mostQueuedFrames = 256;

// The registers that are handed to the driver at once. It cuts what is longer than a frame by
// words and numbers the pieces by words, which is wrong for registers of two words each.
int portionOf(const RegisterType& type, int wordsPerFrame)
{
    switch (type.width) {
    case RegisterWidth::Bit:
        return mostQueuedFrames;
    case RegisterWidth::Word:
        return mostQueuedFrames * wordsPerFrame;
    case RegisterWidth::DoubleWord:
        return type.mostInFrame(wordsPerFrame);
    }
    return 1;
}

int framesFor(const RegisterRange& range, int wordsPerFrame)
{
    if (range.type.isBit())
        return range.count;
    const int most = range.type.mostInFrame(wordsPerFrame);
    return (range.count + most - 1) / most;
}

// The registers of `whole` that one frame writes. Counters take two words each.
RegisterRange writtenBy(const Exchange& exchange, const RegisterRange& whole)
{
    const VARIABLE& request = exchange.frame.variable;
    const int registers =
        whole.type.isBit() ? 1 : std::max(request.count / whole.type.driverCount(1), 1);
    return whole.part(request.addressIndex - whole.first, registers);
}

void noteWrite(const Exchange& exchange, const RegisterRange& whole, WriteOutcome& outcome)
{
    if (exchange.kind != ExchangeKind::Write)
        return;
    const RegisterRange written = writtenBy(exchange, whole);
    if (exchange.answer == DriverAnswer::Accepted)
        outcome.acknowledged.append(written);
    else if (exchange.verdict != ReplyVerdict::Refused)
        outcome.uncertain.append(written);
    if (exchange.answer != DriverAnswer::Accepted && !outcome.problem)
        outcome.problem = exchange.verdict;
}

void noteWrites(const Round& round, const RegisterRange& whole, WriteOutcome& outcome)
{
    for (const Exchange& exchange : round.ended)
        noteWrite(exchange, whole, outcome);
    if (round.inFlight)
        noteWrite(*round.inFlight, whole, outcome);
}

bool hasFailed(const Exchange& exchange, ExchangeKind kind)
{
    return exchange.kind == kind && exchange.hasFailed();
}

bool reconnected(const ExchangeLoop& loop)
{
    return loop.onLinkLost && loop.onLinkLost();
}

ReplyVerdict readPortion(ExchangeLoop& loop, const RegisterRange& range)
{
    std::optional<bool> result;
    std::optional<ReplyVerdict> failure;
    loop.session().onReadEnded = [&result](bool good) { result = good; };
    loop.session().queueRead(range);
    const Round round = runUntil(loop, [&](const Round& soFar) {
        // The driver drops what is queued behind a failed read, and reports only the last one.
        if (!soFar.ended.isEmpty() && hasFailed(soFar.ended.last(), ExchangeKind::ConditionalRead))
            failure = soFar.ended.last().verdict;
        return result.has_value() || failure.has_value();
    });
    loop.session().onReadEnded = nullptr;
    if (round.linkLost)
        return ReplyVerdict::LinkLost;
    return result.value_or(false) ? ReplyVerdict::Good : failure.value_or(ReplyVerdict::Silence);
}

}  // namespace

bool Round::allGood() const
{
    return !linkLost && failed() == 0;
}

int Round::failed() const
{
    return static_cast<int>(std::count_if(
        ended.begin(), ended.end(), [](const Exchange& exchange) { return exchange.hasFailed(); }));
}

Round runUntil(ExchangeLoop& loop, const Enough& enough)
{
    Round round;
    while (!enough(round) && !interrupted()) {
        const std::optional<Exchange> exchange = loop.step();
        if (!exchange)
            break;
        round.inFlight.reset();
        if (exchange->hasEnded())
            round.ended.append(*exchange);
        else
            round.inFlight = exchange;
        if (exchange->verdict == ReplyVerdict::LinkLost && !reconnected(loop)) {
            round.linkLost = true;
            break;
        }
    }
    return round;
}

Round pollCycle(ExchangeLoop& loop, int blocks)
{
    return runUntil(loop, [&loop, blocks](const Round& round) {
        return endedOfKind(round, ExchangeKind::CyclicRead) >= blocks || isDead(loop, round);
    });
}

Round flushWrites(ExchangeLoop& loop, int writes)
{
    return runUntil(loop, [writes](const Round& round) {
        return endedOfKind(round, ExchangeKind::Write) >= writes;
    });
}

ReplyVerdict readOnce(ExchangeLoop& loop, const RegisterRange& range)
{
    // The driver cuts a read by its registers, so that one of counters could be twice too long.
    const int most = range.type.mostInFrame(loop.session().settings().wordsPerFrame);
    for (int done = 0; done < range.count; done += most) {
        const int count = std::min(most, range.count - done);
        const ReplyVerdict verdict = readPortion(loop, range.part(done, count));
        if (verdict != ReplyVerdict::Good)
            return verdict;
    }
    return ReplyVerdict::Good;
}

ReplyVerdict readBack(ExchangeLoop& loop, const RegisterRange& range)
{
    loop.session().forgetValues();
    loop.session().setPlan({range.part(0, 1)});
    return readOnce(loop, range);
}

WriteOutcome writeRegisters(ExchangeLoop& loop, const RegisterRange& range,
                            const QVector<quint32>& values)
{
    const int wordsPerFrame = loop.session().settings().wordsPerFrame;
    const int portion = portionOf(range.type, wordsPerFrame);
    WriteOutcome outcome;
    outcome.frames = framesFor(range, wordsPerFrame);
    int sent = 0;
    loop.session().setPlan({range.part(0, 1)});
    for (int done = 0; done < range.count && outcome.isGood(); done += portion) {
        const int count = std::min(portion, range.count - done);
        loop.session().write(range.part(done, count), values.mid(done, count));
        const int frames = framesFor(range.part(done, count), wordsPerFrame);
        sent += frames;
        noteWrites(flushWrites(loop, frames), range, outcome);
        if (outcome.isGood() && outcome.acknowledged.size() < sent)
            outcome.problem = ReplyVerdict::LinkLost;
    }
    return outcome;
}

}  // namespace fxtools
