// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Writes as people ask for them:
//
//   D100=5          M0=on          D10:3=1,2,3      as many values as registers
//   D20:2=70000     32 bits over two words; the same as D20=70000 with the format "long"
//   D100.5=1        one bit of a word           K4M0=0x1F    M0 to M15 at once
//
// Nothing is guessed from a value: neither a width nor a type nor how many registers are meant.

#pragma once

#include "tools/library/addresses.h"
#include "tools/library/values.h"

namespace fxtools {

struct Assignment
{
    AskedAddress asked;
    QVector<quint32> values;  // of its registers; of D100.5 the bit alone
    QString written;          // the values as the user wrote them

    // What the registers will hold that hold `before` now; empty: nothing is known of them.
    QVector<quint32> valuesOver(const QVector<quint32>& before) const;
};

// Both throw Failure.
Assignment parseAssignment(const QString& text, const RegisterCatalogue& catalogue,
                           ValueStyle style);
Assignment assignmentOf(const AddressParts& address, const QString& values,
                        const RegisterCatalogue& catalogue, ValueStyle style);

// Throws Failure if a write would hit other registers.
void requireOwnMemory(const RegisterRange& range, const RegisterCatalogue& catalogue);

}  // namespace fxtools
