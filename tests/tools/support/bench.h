// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The driver, the exchange loop and a simulated PLC on a virtual line, put together: what a test of
// the exchange floor stands on. What the PLC holds is looked up in its own memory.

#pragma once

#include "tests/tools/support/loaded_driver.h"
#include "tests/tools/support/virtual_line.h"

namespace tool_tests {

// Byte addresses on the wire.
constexpr int addressOfD0 = 0x1000;
constexpr int addressOfM0 = 0x0100;
constexpr int addressOf32CV200 = 0x0C00;

constexpr int addressOfD(int number)
{
    return addressOfD0 + 2 * number;
}

struct Bench
{
    explicit Bench(const fxsim::Settings& settings = badLine(0, ""),
                   const fxtools::SessionSettings& sessionSettings = {})
        : line(settings), session(driver(), sessionSettings),
          loop(session, line, line.loopSettings())
    {}

    quint32 plcWord(int address) { return line.memory().value(address, 2); }
    quint32 plcDoubleWord(int address) { return line.memory().value(address, 4); }
    void setD(int number, quint32 value) { line.memory().setValue(addressOfD(number), 2, value); }
    void refuseD(int first, int last) { line.refuse(addressOfD(first), addressOfD(last) + 1); }

    VirtualLine line;
    fxtools::DriverSession session;
    fxtools::ExchangeLoop loop;
};

}  // namespace tool_tests
