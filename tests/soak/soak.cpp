// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See soak.h.

#include "soak.h"

namespace fxsoak {

namespace {

constexpr int mostFindings = 10;
constexpr std::size_t mostBookedWrites = 200;  // below the driver's 513, which drops the last
constexpr int stepsToFinish = 100000;
constexpr int bitsPerByte = 8;
constexpr int bitsPerWord = 16;

// How often the host and the PLC's program do something between two exchanges.
constexpr double plcChanges = 0.5;
constexpr double hostWrites = 0.08;
constexpr double oneOffReads = 0.05;
constexpr double recipes = 0.02;
constexpr double plansAnew = 0.001;
constexpr double writesInCallback = 0.01;

fxsim::Settings plcSettings(const SoakSettings& settings)
{
    fxsim::Settings plc;
    plc.timing.baud = 9600;
    plc.timing.scanMs = 10;
    plc.faults = settings.faults;
    plc.seed = settings.seed;
    return plc;
}

fxhost::LoopSettings onTimeOf(const SoakLine& line)
{
    fxhost::LoopSettings settings;
    settings.clockUs = [&line] { return line.nowUs(); };
    return settings;
}

quint32 word(const std::vector<quint16>& words, size_t at, int bits)
{
    return bits == bitsPerWord ? words[at]
                               : words[at] | static_cast<quint32>(words[at + 1]) << bitsPerWord;
}

}  // namespace

Soak::Soak(const fxhost::DriverLibrary& library, const SoakSettings& settings)
    : m_catalogue(library), m_line(plcSettings(settings)), m_session(library, {}),
      m_loop(m_session, m_line, onTimeOf(m_line)), m_random(settings.seed)
{
    fxsim::PlcMemory memory;
    memory.setMirrors({specialRegisters()});
    m_line.plc().powerOnWith(memory, 0);
    // The queue ends the writes of a callback as any others.
    m_session.onValueChanged = [this](const QString&, int, int) {
        ++m_counts.changes;
        if (!m_isWriting && chance(writesInCallback) && m_book.size() < mostBookedWrites)
            write();
    };
}

void Soak::run(qint64 exchanges)
{
    while (m_counts.ended < exchanges && m_findings.isEmpty()) {
        act();
        exchange();
    }
}

void Soak::finish()
{
    m_session.onValueChanged = nullptr;
    for (int step = 0; step < stepsToFinish && m_findings.isEmpty(); ++step) {
        if (m_book.isEmpty() && !m_recipe)
            return;
        exchange();
    }
    if (!m_findings.isEmpty())
        return;
    expect(m_book.isEmpty(), QStringLiteral("%1 writes never ended").arg(m_book.size()));
    expect(!m_recipe, QStringLiteral("a recipe never ended"));
}

void Soak::act()
{
    if (m_counts.ended == 0 || chance(plansAnew)) {
        QVector<fxhost::RegisterRange> plan;
        for (const PlcRun& run : plcRuns())
            plan.append({*m_catalogue.find(run.type), 1, run.first, run.count});
        m_session.setPlan(plan);
    }
    if (chance(plcChanges))
        changePlc();
    if (chance(hostWrites) && m_book.size() < mostBookedWrites)
        write();
    if (chance(oneOffReads))
        m_session.queueRead(someRange(plcRuns()[static_cast<size_t>(below(plcRunCount))]));
    if (!m_recipe && chance(recipes))
        startRecipe();
}

void Soak::changePlc()
{
    const PlcRun& run = plcRuns()[static_cast<size_t>(below(plcRunCount))];
    for (int changes = below(4); changes >= 0; --changes)
        setPlcValue(m_line.plc().memory(), run, run.first + below(run.count), someBits(run.bits));
}

// Into the book first: the driver may call back while it takes the write.
void Soak::write()
{
    const fxhost::RegisterRange range = someRange(someWritableRun(false));
    const QVector<quint32> values = someValues(range);
    m_book.add(range, values);
    m_isWriting = true;
    m_session.write(range, values);
    m_isWriting = false;
}

void Soak::startRecipe()
{
    RunningRecipe recipe;
    recipe.direction =
        chance(0.5) ? fxhost::RecipeDirection::Download : fxhost::RecipeDirection::Upload;
    for (int entries = 1 + below(6); entries > 0; --entries)
        recipe.entries.append(someRange(someWritableRun(true)));
    std::vector<quint16>& words = m_session.recipeWords();
    for (size_t at = 0; at < 6 * 32; ++at)
        words[at] = static_cast<quint16>(m_random());
    m_recipe = recipe;
    m_session.startRecipe(recipe.direction, recipe.entries);
}

void Soak::exchange()
{
    const std::optional<fxhost::Exchange> exchange = m_loop.step();
    expect(exchange.has_value(), QStringLiteral("there is a plan, and nothing to send"));
    if (!m_line.isOpen())
        m_line.open();
    if (exchange && exchange->hasEnded())
        check(*exchange);
}

void Soak::check(const fxhost::Exchange& exchange)
{
    ++m_counts.ended;
    m_counts.failed += exchange.hasFailed();
    expect(exchange.hasFailed() == (exchange.verdict != fxhost::ReplyVerdict::Good),
           QStringLiteral("the driver takes a reply otherwise than it is"));
    switch (exchange.kind) {
    case fxhost::ExchangeKind::Write:
        return checkWrite(exchange);
    case fxhost::ExchangeKind::ConditionalRead:
    case fxhost::ExchangeKind::CyclicRead:
        return checkRead(exchange);
    case fxhost::ExchangeKind::RecipeDownload:
    case fxhost::ExchangeKind::RecipeUpload:
        return checkRecipe(exchange);
    }
}

void Soak::checkRead(const fxhost::Exchange& exchange)
{
    if (exchange.hasFailed())
        return;
    const VARIABLE& request = exchange.frame.variable;
    const fxhost::RegisterType& type = *m_catalogue.find(request.registerType);
    const int registers = type.isBit() ? bitsPerByte * request.count : request.count;
    checkCache({type, request.stationNo, request.addressIndex, registers});
}

void Soak::checkWrite(const fxhost::Exchange& exchange)
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
    const fxhost::RegisterType& type = *m_catalogue.find(typeName);
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
    ++m_counts.valuesRight;
}

void Soak::checkRecipe(const fxhost::Exchange& exchange)
{
    if (!m_recipe)
        return expect(false, QStringLiteral("a recipe goes on behind its end"));
    const bool isDownload = m_recipe->direction == fxhost::RecipeDirection::Download;
    const fxhost::RegisterRange entry = m_recipe->entries[m_recipe->next];
    expect(exchange.frame.variable.addressIndex == entry.first &&
               exchange.frame.variable.registerType == entry.type.name,
           QStringLiteral("a recipe entry went out of turn"));
    if (!exchange.hasFailed()) {
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

void Soak::checkRecipeWords(const fxhost::RegisterRange& entry, Side side)
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
        ++m_counts.valuesRight;
    }
}

void Soak::checkCache(const fxhost::RegisterRange& range)
{
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
        ++m_counts.valuesRight;
    }
}

void Soak::expect(bool good, const QString& finding)
{
    if (good || m_findings.size() >= mostFindings)
        return;
    m_findings.append(QStringLiteral("exchange %1: ").arg(m_counts.ended) + finding);
}

bool Soak::chance(double probability)
{
    return std::uniform_real_distribution<>(0, 1)(m_random) < probability;
}

int Soak::below(int limit)
{
    return std::uniform_int_distribution<>(0, limit - 1)(m_random);
}

// Bits start with a byte, since a one-off read does not look for the byte that holds its first.
fxhost::RegisterRange Soak::someRange(const PlcRun& run)
{
    const int step = run.isBit() ? bitsPerByte : 1;
    const int offset = step * below(run.count / step);
    const int most = std::min({run.count - offset, run.mostInFrame(), 16});
    return {*m_catalogue.find(run.type), 1, run.first + offset, 1 + below(most)};
}

const PlcRun& Soak::someWritableRun(bool wordsOnly)
{
    while (true) {
        const PlcRun& run = plcRuns()[static_cast<size_t>(below(plcRunCount))];
        if (run.writable && !(wordsOnly && run.isBit()))
            return run;
    }
}

quint32 Soak::someBits(int bits)
{
    return static_cast<quint32>(m_random()) >> (32 - bits);
}

QVector<quint32> Soak::someValues(const fxhost::RegisterRange& range)
{
    const int bits = plcRun(range.type.name).bits;
    QVector<quint32> values;
    for (int i = 0; i < range.count; ++i)
        values.append(someBits(bits));
    return values;
}

}  // namespace fxsoak
