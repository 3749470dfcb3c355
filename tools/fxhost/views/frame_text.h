// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Frames for people: the characters of the line made visible, and requests in words.

#pragma once

#include "tools/exchange/exchange.h"
#include "tools/library/registers.h"

namespace fxtools {

// Control characters as ␂ ␃ ␅ ␆ ␕, anything else that cannot be printed as \x9C.
QString visibleBytes(const QByteArray& bytes);

// "read D100 … D131", "write D100 … D103", "force M5 on".
QString requestText(const RegisterCatalogue& catalogue, const FRAME_PRO& frame);

QString answerText(DriverAnswer answer);

}  // namespace fxtools
