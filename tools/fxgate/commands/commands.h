// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The commands of fxgate. Each throws Failure for what it cannot do.

#pragma once

#include "tools/failure.h"

namespace fxgate {

// Serves until a signal ends it.
fxtools::ExitCode run(const QString& configuration, const QString& socket);

// Shows what is wrong with a configuration and the tag files that it names.
fxtools::ExitCode check(const QString& configuration);

struct StatusOptions
{
    bool isJson = false;
    bool isWatched = false;  // shown every second
};

// Of the gateway that listens at this socket; empty: at a usual place.
fxtools::ExitCode showStatus(const QString& socket, const StatusOptions& options);
fxtools::ExitCode askToReload(const QString& socket);

// Lines on standard error, each with the program's name.
void complain(const QString& text);

}  // namespace fxgate
