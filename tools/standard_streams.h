// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Standard input, output and error, as a program finds them.

#pragma once

#include <string>

namespace fxtools {

// Opens those that the program's parent has closed, before a link or a file gets their number: what
// is printed would go to the PLC. Reading then meets the end of input, and writing fails.
void openClosedStreams();

// Flushes standard output, and says why not all that was printed is written; empty if all is.
std::string outputProblem();

}  // namespace fxtools
