// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See soak.h: what the host, its user and the PLC's program do. The checks are in soak_checks.cpp.

#include "soak.h"

namespace fxsoak {

namespace {

constexpr int mostBookedWrites = 200;  // below the driver's 513, which drops the last
constexpr size_t mostRecipeWords = 6 * 32;
constexpr int startedAgainMs = 1000;  // at most

// How often the host does something between two exchanges, and the PLC's program within them.
constexpr double plcChanges = 0.1;
constexpr double hostWrites = 0.08;
constexpr double oneOffReads = 0.05;
constexpr double recipes = 0.02;
constexpr double recipesAbandoned = 0.02;
constexpr double plansAnew = 0.005;
constexpr double commands = 0.01;
constexpr double writesInCallback = 0.01;

bool met(fxsim::FaultKind kind, const fxsim::Statistics& before, const fxsim::Statistics& after)
{
    const auto index = static_cast<size_t>(kind);
    return after.faults[index] > before.faults[index];
}

}  // namespace

Soak::Soak(const World& world, unsigned int seed, const Note& note)
    : m_world(world), m_random(seed), m_note(note), m_line(world.plc),
      m_book(world.session.wordsPerFrame)
{
    fxsim::PlcMemory memory;
    memory.setMirrors({specialRegisters()});
    m_line.plc().powerOnWith(memory, 0);
    m_line.setSerial(world.isSerial);
    m_line.onCall = [this] { goOn(); };
    if (note) {
        m_line.plc().setTrace([this](const fxsim::TraceEntry& entry) {
            this->note(QString::fromLatin1(fxsim::traceLine(entry)));
        });
    }
    startHost();
}

void Soak::startHost()
{
    m_library.emplace(QStringLiteral(FX_DRIVER_FILE));
    m_catalogue.emplace(*m_library);
    m_session.emplace(*m_library, m_world.session);
    fxtools::LoopSettings settings = m_line.loopSettings();
    settings.timeout = m_world.timeout;
    settings.isInterrupted = [this] { return m_isInterrupted || !m_findings.isEmpty(); };
    m_loop.emplace(*m_session, m_line, settings);
    m_loop->onExchange = [this](const fxtools::Exchange& exchange) { meet(exchange); };
    m_loop->onLinkLost = [this] {
        reconnect();
        return m_line.isOpen();
    };
    // The queue ends the writes of a callback as any others.
    m_session->onValueChanged = [this](const QString&, int, int) {
        ++m_counts.changes;
        if (m_isStorm && !m_isWriting && happens(writesInCallback))
            write();
    };
    planAnew();
}

// The user has interrupted and starts the program again: it knows nothing of the one before.
void Soak::restartHost()
{
    note(QStringLiteral("the host is started again"));
    ++m_counts.restarts;
    m_counts.framesSent += m_loop->statistics().total().sent;
    m_counts.linksLost += m_loop->statistics().linksLost;
    m_counts.writesReplaced += m_book.replaced();
    m_loop.reset();
    m_session.reset();
    m_catalogue.reset();
    m_library.reset();
    m_book = WriteBook(m_world.session.wordsPerFrame);
    m_recipe.reset();
    m_reads = {};
    m_line.forgetAttempts();
    m_isInterrupted = false;
    m_line.close(fxsim::usPerMs * below(m_random, 2) * below(m_random, startedAgainMs));
    m_line.open();
    startHost();
}

void Soak::reconnect()
{
    while (!m_line.isOpen() && !m_isInterrupted) {
        m_line.open();
        note(QStringLiteral("the link is open again"));
    }
}

void Soak::run(qint64 exchanges)
{
    while (m_counts.ended < exchanges && m_findings.isEmpty()) {
        act();
        exchange();
    }
    if (m_findings.isEmpty())
        calmDown();
}

// All that waits ends, and the whole plan is read without a fault, in not many more exchanges than
// that takes.
void Soak::calmDown()
{
    note(QStringLiteral("all troubles end"));
    m_isStorm = false;
    m_line.plc().setFaults({});
    m_line.plc().setRunning(true, m_line.nowUs());
    const int waiting = m_book.size() + m_reads.size() + (m_recipe ? m_recipe->entries.size() : 0);
    const int enough = 2 * waiting + 3 * m_blocks + 30;
    int goodReads = 0;
    for (int step = 0; step < enough && m_findings.isEmpty(); ++step) {
        const std::optional<fxtools::Exchange> last = exchange();
        const bool isGoodRead = last && last->verdict == fxtools::ReplyVerdict::Good &&
                                last->kind == fxtools::ExchangeKind::CyclicRead;
        goodReads = isGoodRead ? goodReads + 1 : 0;
        if (goodReads >= m_blocks && waitsForNothing())
            return runEveryCommand();
    }
    expect(false, QStringLiteral("no progress in %1 exchanges without a fault: %2 writes wait")
                      .arg(enough)
                      .arg(m_book.size()));
}

std::optional<fxtools::Exchange> Soak::exchange()
{
    std::optional<fxtools::Exchange> exchange = m_loop->step();
    expect(exchange.has_value(), QStringLiteral("there is a plan, and nothing to send"));
    if (exchange && exchange->verdict == fxtools::ReplyVerdict::LinkLost)
        reconnect();
    if (m_isInterrupted)
        restartHost();
    return exchange;
}

void Soak::meet(const fxtools::Exchange& exchange)
{
    m_line.forgetSent();
    const fxsim::Statistics after = m_line.plc().statistics();
    m_sumIsForged = met(fxsim::FaultKind::WrongSum, m_before, after) &&
                    met(fxsim::FaultKind::FlippedBits, m_before, after);
    m_before = after;
    check(exchange);
    if (exchange.hasEnded())
        m_line.forgetAttempts();
    if (m_commandEndsBy)
        expect(--*m_commandEndsBy > 0, QStringLiteral("a command does not end"));
}

// At each call of the host to its link.
void Soak::goOn()
{
    if (happens(plcChanges))
        changePlc();
    if (!m_isStorm)
        return;
    if (happens(m_world.troubles.stopOrRun)) {
        fxsim::Simulator& plc = m_line.plc();
        m_counts.stops += plc.isRunning();
        plc.setRunning(!plc.isRunning(), m_line.nowUs());
        note(plc.isRunning() ? QStringLiteral("RUN") : QStringLiteral("STOP"));
    }
    if (m_line.isOpen() && happens(m_world.troubles.cut)) {
        m_line.cut(below(m_random, 100) / 100.0, below(m_random, 2000) * fxsim::usPerMs);
        note(QStringLiteral("the link is cut"));
    }
    if (happens(m_world.troubles.interrupt)) {
        m_isInterrupted = true;
        note(QStringLiteral("the user interrupts"));
    }
}

void Soak::act()
{
    if (m_counts.ended % m_blocks == 0)
        m_line.rest(m_world.restMs * fxsim::usPerMs);
    if (happens(plansAnew))
        planAnew();
    if (happens(hostWrites))
        write();
    if (happens(oneOffReads))
        queueRead();
    if (!m_recipe && happens(recipes))
        startRecipe();
    else if (m_recipe && !m_othersFrameRepeats && happens(recipesAbandoned))
        abandonRecipe();
    if (!m_recipe && happens(commands))
        command(static_cast<Command>(below(m_random, commandCount)));
}

// All registers, or some.
void Soak::planAnew()
{
    QVector<fxtools::RegisterRange> plan;
    const bool isWhole = happens(0.5);
    for (const PlcRun& run : plcRuns()) {
        const fxtools::RegisterRange all = {*m_catalogue->find(run.type), 1, run.first, run.count};
        if (isWhole)
            plan.append(all);
        else if (happens(0.5))
            plan.append(someRange(run));
    }
    if (plan.isEmpty())
        plan.append(someRange(someRun()));
    m_blocks = m_session->setPlan(plan);
    ++m_counts.plans;
    note(QStringLiteral("a plan of %1 blocks").arg(m_blocks));
}

void Soak::changePlc()
{
    const PlcRun& run = someRun();
    for (int changes = below(m_random, 4); changes >= 0; --changes)
        setPlcValue(m_line.plc().memory(), run, run.first + below(m_random, run.count),
                    someBits(run.bits));
}

// Into the book first: the driver may call back while it takes the write.
void Soak::write()
{
    if (m_book.size() >= mostBookedWrites)
        return;
    const fxtools::RegisterRange range = someRange(someWritableRun(false));
    const QVector<quint32> values = someValues(range);
    m_book.add(range, values);
    m_isWriting = true;
    m_session->write(range, values);
    m_isWriting = false;
    note(QStringLiteral("a write of ") + range.text());
}

void Soak::queueRead()
{
    const fxtools::RegisterRange range = someRange(someRun());
    m_session->queueRead(range);
    m_reads.add(range);
    note(QStringLiteral("a one-off read of ") + range.text());
}

Soak::RunningRecipe Soak::someRecipe()
{
    RunningRecipe recipe;
    recipe.direction =
        happens(0.5) ? fxtools::RecipeDirection::Download : fxtools::RecipeDirection::Upload;
    for (int entries = 1 + below(m_random, 6); entries > 0; --entries)
        recipe.entries.append(someRange(someWritableRun(true)));
    std::vector<quint16>& words = m_session->recipeWords();
    for (size_t at = 0; at < mostRecipeWords; ++at)
        words[at] = static_cast<quint16>(m_random());
    note(QStringLiteral("a recipe of %1 entries").arg(recipe.entries.size()));
    return recipe;
}

void Soak::startRecipe()
{
    m_recipe = someRecipe();
    m_session->startRecipe(m_recipe->direction, m_recipe->entries);
}

// No frame of it follows, not even one that would have been sent again.
void Soak::abandonRecipe()
{
    note(QStringLiteral("the recipe is abandoned"));
    m_loop->abandonRecipe(m_recipe->direction);
    m_line.forgetAttempts();
    m_recipe.reset();
    ++m_counts.recipesAbandoned;
}

// Bits start with a byte, since a one-off read does not look for the byte that holds its first.
fxtools::RegisterRange Soak::someRange(const PlcRun& run)
{
    const fxtools::RegisterType& type = *m_catalogue->find(run.type);
    const int step = run.isBit() ? bitsPerByte : 1;
    const int offset = step * below(m_random, run.count / step);
    const int most = std::min(
        {run.count - offset, type.mostInFrame(m_world.session.wordsPerFrame), bitsPerWord});
    return {type, 1, run.first + offset, 1 + below(m_random, most)};
}

// In several frames.
fxtools::RegisterRange Soak::someLongRange(const PlcRun& run)
{
    fxtools::RegisterRange range = someRange(run);
    range.count = 1 + below(m_random, run.first + run.count - range.first);
    return range;
}

const PlcRun& Soak::someRun()
{
    return plcRuns()[static_cast<size_t>(below(m_random, plcRunCount))];
}

const PlcRun& Soak::someWritableRun(bool wordsOnly)
{
    while (true) {
        const PlcRun& run = someRun();
        if (run.writable && !(wordsOnly && run.isBit()))
            return run;
    }
}

quint32 Soak::someBits(int bits)
{
    return static_cast<quint32>(m_random()) >> (32 - bits);
}

QVector<quint32> Soak::someValues(const fxtools::RegisterRange& range)
{
    const int bits = plcRun(range.type.name).bits;
    QVector<quint32> values;
    for (int i = 0; i < range.count; ++i)
        values.append(someBits(bits));
    return values;
}

void Soak::note(const QString& text) const
{
    if (m_note)
        m_note(m_line.nowUs(), text);
}

}  // namespace fxsoak
