// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What can go wrong with an exchange, and the plan that says when. A plan is a list with commas:
//
//   silence=0.05            in five exchanges of a hundred, at random
//   wrong-sum@7-9           in exchanges 7 to 9
//   delay:800@3+12+20-      with a value of its own (here milliseconds), in exchanges 3 and 12 and
//                           from 20 on
//
// Exchanges are counted over all links from 1, the first after the plan was given: a frame each; an
// ENQ is none. Several faults may meet in one exchange.

#pragma once

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
constexpr int faultKinds = 16;

struct FaultFacts
{
    FaultKind kind;
    int value;  // when the plan gives none; what it means stands in the text
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

struct ParsedFaults
{
    FaultPlan plan;
    QString error;  // empty when all is well
};

ParsedFaults parseFaults(const QString& text);
QString faultPlanText(const FaultPlan& plan);
QByteArray faultHelp();

}  // namespace fxsim
