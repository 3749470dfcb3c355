// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Links as people write them, and the link that they mean:
//
//   sim:                            a simulated PLC inside, the default; sim:?baud=9600 at the
//                                   speed of a line, &faults=silence=0.05 as a bad one
//   serial:/dev/ttyUSB0?baud=9600   a serial port, 7E1 unless &line=8N1 or &parity=odd says else
//   pty:/dev/pts/4                  a pseudo-terminal, with the settings of a serial port
//   tcp:HOST:PORT, tcp:HOST?port=N  a serial server; port 8888 unless said

#pragma once

#include "tools/link/link.h"

#include <memory>

namespace fxtools {

// The link, not yet open. Throws Failure.
std::unique_ptr<Link> makeLink(const QString& text);

}  // namespace fxtools
