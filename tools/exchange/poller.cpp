// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See poller.h.

#include "tools/exchange/poller.h"

#include "tools/exchange/blocks.h"
#include "tools/link/interrupt.h"

#include <algorithm>

namespace fxtools {

namespace {

constexpr int cyclesUntilAskedAgain = 50;
constexpr int bitsPerByte = 8;

// The smallest part of a block that can be read alone.
int smallestCount(const RegisterType& type)
{
    return type.isBit() ? bitsPerByte : 1;
}

int halfOf(const RegisterRange& range)
{
    const int unit = smallestCount(range.type);
    return std::max((range.count / 2 + unit - 1) / unit * unit, unit);
}

}  // namespace

Poller::Poller(ExchangeLoop& loop, const RegisterCatalogue& catalogue,
               const QVector<RegisterRange>& ranges)
    : m_loop(loop), m_catalogue(catalogue), m_ranges(ranges), m_planned(ranges)
{
    replan();
}

// One-off reads leave only between cyclic ones: when nothing is left to the plan, a piece goes
// there. Alone it cannot be merged with anything.
void Poller::replan()
{
    if (m_planned.isEmpty() && !m_pieces.isEmpty())
        m_planned.append(m_pieces.takeFirst());
    m_blocks = m_loop.session().setPlan(m_planned);
}

bool Poller::poll()
{
    m_problems.clear();
    m_read.clear();
    m_brokenOff.reset();
    for (const Aside& aside : m_aside)
        note(aside.range, aside.reason);
    const bool whole = pollPlan() && pollPieces() && askAsideAgain();
    ++m_cycle;
    return whole && !interrupted();
}

bool Poller::pollPlan()
{
    const Round round = pollCycle(m_loop, m_blocks);
    QVector<RegisterRange> refused;
    for (const Exchange& exchange : round.ended) {
        if (exchange.kind == ExchangeKind::CyclicRead)
            noteBlock(exchange, refused);
    }
    if (round.linkLost)
        m_brokenOff = ReplyVerdict::LinkLost;
    else if (round.ended.size() < m_blocks)
        m_brokenOff = ReplyVerdict::Silence;
    for (int block = 0; block < refused.size() && !linkLost(); ++block)
        halve(refused[block]);
    return !linkLost();
}

void Poller::noteBlock(const Exchange& exchange, QVector<RegisterRange>& refused)
{
    const RegisterRange block = blockRange(m_catalogue, exchange.frame.variable);
    if (!exchange.hasFailed()) {
        m_read.append(block);
        return;
    }
    note(block, exchange.verdict);
    if (exchange.verdict == ReplyVerdict::Refused)
        refused.append(block);
}

bool Poller::pollPieces()
{
    const QVector<RegisterRange> pieces = m_pieces;
    m_pieces.clear();
    for (const RegisterRange& piece : pieces) {
        const ReplyVerdict verdict = readPiece(piece);
        if (linkLost())
            return false;
        if (verdict == ReplyVerdict::Refused) {
            readOrHalve(piece);  // what was good before has lost a part
            continue;
        }
        m_pieces.append(piece);
        if (verdict == ReplyVerdict::Good)
            m_read.append(piece);
        else
            note(piece, verdict);
    }
    return true;
}

bool Poller::askAsideAgain()
{
    if (m_cycle % cyclesUntilAskedAgain != cyclesUntilAskedAgain - 1)
        return true;
    if (m_planned.isEmpty()) {
        m_aside.clear();  // a one-off read needs a plan to go in between: all of it is the plan
        planEverything();
        return true;
    }
    QVector<Aside> stillAside;
    for (const Aside& aside : m_aside) {
        const ReplyVerdict verdict = readPiece(aside.range);
        if (linkLost())
            return false;
        if (verdict == ReplyVerdict::Good)
            m_pieces.append(aside.range);
        else
            stillAside.append({aside.range, verdict});
    }
    m_aside = stillAside;
    if (m_aside.isEmpty() && !m_pieces.isEmpty())
        planEverything();
    return true;
}

void Poller::planEverything()
{
    m_planned = m_ranges;
    m_pieces.clear();
    replan();
}

// Takes what was asked for in a refused block out of the plan and finds out what of it can be read.
void Poller::halve(const RegisterRange& block)
{
    QVector<RegisterRange> inBlock;
    QVector<RegisterRange> left;
    for (const RegisterRange& range : m_planned) {
        if (overlap(range, block))
            inBlock.append(range);
        else
            left.append(range);
    }
    for (const RegisterRange& range : inBlock) {
        // A range may reach over several blocks; the parts outside this one stay with the plan.
        const int from = std::max(range.first, block.first);
        const int to = std::min(range.first + range.count, block.first + block.count);
        if (from > range.first)
            left.append(range.part(0, from - range.first));
        if (to < range.first + range.count)
            left.append(range.part(to - range.first, range.first + range.count - to));
        readOrHalve(range.part(from - range.first, to - from));
    }
    m_planned = left;
    replan();
}

void Poller::readOrHalve(const RegisterRange& piece)
{
    const ReplyVerdict verdict = readPiece(piece);
    if (linkLost() || interrupted())
        return;
    if (verdict == ReplyVerdict::Good) {
        m_pieces.append(piece);
        m_read.append(piece);
        for (int index = 0; index < piece.count; ++index)
            m_problems.remove(piece.nameOf(index));
    } else if (piece.count <= smallestCount(piece.type)) {
        m_aside.append({piece, verdict});
        note(piece, verdict);
    } else {
        const int half = halfOf(piece);
        readOrHalve(piece.part(0, half));
        readOrHalve(piece.part(half, piece.count - half));
    }
}

ReplyVerdict Poller::readPiece(const RegisterRange& piece)
{
    const ReplyVerdict verdict = readOnce(m_loop, piece);
    if (verdict == ReplyVerdict::LinkLost)
        m_brokenOff = verdict;
    return verdict;
}

bool Poller::linkLost() const
{
    return m_brokenOff == ReplyVerdict::LinkLost;
}

void Poller::note(const RegisterRange& range, ReplyVerdict verdict)
{
    for (int index = 0; index < range.count; ++index)
        m_problems.insert(range.nameOf(index), verdict);
}

QVector<quint32> Poller::values(const RegisterRange& range) const
{
    return m_loop.session().values(range);
}

std::optional<ReplyVerdict> Poller::problemOf(const RegisterRange& range, int index) const
{
    const auto found = m_problems.constFind(range.nameOf(index));
    if (found != m_problems.constEnd())
        return *found;
    if (!m_brokenOff)
        return std::nullopt;
    const RegisterRange one = range.part(index, 1);
    const bool wasRead =
        std::any_of(m_read.begin(), m_read.end(),
                    [&one](const RegisterRange& block) { return isInside(one, block); });
    return wasRead ? std::nullopt : m_brokenOff;
}

}  // namespace fxtools
