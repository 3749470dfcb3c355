// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Numbers, places and ranges as people write them on the command line, in scripts and in control
// commands: 4096, 0x1000, 0x0100.3, D100, D100.3, M0, 0x0000-0x7FFF, D0-D99, 0x0F00:0x0E00:256.
// What cannot be read is an Error that quotes the text and says what was expected.

#pragma once

#include "tools/fxsim/plc/devices.h"
#include "tools/fxsim/plc/error.h"
#include "tools/fxsim/plc/plc_memory.h"

#include <QStringList>

#include <optional>

namespace fxsim {

// `what` names the number in the error.
qint64 parseInteger(const QString& text, qint64 lowest, qint64 highest, const char* what);
int parseNumber(const QString& text, int lowest, int highest, const char* what = "number");
int parseByteAddress(const QString& text);

struct MemoryPlace
{
    int address = 0;
    std::optional<int> bit;        // none: whole bytes
    std::optional<Device> device;  // none: written as an address, or a bit of a word
};
MemoryPlace parsePlace(const QString& text);

// What a number of so many bytes can hold: signed or unsigned, as people write it.
struct ValueLimits
{
    qint64 lowest = 0;
    qint64 highest = 1;
};
ValueLimits limitsOf(int byteCount);  // 0: of a bit

QVector<AddressRange> parseRanges(const QString& text);   // separated by commas
QVector<MirrorWindow> parseMirrors(const QString& text);  // separated by commas, or "none"

// What somebody may have meant: " (did you mean peek?)" for "pek"; empty when nothing is close.
QString didYouMean(const QString& word, const QStringList& known);

}  // namespace fxsim
