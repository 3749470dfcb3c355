// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What can go wrong with an exchange, and the plan that says when. A plan is a list separated by
// commas:
//
//   silence=0.05            in 5 % of the exchanges, at random
//   wrong-sum@7-9           in exchanges 7 to 9
//   delay:800@3+12+20-      with a value (here milliseconds), in exchanges 3, 12 and from 20 on
//
// An exchange is one frame that came whole; an ENQ is none. They are counted from 1, over all
// links, from the moment when the plan was set. Several faults may meet in one exchange.

#pragma once

#include "tools/fxsim/plc/error.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace fxsim {

enum class FaultKind
{
    PowerCycle,
    LinkDrop,
    Silence,
    Nak,
    Delay,
    WrongSum,
    FlippedBits,
    Bit7,
    Truncated,
    LostStx,
    LostEtx,
    JunkBefore,
    JunkAfter,
    Duplicate,
    Slices,
    Echo,
};
constexpr int faultKinds = static_cast<int>(FaultKind::Echo) + 1;

struct FaultFacts
{
    FaultKind kind;
    int value;  // default; the text says what it means
    int lowestValue;
    int highestValue;
    const char* name;
    const char* text;
};

const FaultFacts& factsOf(FaultKind kind);

struct ExchangeSpan
{
    qint64 first = 1;
    qint64 last = 1;  // included
};

struct FaultRule
{
    FaultKind kind = FaultKind::Silence;
    int value = 0;
    double rate = 0;  // used when there are no spans
    QVector<ExchangeSpan> spans;
};

using FaultPlan = QVector<FaultRule>;

FaultPlan parseFaults(const QString& text);  // throws an Error that quotes the wrong fault
QString faultPlanText(const FaultPlan& plan);
QByteArray faultHelp();

}  // namespace fxsim
