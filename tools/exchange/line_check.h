// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a line and its PLC are like, measured: what the line sends by itself, whether the PLC
// answers, how large its frames may be, what it says of itself, and how many of many exchanges are
// good.

#pragma once

#include "tools/exchange/exchange_loop.h"

namespace fxtools {

// From the special registers of the PLC.
struct PlcState
{
    int type = 0;     // 22 in 22210
    int version = 0;  // 210 in 22210, which is 2.10
    bool isRunning = false;
    bool hasError = false;
    bool hasLowBattery = false;
};

struct TriedBlock
{
    int byteCount = 0;
    ReplyVerdict verdict = ReplyVerdict::Good;
};

struct LineCheck
{
    QByteArray unasked;  // what came before the first frame
    bool answersEnquiry = false;
    ReplyVerdict verdict = ReplyVerdict::Silence;  // of a short read
    QVector<TriedBlock> blocks;                    // until the first that fails
    std::optional<PlcState> plc;
    QMap<ReplyVerdict, int> exchanges;  // the measured ones
    Histogram responses;                // of the good ones among them
    bool wentSilent = false;            // answered at first, then no more
    int timeoutMs = 0;                  // to which the time-out adapted

    int measured() const;
    int goodPercent() const;     // 100 only if every one is good
    int words() const;           // of the largest block that works
    bool blocksFail() const;     // the largest that was tried
    ReplyVerdict worst() const;  // what was most often wrong; Good if nothing was
};

constexpr int measuredExchanges = 100;

// Whether anything at all comes back from an ENQ.
bool isAnyoneThere(ExchangeLoop& loop);

// Listens, sends ENQ, and reads two registers, or one other if the PLC refuses these, in at most
// three attempts if something answers. The session must end an exchange at its first rejection.
LineCheck greetPlc(ExchangeLoop& loop, const RegisterCatalogue& catalogue);

// The rest of the check, for a PLC that answers. Calls `onProgress` after each exchange.
void measureLine(ExchangeLoop& loop, const RegisterCatalogue& catalogue, LineCheck& check,
                 const Progress& onProgress);

}  // namespace fxtools
