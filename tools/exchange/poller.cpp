// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/poller.h"

#include "tools/exchange/blocks.h"

#include <algorithm>

namespace fxtools {

namespace {

constexpr int cyclesUntilAskedAgain = 50;

// A range counted in what can be read alone: a register, or a byte of bits.
struct Units
{
    explicit Units(const RegisterRange& range)
        : size(range.type.isBit() ? bitsPerByte : 1), first(range.first / size),
          last((range.first + range.count - 1) / size)
    {}

    int size;
    int first;
    int last;
};

// Nothing of it could be read, or would be of use, without the rest.
bool isIndivisible(const RegisterRange& range)
{
    const Units units(range);
    return units.first == units.last || range.count <= range.together;
}

// The registers before the middle of a range that is divisible.
int halfOf(const RegisterRange& range)
{
    const Units units(range);
    return (units.first + units.last + 1) / 2 * units.size - range.first;
}

}  // namespace

Poller::Poller(ExchangeLoop& loop, const RegisterCatalogue& catalogue,
               const QVector<RegisterRange>& ranges, const Planner& planner, Turns turns)
    : m_loop(loop), m_catalogue(catalogue), m_plan(loop, planner), m_turns(std::move(turns))
{
    for (const RegisterRange& range : ranges) {
        if (range.together > 1)
            m_wide += range.cut(range.together);
        else
            m_ranges.append(range);
    }
    m_ranges += m_wide;
    m_planned = m_ranges;
    replan();
    for (const RegisterRange& value : qAsConst(m_wide))
        requireOneReply(value, loop.session().settings().wordsPerFrame);
}

// One-off reads are sent only between the reads of the plan. If the plan becomes empty, a piece
// goes into it; alone it cannot be merged with anything.
void Poller::replan()
{
    if (m_planned.isEmpty() && !m_pieces.isEmpty())
        m_planned.append(m_pieces.takeFirst());
    m_plan.plan(m_planned);
}

RoundEnd Poller::poll()
{
    const bool readsSomething = beginCycle();
    m_read.clear();
    m_end = RoundEnd::Done;
    for (const Aside& aside : m_aside)
        note(aside.range, aside.reason);
    if (readsSomething)
        pollPlan();
    if (!isStopped())
        pollPieces();
    if (m_cycle % cyclesUntilAskedAgain == cyclesUntilAskedAgain - 1 && !isStopped())
        askAsideAgain();
    ++m_cycle;
    return m_end;
}

// A turn that has ended early goes on first.
bool Poller::beginCycle()
{
    if (!m_isInTurns) {
        m_problems.clear();
        return true;
    }
    if (isStopped() && m_isTurnPlanned)
        return true;
    const QVector<RegisterRange> turn = m_turns.next();
    m_isTurnPlanned = !turn.isEmpty();
    if (m_isTurnPlanned)
        m_plan.plan(turn);
    return m_isTurnPlanned;
}

void Poller::pollPlan()
{
    QVector<RegisterRange> refused;
    const Round round = m_plan.poll([&](const Round& merge) {
        for (const Exchange& exchange : merge.ended) {
            if (exchange.kind == ExchangeKind::CyclicRead)
                noteBlock(exchange, refused);
        }
    });
    m_end = round.end;
    m_unasked = round.verdict();
    if (m_turns.next && !m_isInTurns && !isStopped()) {
        m_isInTurns = true;
        planEverything();
    }
    for (const RegisterRange& block : refused)
        halve(block);
}

void Poller::noteBlock(const Exchange& exchange, QVector<RegisterRange>& refused)
{
    const RegisterRange block = blockRange(m_catalogue, exchange.frame.variable);
    if (!exchange.hasFailed()) {
        noteRead(block);
        return;
    }
    note(block, exchange.verdict);
    if (exchange.verdict == ReplyVerdict::Refused)
        refused.append(block);
}

// What one reply has brought.
void Poller::noteRead(const RegisterRange& registers)
{
    m_read.append(registers);
    for (int index = 0; index < registers.count; ++index)
        m_problems.remove(registers.identity(index));
    for (const RegisterRange& value : qAsConst(m_wide)) {
        if (!isInside(value, registers))
            continue;
        m_problems.remove(value.text());
        m_wholeOnes.insert(value.text(), m_loop.session().values(value));
    }
}

void Poller::pollPieces()
{
    const QVector<RegisterRange> pieces = m_pieces;
    m_pieces.clear();
    for (const RegisterRange& piece : pieces) {
        const ReplyVerdict verdict = readPiece(piece);
        if (verdict == ReplyVerdict::Refused)
            readOrHalve(piece);  // a part that was good before is refused now
        else
            keep(piece, verdict);
    }
}

bool Poller::wasReadAtOnce(const RegisterRange& registers) const
{
    return std::any_of(m_read.begin(), m_read.end(), [&registers](const RegisterRange& block) {
        return isInside(registers, block);
    });
}

void Poller::askAsideAgain()
{
    if (m_planned.isEmpty()) {
        m_aside.clear();  // one-off reads need a plan: put everything back into it
        planEverything();
        return;
    }
    const QVector<Aside> asides = m_aside;
    m_aside.clear();
    for (const Aside& aside : asides) {
        const ReplyVerdict verdict = readPiece(aside.range);
        if (verdict == ReplyVerdict::Good)
            m_pieces.append(aside.range);
        else
            m_aside.append({aside.range, isStopped() ? aside.reason : verdict});
    }
    if (m_isInTurns || (m_aside.isEmpty() && !m_pieces.isEmpty()))
        planEverything();
}

void Poller::planEverything()
{
    m_planned = m_ranges;
    m_pieces.clear();
    if (!m_isInTurns) {
        replan();
        return;
    }
    QVector<RegisterRange> unreadable;
    for (const Aside& aside : qAsConst(m_aside))
        unreadable.append(aside.range);
    m_turns.leaveOut(unreadable);
    m_isTurnPlanned = false;
}

void Poller::readEverythingAgain()
{
    m_isInTurns = false;
    m_aside.clear();
    planEverything();
}

// Removes the registers of a refused block from the plan, and finds out which of them can be read.
void Poller::halve(const RegisterRange& block)
{
    for (const RegisterRange& piece : takeFromPlan(block))
        readOrHalve(piece);
    if (m_isInTurns)
        planEverything();
    else
        replan();
}

// A range may span several blocks; the parts outside this one stay in the plan, and so does a value
// that only shares registers with this block: another block brings all of it.
QVector<RegisterRange> Poller::takeFromPlan(const RegisterRange& block)
{
    QVector<RegisterRange> taken;
    QVector<RegisterRange> left;
    for (const RegisterRange& range : m_planned) {
        const bool isWide = range.together > 1;
        if (isWide ? !isInside(range, block) : !overlap(range, block)) {
            left.append(range);
            continue;
        }
        const int from = std::max(block.first - range.first, 0);
        const int to = std::min(block.first + block.count - range.first, range.count);
        taken.append(range.part(from, to - from));
        if (from > 0)
            left.append(range.part(0, from));
        if (to < range.count)
            left.append(range.part(to, range.count - to));
    }
    m_planned = left;
    return taken;
}

void Poller::readOrHalve(const RegisterRange& piece)
{
    const ReplyVerdict verdict = readPiece(piece);
    if (verdict == ReplyVerdict::Good || isStopped()) {
        keep(piece, verdict);
    } else if (isIndivisible(piece)) {
        m_aside.append({piece, verdict});
        note(piece, verdict);
    } else {
        const int half = halfOf(piece);
        readOrHalve(piece.part(0, half));
        readOrHalve(piece.part(half, piece.count - half));
    }
}

void Poller::keep(const RegisterRange& piece, ReplyVerdict verdict)
{
    m_pieces.append(piece);
    if (verdict == ReplyVerdict::Good)
        noteRead(piece);
    else
        note(piece, verdict);
}

// Reads nothing more once the cycle is stopped.
ReplyVerdict Poller::readPiece(const RegisterRange& piece)
{
    if (isStopped())
        return m_unasked;
    const ReplyVerdict verdict = readOnce(m_loop, piece);
    if (verdict == ReplyVerdict::LinkLost)
        m_end = RoundEnd::LinkLost;
    else if (verdict == ReplyVerdict::Interrupted)
        m_end = RoundEnd::Interrupted;
    else if (m_loop.hasGoneSilent())
        m_end = RoundEnd::NoAnswer;
    if (isStopped())
        m_unasked = verdict;
    return verdict;
}

bool Poller::isStopped() const
{
    return m_end != RoundEnd::Done;
}

void Poller::note(const RegisterRange& range, ReplyVerdict verdict)
{
    if (range.together > 1) {
        m_problems.insert(range.text(), verdict);  // a part of it may be good
        return;
    }
    for (int index = 0; index < range.count; ++index)
        m_problems.insert(range.identity(index), verdict);
    for (const RegisterRange& value : qAsConst(m_wide)) {
        if (overlap(value, range))
            m_problems.insert(value.text(), verdict);
    }
}

QVector<quint32> Poller::values(const RegisterRange& range) const
{
    if (range.together == 1)
        return m_loop.session().values(range);
    QVector<quint32> values;
    for (const RegisterRange& value : range.cut(range.together))
        values += m_wholeOnes.value(value.text(), QVector<quint32>(value.count));
    return values;
}

std::optional<ReplyVerdict> Poller::problemOf(const RegisterRange& range, int index) const
{
    const int wide = range.together;
    const RegisterRange value = range.part(index - index % wide, wide);
    const auto found = m_problems.constFind(wide > 1 ? value.text() : value.identity(0));
    if (found != m_problems.constEnd())
        return *found;
    if (m_end == RoundEnd::Done)
        return std::nullopt;
    return wasReadAtOnce(value) ? std::nullopt : std::optional(m_unasked);
}

}  // namespace fxtools
