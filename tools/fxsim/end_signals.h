// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// SIGINT, SIGTERM and SIGHUP end the event loop, so that fxsim closes its links and writes its
// files.

#pragma once

namespace fxsim {

// Once, after the event loop was made.
void endOnSignals();

}  // namespace fxsim
