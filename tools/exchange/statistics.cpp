// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/statistics.h"

namespace fxtools {

const QVector<ExchangeKind>& allExchangeKinds()
{
    static const QVector<ExchangeKind> all = {
        ExchangeKind::Write, ExchangeKind::ConditionalRead, ExchangeKind::CyclicRead,
        ExchangeKind::RecipeDownload, ExchangeKind::RecipeUpload};
    return all;
}

QString kindText(ExchangeKind kind)
{
    switch (kind) {
    case ExchangeKind::Write:
        return "write";
    case ExchangeKind::ConditionalRead:
        return "one-off read";
    case ExchangeKind::CyclicRead:
        return "cyclic read";
    case ExchangeKind::RecipeDownload:
        return "recipe download";
    case ExchangeKind::RecipeUpload:
        return "recipe upload";
    }
    return {};
}

void Statistics::add(const Exchange& exchange)
{
    KindCounts& counts = kinds[exchange.kind];
    ++counts.sent;
    counts.accepted += exchange.answer == DriverAnswer::Accepted;
    counts.repeated += exchange.answer == DriverAnswer::Repeat;
    counts.failed += exchange.answer == DriverAnswer::Failed;
    ++verdicts[exchange.verdict];
    bytesSent += exchange.wasSent ? exchange.frame.frameLength : 0;
    bytesReceived += exchange.reply.size() + exchange.thrownAway.size();
    bytesThrownAway += exchange.thrownAway.size();
    linksLost += exchange.verdict == ReplyVerdict::LinkLost;
    if (exchange.answer == DriverAnswer::Accepted)
        responses.add(exchange.responseUs);
    else
        bytesThrownAway += exchange.reply.size();
}

KindCounts Statistics::total() const
{
    KindCounts sum;
    for (const KindCounts& counts : kinds) {
        sum.sent += counts.sent;
        sum.accepted += counts.accepted;
        sum.repeated += counts.repeated;
        sum.failed += counts.failed;
    }
    return sum;
}

}  // namespace fxtools
