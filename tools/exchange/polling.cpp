// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/polling.h"

#include "tools/exchange/blocks.h"

#include <algorithm>

namespace fxtools {

namespace {

// The driver overwrites the last of a full queue silently: a portion fills half of it at most.
constexpr int mostQueuedFrames = fxMaxQueuedRequests / 2;

int endedOfKind(const Round& round, ExchangeKind kind)
{
    return static_cast<int>(
        std::count_if(round.ended.begin(), round.ended.end(),
                      [kind](const Exchange& exchange) { return exchange.kind == kind; }));
}

bool hasNoAnswer(const ExchangeLoop& loop, const Round& round)
{
    if (round.ended.isEmpty() || loop.statistics().plcHasAnswered())
        return false;
    const ReplyVerdict verdict = round.ended.last().verdict;
    return verdict == ReplyVerdict::Silence || verdict == ReplyVerdict::Late ||
           verdict == ReplyVerdict::Babble;
}

// The registers that are handed to the driver at once. It cuts what is longer than a frame by
// words, whichever of them are one value, and numbers the pieces by words, which is wrong for
// registers of two words each.
int mostInPortion(const RegisterRange& range, int wordsPerFrame)
{
    switch (range.type.width) {
    case RegisterWidth::Bit:
        return mostQueuedFrames;
    case RegisterWidth::Word:
        if (range.mostInFrame(wordsPerFrame) == wordsPerFrame)
            return mostQueuedFrames * wordsPerFrame;
        [[fallthrough]];
    case RegisterWidth::DoubleWord:
        return range.mostInFrame(wordsPerFrame);
    }
    return 1;
}

int framesFor(const RegisterRange& range, int wordsPerFrame)
{
    if (range.type.isBit())
        return range.count;
    const int most = range.mostInFrame(wordsPerFrame);
    return (range.count + most - 1) / most;
}

void noteWrite(const Exchange& exchange, const RegisterRange& whole, WriteOutcome& outcome)
{
    if (exchange.kind != ExchangeKind::Write)
        return;
    const VARIABLE& request = exchange.frame.variable;
    const RegisterRange written =
        whole.part(request.addressIndex - whole.first, writtenRegisters(whole.type, request));
    if (exchange.answer == DriverAnswer::Accepted)
        outcome.acknowledged.append(written);
    else if (exchange.mayBeDone)
        outcome.uncertain.append(written);
    if (exchange.answer != DriverAnswer::Accepted && !outcome.problem)
        outcome.problem = exchange.verdict;
}

void noteWrites(const Round& round, const RegisterRange& whole, WriteOutcome& outcome)
{
    if (round.end != RoundEnd::Done)
        outcome.problem = round.verdict();
    for (const Exchange& exchange : round.ended)
        noteWrite(exchange, whole, outcome);
    if (round.inFlight)
        noteWrite(*round.inFlight, whole, outcome);
}

bool isFor(const FRAME_PRO& frame, const KEY_ADDRESS& read)
{
    const VARIABLE& request = frame.variable;
    return request.stationNo == read.stationNo && request.registerType == read.registerType &&
           request.addressIndex == read.startIndex && request.count == read.length;
}

// A one-off read from before may still be in flight; if it fails, the driver drops this one too.
ReplyVerdict readFrame(ExchangeLoop& loop, const RegisterRange& range)
{
    while (true) {
        const KEY_ADDRESS read = loop.session().queueRead(range);
        const Round round = runUntil(loop, [](const Round& soFar) {
            return endedOfKind(soFar, ExchangeKind::ConditionalRead) > 0;
        });
        if (round.end != RoundEnd::Done)
            return round.verdict();
        const Exchange& last = round.ended.last();
        if (isFor(last.frame, read))
            return last.hasFailed() ? last.verdict : ReplyVerdict::Good;
    }
}

// Makes one exchange of a round. Returns how the round ends, if it ends.
std::optional<RoundEnd> stepIn(ExchangeLoop& loop, Round& round)
{
    const std::optional<Exchange> exchange = loop.step();
    if (!exchange)
        return RoundEnd::NothingToSend;
    round.inFlight.reset();
    if (exchange->hasEnded())
        round.ended.append(*exchange);
    else
        round.inFlight = exchange;
    if (loop.hasGoneSilent())
        return RoundEnd::NoAnswer;
    const bool isLost = exchange->verdict == ReplyVerdict::LinkLost;
    if (!isLost || (loop.onLinkLost && loop.onLinkLost()))
        return std::nullopt;
    return loop.isInterrupted() ? RoundEnd::Interrupted : RoundEnd::LinkLost;
}

}  // namespace

ReplyVerdict verdictOf(RoundEnd end)
{
    switch (end) {
    case RoundEnd::Done:
        return ReplyVerdict::Good;
    case RoundEnd::NothingToSend:
    case RoundEnd::NoAnswer:
        return ReplyVerdict::Silence;
    case RoundEnd::LinkLost:
        return ReplyVerdict::LinkLost;
    case RoundEnd::Interrupted:
        return ReplyVerdict::Interrupted;
    }
    return ReplyVerdict::Silence;
}

ReplyVerdict Round::verdict() const
{
    if (end == RoundEnd::NoAnswer && (inFlight || !ended.isEmpty()))
        return inFlight ? inFlight->verdict : ended.last().verdict;
    return verdictOf(end);
}

bool Round::allGood() const
{
    return end == RoundEnd::Done && failed() == 0;
}

int Round::failed() const
{
    return static_cast<int>(std::count_if(
        ended.begin(), ended.end(), [](const Exchange& exchange) { return exchange.hasFailed(); }));
}

Round runUntil(ExchangeLoop& loop, const Enough& enough)
{
    Round round;
    std::optional<RoundEnd> end;
    while (!end && !enough(round))
        end = loop.isInterrupted() ? RoundEnd::Interrupted : stepIn(loop, round);
    round.end = end.value_or(RoundEnd::Done);
    return round;
}

Round pollCycle(ExchangeLoop& loop, int blocks)
{
    Round round = runUntil(loop, [&loop, blocks](const Round& soFar) {
        return endedOfKind(soFar, ExchangeKind::CyclicRead) >= blocks || hasNoAnswer(loop, soFar);
    });
    if (round.end == RoundEnd::Done && hasNoAnswer(loop, round))
        round.end = RoundEnd::NoAnswer;
    return round;
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
    ReplyVerdict verdict = ReplyVerdict::Good;
    for (const RegisterRange& part :
         cutToFrames({range}, loop.session().settings().wordsPerFrame)) {
        if (verdict == ReplyVerdict::Good)
            verdict = readFrame(loop, part);
    }
    return verdict;
}

ReplyVerdict readBack(ExchangeLoop& loop, const RegisterRange& range)
{
    loop.forgetEverything();
    loop.session().setPlan({range.part(0, 1)});
    return readOnce(loop, range);
}

WriteOutcome writeRegisters(ExchangeLoop& loop, const RegisterRange& range,
                            const QVector<quint32>& values)
{
    const int wordsPerFrame = loop.session().settings().wordsPerFrame;
    WriteOutcome outcome;
    outcome.frames = framesFor(range, wordsPerFrame);
    loop.session().setPlan({range.part(0, 1)});
    for (const RegisterRange& part : range.cut(mostInPortion(range, wordsPerFrame))) {
        if (!outcome.isGood())
            break;
        loop.session().write(part, values.mid(part.first - range.first, part.count));
        noteWrites(flushWrites(loop, framesFor(part, wordsPerFrame)), range, outcome);
    }
    return outcome;
}

RecipeOutcome transferRecipe(ExchangeLoop& loop, RecipeDirection direction,
                             const QVector<RegisterRange>& entries, const Progress& onProgress)
{
    RecipeOutcome outcome;
    outcome.entries = loop.session().startRecipe(direction, entries);
    int shown = -1;
    const Round round = runUntil(loop, [&](const Round& soFar) {
        if (soFar.ended.size() != shown) {
            shown = soFar.ended.size();
            onProgress(shown - soFar.failed(), outcome.entries);
        }
        return !loop.session().recipeRuns(direction);
    });
    loop.abandonRecipe(direction);  // if the round has left one
    outcome.transferred = round.ended.size() - round.failed();
    if (round.end != RoundEnd::Done)
        outcome.problem = round.verdict();
    else if (outcome.transferred < outcome.entries)
        outcome.problem =
            round.ended.isEmpty() ? ReplyVerdict::Silence : round.ended.last().verdict;
    const Exchange* last = round.inFlight ? &*round.inFlight : nullptr;
    if (!last && !round.ended.isEmpty())
        last = &round.ended.last();
    outcome.isUncertain =
        !outcome.isGood() && last && last->answer != DriverAnswer::Accepted && last->mayBeDone;
    return outcome;
}

}  // namespace fxtools
