// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/demo/demo_bench.h"

#include "tools/library/addresses.h"

namespace fxtools {

namespace {

struct ScreenRow
{
    const char* address;
    const char* label;
    bool isSigned;
};

// A screen as panel designers make them: some registers of every type, some with neighbouring
// addresses, some far apart. The sample program of the simulated PLC works on the first numbers of
// each type; M100, D120 and 32CV201 belong to the host.
constexpr ScreenRow screenRows[] = {
    {"X0:8", "inputs, toggling", false},
    {"Y0:4", "outputs of the timers", false},
    {"M0:8", "running light", false},
    {"M100:4", "push buttons of the panel", false},
    {"SM8000:4", "system flags", false},
    {"S0:8", "steps", false},
    {"T0:4", "timer contacts", false},
    {"C0:2", "counter contacts", false},
    {"D0", "seconds", false},
    {"D1", "triangle", false},
    {"D2", "sine", true},
    {"D3", "sawtooth", false},
    {"D120", "set point of the panel", false},
    {"SD8000:2", "system registers", false},
    {"TV0:4", "timers, tenths of a second", false},
    {"CV0:2", "counters", false},
    {"32CV200", "fast counter", false},
    {"32CV201", "counter set by the panel", false},
};

QVector<RegisterRange> rangesOf(const QVector<ScreenItem>& screen)
{
    QVector<RegisterRange> ranges;
    for (const ScreenItem& item : screen)
        ranges.append(item.range);
    return ranges;
}

}  // namespace

DemoBench::DemoBench(ExchangeLoop& loop, const RegisterCatalogue& catalogue, BenchControl* control)
    : m_loop(loop), m_catalogue(catalogue), m_control(control)
{
    for (const ScreenRow& row : screenRows)
        m_screen.append({range(row.address), row.label, row.isSigned});
    session().onValueChanged = [this](const QString&, int, int) { ++valuesChanged; };
    m_blocks = session().setPlan(rangesOf(m_screen));
}

RegisterRange DemoBench::range(const QString& address) const
{
    return parseAddress(address, m_catalogue);
}

bool DemoBench::linkIsGood() const
{
    const Statistics& statistics = m_loop.statistics();
    const bool wasAsked = statistics.total().sent > 0;
    return m_loop.link().isOpen() && (!wasAsked || statistics.plcHasAnswered());
}

void DemoBench::confirm(bool isSo, const QString& what)
{
    if (isInterrupted())
        return;
    ++(isSo ? m_confirmed : m_refuted);
    m_console.line(
        QStringLiteral("  %1 %2").arg(isSo ? m_console.good("✔") : m_console.bad("✘"), what));
}

}  // namespace fxtools
