// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Text from outside in a message: from the command line, a file or the line to the PLC.

#pragma once

#include <QString>

namespace fxtools {

// In single quotes, only its first characters; what cannot be printed shows as "?", so that a
// message neither fills the screen nor controls it.
QString quoted(const QString& text, int mostCharacters = 60);

// Throws a usage error: the text, quoted, and what is wrong with it.
[[noreturn]] void reject(const QString& text, const QString& reason);

}  // namespace fxtools
