// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The connection of a command, as the command line says, and the exit codes for what happens on it.

#pragma once

#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/views/console.h"
#include "tools/service/connection.h"

namespace fxtools {

AddressServices addressServices(const CommonOptions& common);

// What the link does, and what something on the line sends by itself, is told on standard error.
// Throws Failure.
ConnectionSettings connectionSettings(const CommonOptions& common,
                                      const LinkSettings& linkUnlessSaid = SimulatedSettings());

// A simulated PLC is announced before the first frame, so that nobody takes its values for those of
// a machine.
class CommandConnection : public Connection
{
public:
    explicit CommandConnection(const CommonOptions& common);
};

// The exit code for an exchange with this verdict.
ExitCode exitCodeOf(ReplyVerdict verdict);

// Good; SomeFailed; or, if all exchanges failed, the code of the most frequent reason.
ExitCode exitCodeOf(const Statistics& statistics);

}  // namespace fxtools
