// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which faults of a plan occur in an exchange, and what they do to its reply. Pure: the same seed,
// exchange and plan always give the same damage.

#pragma once

#include "tools/fxsim/faults/dice.h"
#include "tools/fxsim/faults/faults.h"

namespace fxsim {

constexpr int sliceBytes = 32;  // what a USB adapter delivers at a time

struct ActiveFault
{
    FaultKind kind;
    int value;
};

// The faults of one exchange, each kind at most once, in the order of FaultKind.
class ActiveFaults
{
public:
    ActiveFaults(const FaultPlan& plan, qint64 exchange, Dice& dice);

    const ActiveFault* find(FaultKind kind) const;
    bool has(FaultKind kind) const { return find(kind) != nullptr; }
    const QVector<ActiveFault>& all() const { return m_faults; }

private:
    QVector<ActiveFault> m_faults;
};

struct Chunk
{
    QByteArray bytes;
    int pauseMs = 0;  // after the end of the chunk before
};

// What goes on the line for `reply`; empty when nothing does.
QVector<Chunk> damaged(const QByteArray& reply, const QByteArray& request,
                       const ActiveFaults& faults, Dice& dice);

}  // namespace fxsim
