// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See soak.h: what the host and the PLC's program do. The checks are in soak_checks.cpp.

#include "soak.h"

namespace fxsoak {

namespace {

constexpr std::size_t mostBookedWrites = 200;  // below the driver's 513, which drops the last
constexpr int stepsToFinish = 100000;

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

bool met(fxsim::FaultKind kind, const fxsim::Statistics& before, const fxsim::Statistics& after)
{
    const auto index = static_cast<size_t>(kind);
    return after.faults[index] > before.faults[index];
}

}  // namespace

Soak::Soak(const fxtools::DriverLibrary& library, const SoakSettings& settings)
    : m_catalogue(library), m_line(plcSettings(settings)), m_session(library, {}),
      m_loop(m_session, m_line, m_line.loopSettings()), m_random(settings.seed)
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
        QVector<fxtools::RegisterRange> plan;
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
    const fxtools::RegisterRange range = someRange(someWritableRun(false));
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
        chance(0.5) ? fxtools::RecipeDirection::Download : fxtools::RecipeDirection::Upload;
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
    const fxsim::Statistics before = plc();
    const std::optional<fxtools::Exchange> exchange = m_loop.step();
    m_line.forgetSent();
    m_sumIsForged = met(fxsim::FaultKind::WrongSum, before, plc()) &&
                    met(fxsim::FaultKind::FlippedBits, before, plc());
    expect(exchange.has_value(), QStringLiteral("there is a plan, and nothing to send"));
    if (!m_line.isOpen())
        m_line.open();
    if (exchange && exchange->hasEnded())
        check(*exchange);
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
fxtools::RegisterRange Soak::someRange(const PlcRun& run)
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

QVector<quint32> Soak::someValues(const fxtools::RegisterRange& range)
{
    const int bits = plcRun(range.type.name).bits;
    QVector<quint32> values;
    for (int i = 0; i < range.count; ++i)
        values.append(someBits(bits));
    return values;
}

}  // namespace fxsoak
