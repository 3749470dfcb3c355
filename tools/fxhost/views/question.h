// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A question before something that cannot be undone.

#pragma once

#include <QString>

namespace fxtools {

// Asks on the terminal; "y" or "yes" is yes, anything else no. Throws Failure if standard input is
// not a terminal, because then only --yes can answer, and if the user interrupts.
bool isConfirmed(const QString& question);

}  // namespace fxtools
