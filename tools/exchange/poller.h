// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Keeps ranges of registers fresh. The plan of the driver merges neighbours into blocks, and a PLC
// that refuses one register of a block refuses them all; so a refused block is halved, with
// one-off reads, until the bad registers stand alone. They are set aside with the reason and
// retried now and then; the good parts of the block are read as separate pieces.
//
// A value over several registers is planned as one, so that no block divides it, and stays as the
// last reply had it that brought all of it: it is never half old and half new.

#pragma once

#include "tools/exchange/plan_cycle.h"

#include <QHash>

namespace fxtools {

// What is read next where not everything is read in every cycle.
struct Turns
{
    // The registers of one block; empty: nothing for now.
    std::function<QVector<RegisterRange>()> next;
    // Tells which registers cannot be read, not even in a block with others.
    std::function<void(const QVector<RegisterRange>&)> leaveOut;
};

class Poller
{
public:
    // With turns, each cycle but the first is a turn. Throws Failure if a value is too long for one
    // reply.
    Poller(ExchangeLoop& loop, const RegisterCatalogue& catalogue,
           const QVector<RegisterRange>& ranges, const Planner& planner = {}, Turns turns = {});

    // After something else has replaced the plan.
    void planEverything();

    // After something else has emptied the cache too: the next cycle reads everything.
    void readEverythingAgain();

    // Makes one cycle. What it does not reach, because it ends early, is read in the next one.
    RoundEnd poll();

    QVector<quint32> values(const RegisterRange& range) const;

    // Why a register was not read in the last cycle, or in its last turn; nothing if it was.
    std::optional<ReplyVerdict> problemOf(const RegisterRange& range, int index) const;

private:
    struct Aside
    {
        RegisterRange range;
        ReplyVerdict reason = ReplyVerdict::Refused;
    };

    void replan();
    bool isStopped() const;
    bool beginCycle();
    void pollPlan();
    void pollPieces();
    void askAsideAgain();
    void halve(const RegisterRange& block);
    QVector<RegisterRange> takeFromPlan(const RegisterRange& block);
    void readOrHalve(const RegisterRange& piece);
    void keep(const RegisterRange& piece, ReplyVerdict verdict);
    void note(const RegisterRange& range, ReplyVerdict verdict);
    void noteBlock(const Exchange& exchange, QVector<RegisterRange>& refused);
    void noteRead(const RegisterRange& registers);
    bool wasReadAtOnce(const RegisterRange& registers) const;
    ReplyVerdict readPiece(const RegisterRange& piece);

    ExchangeLoop& m_loop;
    const RegisterCatalogue& m_catalogue;
    QVector<RegisterRange> m_ranges;
    QVector<RegisterRange> m_wide;                 // the values over several registers
    QHash<QString, QVector<quint32>> m_wholeOnes;  // what they are, by their texts
    QVector<RegisterRange> m_planned;              // left to the plan
    PlanCycle m_plan;
    Turns m_turns;
    bool m_isInTurns = false;  // everything was read once
    bool m_isTurnPlanned = false;
    QVector<RegisterRange> m_pieces;  // good parts of refused blocks
    QVector<Aside> m_aside;
    QHash<QString, ReplyVerdict> m_problems;  // by the register's identity, or wide value's text
    QVector<RegisterRange> m_read;            // in this cycle, without a problem
    RoundEnd m_end = RoundEnd::Done;          // of this cycle
    ReplyVerdict m_unasked = ReplyVerdict::Silence;  // the verdict for the rest, if it ended early
    int m_cycle = 0;
};

}  // namespace fxtools
