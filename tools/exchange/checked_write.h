// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A write with a look at the registers before and after it. The cache shows a written value at
// once, so only what the PLC sends counts.

#pragma once

#include "tools/exchange/polling.h"
#include "tools/library/assignments.h"

namespace fxtools {

struct CheckedWrite
{
    QVector<quint32> before;  // empty: not read
    QVector<quint32> wanted;
    std::optional<WriteOutcome> outcome;  // nothing: nothing was sent
    QVector<quint32> after;               // empty: not read back
    std::optional<ReplyVerdict> problem;  // of the reading before, or after what was sent

    bool isThere() const { return !after.isEmpty() && after == wanted; }
};

enum class Check
{
    BeforeAndAfter,
    OnlyAsNeeded,  // the word of a bit is read before
};

// A register that refuses to be read may still be written, unless it is for a bit of it; a PLC that
// does not answer is not asked to. Replaces the plan by the range's first register. What has not
// been sent when it returns is dropped.
CheckedWrite writeAndReadBack(ExchangeLoop& loop, const Assignment& assignment,
                              Check check = Check::BeforeAndAfter);

// Whether more can be sent after this.
bool mayGoOn(ReplyVerdict problem);

}  // namespace fxtools
