// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the chapters of the demo share: the parts of the host, the control of the simulated PLC, and
// the count of checks.

#pragma once

#include "tools/exchange/polling.h"
#include "tools/fxhost/views/console.h"
#include "tools/simulated/bench_control.h"

namespace fxtools {

struct ScreenItem
{
    RegisterRange range;
    QString label;
    bool isSigned = false;
};

class DemoBench
{
public:
    DemoBench(ExchangeLoop& loop, const RegisterCatalogue& catalogue, BenchControl* control);

    ExchangeLoop& loop() { return m_loop; }
    DriverSession& session() { return m_loop.session(); }
    const RegisterCatalogue& catalogue() const { return m_catalogue; }
    Console& console() { return m_console; }
    BenchControl* control() { return m_control; }  // null: the simulator cannot be controlled
    const QVector<ScreenItem>& screen() const { return m_screen; }
    int blocks() const { return m_blocks; }

    RegisterRange range(const QString& address) const;
    Round pollOnce() { return pollCycle(m_loop, m_blocks); }

    bool isInterrupted() const { return m_loop.isInterrupted(); }

    // The link is open and the PLC has answered at least once, if it was asked.
    bool linkIsGood() const;

    // Prints one check with its mark; a check that is not true makes the demo fail. A check that an
    // interrupt cut short is not counted.
    void confirm(bool isSo, const QString& what);
    int confirmed() const { return m_confirmed; }
    int refuted() const { return m_refuted; }
    int judged() const { return m_confirmed + m_refuted; }
    bool wasCutShort() const { return isInterrupted() && judged() < checks(); }
    int checks() const { return m_control ? 13 : 10; }  // of a whole run; three need the control

    int valuesChanged = 0;  // callbacks so far

private:
    ExchangeLoop& m_loop;
    const RegisterCatalogue& m_catalogue;
    BenchControl* m_control;
    Console m_console;
    QVector<ScreenItem> m_screen;
    int m_blocks = 0;
    int m_confirmed = 0;
    int m_refuted = 0;
};

}  // namespace fxtools
