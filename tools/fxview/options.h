// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the command line of fxview says.

#pragma once

#include "tools/service/configuration.h"

namespace fxview {

struct Options
{
    fxtools::PlcWish plc;
    QString tags, pictures, language;  // empty: not given
    bool isDark = false;
    QString screen = {};     // the file; empty: a plain one
    QString newScreen = {};  // the file to write one to instead of showing a window
};

// Nothing if the command line asks for help or for nothing that there is; then what is to be said
// has been said, and the exit code is this.
std::optional<Options> readOptions(int argumentCount, char** arguments, int& exitCode);

}  // namespace fxview
