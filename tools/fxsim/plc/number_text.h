// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Numbers, ranges and mirrors as people write them on the command line, in scripts and in control
// commands: 4096, 0x1000, 0x0000-0x7FFF, 0x0F00:0x0E00:256. Every function answers nothing for a
// text that is none.

#pragma once

#include "tools/fxsim/plc/plc_memory.h"

#include <QString>

#include <optional>

namespace fxsim {

std::optional<int> parseNumber(const QString& text, int lowest, int highest);
std::optional<int> parseByteAddress(const QString& text);

struct BitPlace
{
    int address = 0;
    int bit = 0;
};
std::optional<BitPlace> parseBitPlace(const QString& text);  // 0x0100.3

std::optional<QVector<AddressRange>> parseRanges(const QString& text);  // with commas
std::optional<QVector<MirrorWindow>>
parseMirrors(const QString& text);  // with commas; "none" is no mirror

}  // namespace fxsim
