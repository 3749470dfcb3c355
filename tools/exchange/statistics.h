// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is counted while a link is in use. The exchange loop adds to it; `stats`, the demo and the
// closing lines of other commands show it.

#pragma once

#include "tools/exchange/exchange.h"
#include "tools/exchange/histogram.h"

#include <array>

namespace fxtools {

struct KindCounts
{
    qint64 sent = 0;  // frames, repeats included
    qint64 accepted = 0;
    qint64 repeated = 0;  // rejected, but sent again
    qint64 failed = 0;    // rejected once too often
};

struct Statistics
{
    std::array<KindCounts, exchangeKinds> kinds;
    std::array<qint64, replyVerdicts> verdicts = {};
    qint64 bytesSent = 0;
    qint64 bytesReceived = 0;
    qint64 bytesThrownAway = 0;  // late, double or damaged: never handed to the driver as data
    qint64 enquiriesSent = 0;
    qint64 enquiriesAnswered = 0;
    qint64 linksLost = 0;
    qint64 reconnects = 0;
    qint64 busyUs = 0;    // from sending to the end of the answer, resynchronising included
    Histogram responses;  // of good answers

    void add(const Exchange& exchange);

    const KindCounts& of(ExchangeKind kind) const { return kinds[static_cast<size_t>(kind)]; }
    qint64 of(ReplyVerdict verdict) const { return verdicts[static_cast<size_t>(verdict)]; }
    KindCounts total() const;
};

}  // namespace fxtools
