// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Numbers, places and ranges as people write them on the command line, in scripts and in control
// commands: 4096, 0x1000, 0x0100.3, 0x0000-0x7FFF, 0x0F00:0x0E00:256. What cannot be read is an
// Error that quotes the text and says what was expected.

#pragma once

#include "tools/fxsim/plc/error.h"
#include "tools/fxsim/plc/plc_memory.h"

#include <optional>

namespace fxsim {

// `what` names the number in the error.
int parseNumber(const QString& text, int lowest, int highest, const char* what = "number");
int parseByteAddress(const QString& text);

struct MemoryPlace
{
    int address = 0;
    std::optional<int> bit;  // none: the whole byte
};
MemoryPlace parsePlace(const QString& text);

QVector<AddressRange> parseRanges(const QString& text);   // separated by commas
QVector<MirrorWindow> parseMirrors(const QString& text);  // separated by commas, or "none"

}  // namespace fxsim
