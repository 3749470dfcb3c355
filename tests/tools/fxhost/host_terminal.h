// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost in a terminal of its own.

#pragma once

#include "tests/tools/support/terminal.h"

namespace tool_tests {

struct HostTerminal : Terminal
{
    HostTerminal(const QStringList& arguments, int columns = 80, int rows = 24,
                 const QStringList& environment = {})
        : Terminal(QStringList(FXHOST_FILE) + arguments, columns, rows,
                   environment + QStringList("FX_DRIVER=" FX_DRIVER_FILE))
    {}
};

}  // namespace tool_tests
