// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Whole commands as fxhost runs them, in the middle of all else: what each says at its end must be
// what the exchanges of it came to.

#include "soak.h"

namespace fxsoak {

namespace {

constexpr int mostTriesOfACommand = 5000;  // of its frames
constexpr int mostTriesWithoutFault = 4;

bool isAmong(const QVector<fxtools::RegisterRange>& ranges, const BookedRequest& write)
{
    return std::any_of(ranges.begin(), ranges.end(), [&](const fxtools::RegisterRange& range) {
        return range.first == write.first && range.count == write.values.size();
    });
}

}  // namespace

// Nothing of the kind may wait already: a command takes what ends for its own.
bool Soak::command(Command command)
{
    if ((command == Command::Read && !m_reads.isEmpty()) ||
        (command == Command::Write && !m_book.isEmpty()) ||
        (command == Command::Recipe && m_othersFrameRepeats))
        return false;
    m_endedWrites.clear();
    m_commandEndsBy = mostTriesOfACommand;
    const bool isDone = command == Command::Write    ? writeCommand()
                        : command == Command::Recipe ? recipeCommand()
                                                     : readCommand(command);
    m_commandEndsBy.reset();
    ++(isDone ? m_counts.commandsDone : m_counts.commandsFailed);
    if (!m_line.isOpen())
        reconnect();
    if (m_isInterrupted)
        restartHost();
    else
        planAnew();  // most leave a small one
    return isDone;
}

// On a slow line the time-out has to grow first: a request may take longer than a fixed one.
void Soak::runEveryCommand()
{
    const int baud = m_world.plc.timing.baud;
    if (baud > 0 && baud < 9600 && m_world.timeout.floorMs == m_world.timeout.ceilingMs)
        return;
    for (int number = 0; number < commandCount; ++number) {
        bool isDone = false;
        for (int tries = 0; tries < mostTriesWithoutFault && !isDone; ++tries)
            isDone = command(static_cast<Command>(number));
        expect(isDone, QStringLiteral("command %1 fails without a fault").arg(number));
    }
}

bool Soak::readCommand(Command command)
{
    const fxtools::RegisterRange range = someLongRange(someRun());
    note(QStringLiteral("a command reads ") + range.text());
    if (command == Command::ReadBack) {  // which forgets everything
        m_book.keepFirst(0);
        m_reads.keepFirst(0);
        m_line.forgetAttempts();
    }
    const QVector<fxtools::RegisterRange> parts =
        range.cut(range.type.mostInFrame(m_world.session.wordsPerFrame));
    for (const fxtools::RegisterRange& part : parts)
        m_reads.add(part);
    const qint64 doneBefore = m_counts.oneOffsDone;
    const fxtools::ReplyVerdict verdict = command == Command::Read
                                              ? fxtools::readOnce(*m_loop, range)
                                              : fxtools::readBack(*m_loop, range);
    const bool isDone = m_counts.oneOffsDone - doneBefore == parts.size();
    expect((verdict == fxtools::ReplyVerdict::Good) == isDone,
           QStringLiteral("a command calls its one-off reads otherwise than they ended"));
    m_reads.keepFirst(1);  // that still waits
    return isDone;
}

bool Soak::writeCommand()
{
    const fxtools::RegisterRange range = someLongRange(someWritableRun(false));
    const QVector<quint32> values = someValues(range);
    note(QStringLiteral("a command writes ") + range.text());
    m_book.add(range, values);
    const int frames = m_book.size();
    m_isWriting = true;
    const fxtools::WriteOutcome outcome = fxtools::writeRegisters(*m_loop, range, values);
    m_isWriting = false;
    const bool haveFailed = std::any_of(m_endedWrites.begin(), m_endedWrites.end(),
                                        [](const EndedWrite& ended) { return !ended.isConfirmed; });
    if (!m_book.isEmpty() && wasCarriedOut())
        m_endedWrites.append({m_book.next(), false, true});  // in flight
    if (range.type.width == fxtools::RegisterWidth::DoubleWord)
        m_book.keepFirst(haveFailed ? 0 : 1);  // the others were never queued
    checkOutcome(range, outcome, frames);
    return outcome.isGood();
}

// Every frame is where it belongs: confirmed, possibly done, or neither and not carried out.
void Soak::checkOutcome(const fxtools::RegisterRange& range, const fxtools::WriteOutcome& outcome,
                        int frames)
{
    int confirmed = 0;
    for (const EndedWrite& ended : m_endedWrites) {
        confirmed += ended.isConfirmed;
        expect(isAmong(outcome.acknowledged, ended.write) == ended.isConfirmed,
               QStringLiteral("a command calls a write otherwise than it ended"));
        expect(ended.isConfirmed || !ended.isCarriedOut || isAmong(outcome.uncertain, ended.write),
               QStringLiteral("a write was carried out, and the command says it was not"));
    }
    expect(outcome.frames == frames && outcome.isGood() == (confirmed == frames),
           QStringLiteral("a command calls a write of %1 otherwise than its %2 of %3 frames ended")
               .arg(range.text())
               .arg(confirmed)
               .arg(frames));
}

bool Soak::recipeCommand()
{
    m_recipe = someRecipe();
    note(QStringLiteral("a command transfers it"));
    const QVector<fxtools::RegisterRange> entries = m_recipe->entries;
    const qint64 doneBefore = m_counts.recipeEntries;
    m_isCarriedOut = false;
    const fxtools::RecipeOutcome outcome =
        fxtools::transferRecipe(*m_loop, m_recipe->direction, entries, [](int, int) {});
    const qint64 done = m_counts.recipeEntries - doneBefore;
    expect(outcome.transferred == done && outcome.isGood() == (done == entries.size()),
           QStringLiteral("a command calls a recipe otherwise than its %1 of %2 entries ended")
               .arg(done)
               .arg(entries.size()));
    expect(outcome.isGood() || outcome.isUncertain || !m_isCarriedOut,
           QStringLiteral("a recipe entry was carried out, and the command says it was not"));
    if (m_recipe) {  // the command has given it up
        m_line.forgetAttempts();
        m_recipe.reset();
        ++m_counts.recipesAbandoned;
    }
    return outcome.isGood();
}

}  // namespace fxsoak
