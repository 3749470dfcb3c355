// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What must hold when an exchange of the soak has ended.

#include "soak.h"

namespace fxsoak {

namespace {

constexpr int mostFindings = 10;

quint32 word(const std::vector<quint16>& words, size_t at, int bits)
{
    return bits == bitsPerWord ? words[at]
                               : words[at] | static_cast<quint32>(words[at + 1]) << bitsPerWord;
}

}  // namespace

void Soak::check(const fxtools::Exchange& exchange)
{
    ++m_counts.ended;
    m_counts.failed += exchange.hasFailed();
    expect(exchange.hasFailed() == (exchange.verdict != fxtools::ReplyVerdict::Good),
           QStringLiteral("the driver takes a reply otherwise than it is"));
    switch (exchange.kind) {
    case fxtools::ExchangeKind::Write:
        return checkWrite(exchange);
    case fxtools::ExchangeKind::ConditionalRead:
    case fxtools::ExchangeKind::CyclicRead:
        return checkRead(exchange);
    case fxtools::ExchangeKind::RecipeDownload:
    case fxtools::ExchangeKind::RecipeUpload:
        return checkRecipe(exchange);
    }
}

void Soak::checkRead(const fxtools::Exchange& exchange)
{
    if (exchange.hasFailed())
        return;
    const VARIABLE& request = exchange.frame.variable;
    const fxtools::RegisterType& type = *m_catalogue.find(request.registerType);
    const int registers = type.isBit() ? bitsPerByte * request.count : request.count;
    checkCache({type, request.stationNo, request.addressIndex, registers});
}

void Soak::checkWrite(const fxtools::Exchange& exchange)
{
    const VARIABLE& request = exchange.frame.variable;
    if (m_book.isEmpty() || m_book.next().type != request.registerType ||
        m_book.next().first != request.addressIndex || m_book.next().count != request.count)
        return expect(false, QStringLiteral("a write went out of turn"));
    const BookedWrite write = m_book.next();
    m_book.endNext();
    ++(exchange.hasFailed() ? m_counts.writesFailed : m_counts.writesConfirmed);
    for (int i = 0; i < write.values.size() && !exchange.hasFailed(); ++i)
        checkConfirmed(write.type, write.first + i, write.values[i]);
}

// The PLC holds what the frame carried. The cache holds what the host wrote last to the register:
// the same, unless a later write took an earlier place in the queue; then the next poll mends it.
void Soak::checkConfirmed(const QString& typeName, int number, quint32 value)
{
    const PlcRun& run = plcRun(typeName);
    const quint32 held = plcValue(m_line.plc().memory(), run, number, Side::Written);
    expect(held == value, QStringLiteral("%1%2 was confirmed, and the PLC holds %3 instead of %4")
                              .arg(typeName)
                              .arg(number)
                              .arg(held)
                              .arg(value));
    const fxtools::RegisterType& type = *m_catalogue.find(typeName);
    if (run.isBit() || m_book.mayCover(type, number))
        return;
    const quint32 cached = m_session.values({type, 1, number, 1}).first();
    const quint32 last = m_book.lastWritten(typeName, number);
    expect(cached == last,
           QStringLiteral("%1%2 was confirmed, and the cache holds %3 instead of %4")
               .arg(typeName)
               .arg(number)
               .arg(cached)
               .arg(last));
    m_counts.valuesRight += cached == last;
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
        m_recipe->nextWord += static_cast<size_t>(entry.type.driverCount(entry.count));
        if (++m_recipe->next < m_recipe->entries.size())
            return expect(m_session.recipeRuns(m_recipe->direction),
                          QStringLiteral("a recipe ended before its last entry"));
    }
    expect(!m_session.recipeRuns(m_recipe->direction),
           QStringLiteral("a recipe did not end with its last entry"));
    ++(exchange.hasFailed() ? m_counts.recipesFailed : m_counts.recipesDone);
    m_recipe.reset();
}

void Soak::checkRecipeWords(const fxtools::RegisterRange& entry, Side side)
{
    const PlcRun& run = plcRun(entry.type.name);
    size_t at = m_recipe->nextWord;
    for (int number = entry.first; number < entry.first + entry.count; ++number) {
        const quint32 held = plcValue(m_line.plc().memory(), run, number, side);
        const quint32 own = word(m_session.recipeWords(), at, run.bits);
        expect(held == own, QStringLiteral("recipe word %1 is %2, and the PLC's %3%4 is %5")
                                .arg(at)
                                .arg(own)
                                .arg(entry.type.name)
                                .arg(number)
                                .arg(held));
        at += static_cast<size_t>(run.bits / bitsPerWord);
        m_counts.valuesRight += held == own;
    }
}

void Soak::checkCache(const fxtools::RegisterRange& range)
{
    if (m_sumIsForged) {
        ++m_counts.sumsForged;
        return;
    }
    const PlcRun& run = plcRun(range.type.name);
    const QVector<quint32> values = m_session.values(range);
    for (int i = 0; i < values.size(); ++i) {
        const int number = range.first + i;
        if (m_book.mayCover(range.type, number)) {
            ++m_counts.valuesWaiting;
            continue;
        }
        const quint32 held = plcValue(m_line.plc().memory(), run, number, Side::Read);
        expect(values[i] == held,
               QStringLiteral("wrong value: %1%2 is %3, and the driver took %4 for good")
                   .arg(range.type.name)
                   .arg(number)
                   .arg(held)
                   .arg(values[i]));
        m_counts.valuesRight += values[i] == held;
    }
}

void Soak::expect(bool good, const QString& finding)
{
    if (good || m_findings.size() >= mostFindings)
        return;
    m_findings.append(QStringLiteral("exchange %1: ").arg(m_counts.ended) + finding);
}

}  // namespace fxsoak
