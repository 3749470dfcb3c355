// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What must hold after each exchange of the soak.

#include "soak.h"

#include <QHash>

namespace fxsoak {

namespace {

constexpr int mostFindings = 10;

quint32 word(const std::vector<quint16>& words, size_t at, int bits)
{
    return bits == bitsPerWord ? words[at]
                               : words[at] | static_cast<quint32>(words[at + 1]) << bitsPerWord;
}

// The first of the values that the PLC did not hold, "" if it held them all.
QString difference(const fxsim::PlcMemory& memory, const QVector<HeldValue>& values, Side side)
{
    for (const HeldValue& value : values) {
        const quint32 held = plcValue(memory, plcRun(value.type), value.number, side);
        if (held != value.value) {
            return QStringLiteral("%1%2 was %3 in the PLC and not %4")
                .arg(value.type)
                .arg(value.number)
                .arg(held)
                .arg(value.value);
        }
    }
    return {};
}

}  // namespace

void Soak::check(const fxtools::Exchange& exchange)
{
    const bool isAccepted = exchange.answer == fxtools::DriverAnswer::Accepted;
    m_digest = m_digest * 0x100000001B3 ^ qHash(exchange.reply) ^
               static_cast<quint64>(m_line.nowUs()) << 8 ^ static_cast<quint64>(exchange.verdict);
    note(QStringLiteral("= ") + fxtools::kindText(exchange.kind) + QStringLiteral(": ") +
         fxtools::verdictText(exchange.verdict));
    expect(isAccepted == (exchange.verdict == fxtools::ReplyVerdict::Good),
           QStringLiteral("the driver takes a reply otherwise than it is"));
    m_isCarriedOut = !isAccepted && wasCarriedOut();
    if (!isAccepted)
        checkUncertainty(exchange);
    m_othersFrameRepeats = !exchange.hasEnded() &&
                           exchange.kind != fxtools::ExchangeKind::RecipeDownload &&
                           exchange.kind != fxtools::ExchangeKind::RecipeUpload;
    if (!exchange.hasEnded())
        return;
    ++m_counts.ended;
    m_counts.failed += exchange.hasFailed();
    switch (exchange.kind) {
    case fxtools::ExchangeKind::Write:
        return checkWrite(exchange);
    case fxtools::ExchangeKind::ConditionalRead:
        checkOneOffRead(exchange);
        return checkRead(exchange);
    case fxtools::ExchangeKind::CyclicRead:
        return checkRead(exchange);
    case fxtools::ExchangeKind::RecipeDownload:
    case fxtools::ExchangeKind::RecipeUpload:
        return checkRecipe(exchange);
    }
}

// A write that was carried out without an ACK that the host could take is said to be uncertain.
void Soak::checkUncertainty(const fxtools::Exchange& exchange)
{
    m_counts.writesUncertain += m_isCarriedOut && exchange.mayBeDone;
    expect(!m_isCarriedOut || exchange.mayBeDone,
           QStringLiteral("a write was carried out, and is said not to be"));
}

bool Soak::wasCarriedOut() const
{
    const std::vector<ShakenLine::Attempt>& attempts = m_line.attempts();
    return std::any_of(attempts.begin(), attempts.end(),
                       [](const ShakenLine::Attempt& attempt) { return attempt.wasWritten; });
}

// One that fails takes all that wait along.
void Soak::checkOneOffRead(const fxtools::Exchange& exchange)
{
    if (m_reads.isEmpty() || !m_reads.next().isFor(exchange.frame.variable))
        return expect(false, QStringLiteral("a one-off read went out of turn"));
    m_reads.endNext();
    ++(exchange.hasFailed() ? m_counts.oneOffsFailed : m_counts.oneOffsDone);
    if (exchange.hasFailed())
        m_reads.keepFirst(0);
}

void Soak::checkRead(const fxtools::Exchange& exchange)
{
    if (exchange.hasFailed())
        return;
    const VARIABLE& request = exchange.frame.variable;
    const fxtools::RegisterType& type = *m_catalogue->find(request.registerType);
    const int registers = type.isBit() ? bitsPerByte * request.count : request.count;
    checkCache({type, request.stationNo, request.addressIndex, registers});
}

void Soak::checkWrite(const fxtools::Exchange& exchange)
{
    if (m_book.isEmpty() || !m_book.next().isFor(exchange.frame.variable))
        return expect(false, QStringLiteral("a write went out of turn"));
    const BookedRequest write = m_book.next();
    m_book.endNext();
    if (m_commandEndsBy)
        m_endedWrites.append({write, !exchange.hasFailed(), wasCarriedOut()});
    ++(exchange.hasFailed() ? m_counts.writesFailed : m_counts.writesConfirmed);
    if (!exchange.hasFailed())
        checkConfirmed(write);
}

// The PLC holds what the frame carried. The cache holds what the host wrote last to the register:
// the same, unless a later write took an earlier place in the queue; then the next poll mends it.
void Soak::checkConfirmed(const BookedRequest& write)
{
    QVector<HeldValue> written;
    for (int i = 0; i < write.values.size(); ++i)
        written.append({write.type, write.first + i, write.values[i]});
    expectHeld(written, Side::Written, QStringLiteral("a write was confirmed"));
    const fxtools::RegisterType& type = *m_catalogue->find(write.type);
    for (const HeldValue& value : written) {
        if (type.isBit() || m_book.mayCover(type, value.number))
            continue;
        const quint32 cached = m_session->values({type, 1, value.number, 1}).first();
        expect(cached == m_book.lastWritten(value.type, value.number),
               QStringLiteral("a write was confirmed, and the cache holds %1%2 as %3")
                   .arg(value.type)
                   .arg(value.number)
                   .arg(cached));
    }
}

void Soak::checkRecipe(const fxtools::Exchange& exchange)
{
    if (!m_recipe)
        return expect(false, QStringLiteral("a recipe goes on behind its end"));
    const bool isDownload = m_recipe->direction == fxtools::RecipeDirection::Download;
    const fxtools::RegisterRange entry = m_recipe->entries[m_recipe->next];
    expect(exchange.frame.variable.addressIndex == entry.first &&
               exchange.frame.variable.registerType == entry.type.name,
           QStringLiteral("a recipe entry went out of turn"));
    if (!exchange.hasFailed()) {
        if (isDownload || !m_sumIsForged)
            checkRecipeWords(entry, isDownload ? Side::Written : Side::Read);
        if (!isDownload)
            checkCache(entry);
        ++m_counts.recipeEntries;
        m_recipe->nextWord += static_cast<size_t>(entry.type.driverCount(entry.count));
        if (++m_recipe->next < m_recipe->entries.size())
            return expect(m_session->recipeRuns(m_recipe->direction),
                          QStringLiteral("a recipe ended before its last entry"));
    }
    expect(!m_session->recipeRuns(m_recipe->direction),
           QStringLiteral("a recipe did not end with its last entry"));
    ++(exchange.hasFailed() ? m_counts.recipesFailed : m_counts.recipesDone);
    m_recipe.reset();
}

void Soak::checkRecipeWords(const fxtools::RegisterRange& entry, Side side)
{
    const int bits = plcRun(entry.type.name).bits;
    QVector<HeldValue> own;
    size_t at = m_recipe->nextWord;
    for (int number = entry.first; number < entry.first + entry.count; ++number) {
        own.append({entry.type.name, number, word(m_session->recipeWords(), at, bits)});
        at += static_cast<size_t>(bits / bitsPerWord);
    }
    expectHeld(own, side, QStringLiteral("a recipe entry was transferred"));
}

void Soak::checkCache(const fxtools::RegisterRange& range)
{
    if (m_sumIsForged) {
        ++m_counts.sumsForged;
        return;
    }
    const QVector<quint32> values = m_session->values(range);
    QVector<HeldValue> shown;
    for (int i = 0; i < values.size(); ++i) {
        if (m_book.mayCover(range.type, range.first + i))
            ++m_counts.valuesWaiting;
        else
            shown.append({range.type.name, range.first + i, values[i]});
    }
    expectHeld(shown, Side::Read, QStringLiteral("wrong value"));
}

// All of the values at once, when one of the frames of this exchange had come to the PLC.
void Soak::expectHeld(const QVector<HeldValue>& values, Side side, const QString& what)
{
    QString why = QStringLiteral("no frame reached the PLC");
    for (const ShakenLine::Attempt& attempt : m_line.attempts()) {
        if (side == Side::Written && !attempt.wasWritten)
            continue;
        why = difference(attempt.memory, values, side);
        if (why.isEmpty())
            break;
    }
    m_counts.valuesRight += why.isEmpty() ? values.size() : 0;
    expect(why.isEmpty(), what + QStringLiteral(": ") + why);
}

void Soak::expect(bool good, const QString& finding)
{
    if (good || m_findings.size() >= mostFindings)
        return;
    note(QStringLiteral("WRONG ") + finding);
    m_findings.append(QStringLiteral("exchange %1: ").arg(m_counts.ended) + finding);
}

SoakCounts Soak::counts()
{
    SoakCounts counts = m_counts;
    const fxsim::Statistics& plc = m_line.plc().statistics();
    counts.framesSent += m_loop->statistics().total().sent;
    counts.linksLost += m_loop->statistics().linksLost;
    counts.writesReplaced += m_book.replaced();
    counts.cutsWhileSending = m_line.cuts(true);
    counts.cutsWhileReceiving = m_line.cuts(false);
    counts.powerCycles = plc.powerCycles;
    counts.simulatedUs = m_line.nowUs();
    std::copy(plc.faults.begin(), plc.faults.end(), counts.faults.begin());
    return counts;
}

void SoakCounts::add(const SoakCounts& more)
{
    for (const auto count : {&SoakCounts::ended,
                             &SoakCounts::failed,
                             &SoakCounts::valuesRight,
                             &SoakCounts::valuesWaiting,
                             &SoakCounts::sumsForged,
                             &SoakCounts::writesConfirmed,
                             &SoakCounts::writesFailed,
                             &SoakCounts::writesUncertain,
                             &SoakCounts::writesReplaced,
                             &SoakCounts::recipesDone,
                             &SoakCounts::recipesFailed,
                             &SoakCounts::recipesAbandoned,
                             &SoakCounts::recipeEntries,
                             &SoakCounts::oneOffsDone,
                             &SoakCounts::oneOffsFailed,
                             &SoakCounts::commandsDone,
                             &SoakCounts::commandsFailed,
                             &SoakCounts::changes,
                             &SoakCounts::framesSent,
                             &SoakCounts::linksLost,
                             &SoakCounts::cutsWhileSending,
                             &SoakCounts::cutsWhileReceiving,
                             &SoakCounts::powerCycles,
                             &SoakCounts::stops,
                             &SoakCounts::restarts,
                             &SoakCounts::plans,
                             &SoakCounts::simulatedUs})
        this->*count += more.*count;
    for (size_t kind = 0; kind < faults.size(); ++kind)
        faults[kind] += more.faults[kind];
}

}  // namespace fxsoak
