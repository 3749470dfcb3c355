// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See polling.h.

#include "host/polling.h"

#include "host/interrupt.h"

#include <algorithm>

namespace fxhost {

namespace {

int endedOfKind(const Round& round, ExchangeKind kind)
{
    return static_cast<int>(
        std::count_if(round.ended.begin(), round.ended.end(),
                      [kind](const Exchange& exchange) { return exchange.kind == kind; }));
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
        round.linkLost = exchange->verdict == ReplyVerdict::LinkLost;
        if (round.linkLost)
            break;
        if (exchange->hasEnded())
            round.ended.append(*exchange);
    }
    return round;
}

Round pollCycle(ExchangeLoop& loop, int blocks)
{
    return runUntil(loop, [blocks](const Round& round) {
        return endedOfKind(round, ExchangeKind::CyclicRead) >= blocks;
    });
}

Round flushWrites(ExchangeLoop& loop, int writes)
{
    return runUntil(loop, [writes](const Round& round) {
        return endedOfKind(round, ExchangeKind::Write) >= writes;
    });
}

bool readOnce(ExchangeLoop& loop, const RegisterRange& range)
{
    std::optional<bool> result;
    loop.session().onReadEnded = [&result](bool good) { result = good; };
    loop.session().queueRead(range);
    runUntil(loop, [&result](const Round&) { return result.has_value(); });
    loop.session().onReadEnded = nullptr;
    return result.value_or(false);
}

int writeFrames(const RegisterRange& range, const SessionSettings& settings)
{
    if (range.type.isBit())
        return range.count;
    const int words = range.type.driverCount(range.count);
    return (words + settings.wordsPerFrame - 1) / settings.wordsPerFrame;
}

}  // namespace fxhost
