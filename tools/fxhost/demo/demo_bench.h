// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the chapters of the demo share: the parts of the host, the control of the simulated PLC, and
// the count of checks.

#pragma once

#include "tools/exchange/polling.h"
#include "tools/fxhost/views/console.h"
#include "tools/simulated/make_link.h"

namespace fxtools {

struct ScreenItem
{
    RegisterRange range;
    QString label;
    bool isSigned = false;
};

struct DemoBench
{
    DemoBench(ExchangeLoop& exchangeLoop, const RegisterCatalogue& registerTypes,
              BenchControl* benchControl);

    RegisterRange range(const QString& address) const;
    quint32 valueOf(const QString& address) const;  // the first one, from the cache
    Round pollOnce() { return pollCycle(loop, blocks); }

    // The user has not interrupted, the link is open, and the PLC has answered if it was asked.
    bool goesOn() const { return !loop.isInterrupted() && linkIsGood(); }
    bool linkIsGood() const;

    // Prints one check with its mark; a check that is not true makes the demo fail. A check that an
    // interrupt cut short is not counted.
    void confirm(bool isSo, const QString& what);
    int judged() const { return confirmed + refuted; }
    int checks() const { return control ? 13 : 10; }  // of a whole run; three need the control
    bool wasCutShort() const { return loop.isInterrupted() && judged() < checks(); }

    ExchangeLoop& loop;
    DriverSession& session;
    const RegisterCatalogue& catalogue;
    BenchControl* control;  // null: the simulator cannot be controlled
    Console console;
    QVector<ScreenItem> screen;
    int blocks = 0;
    int valuesChanged = 0;  // callbacks so far
    int confirmed = 0;
    int refuted = 0;
};

// The chapters, in their order. Each prints what it does and checks the result.
void showRegisterTypes(DemoBench& bench);
void showPlan(DemoBench& bench);
void showLiveValues(DemoBench& bench, int forMs);  // until an interrupt if `forMs` is negative
void showWrites(DemoBench& bench);
void showConditionalRead(DemoBench& bench);
void showRecipe(DemoBench& bench);
void showTrouble(DemoBench& bench);

}  // namespace fxtools
