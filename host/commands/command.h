// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What every command of fxhost shares: the options that stand before it, its exit codes, and how
// it is added to the command line.

#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace fxhost {

// Documented in the manual page; scripts rely on them.
enum class ExitCode
{
    Good = 0,
    SomeFailed = 1,
    Usage = 2,
    LinkNotOpened = 3,
    Silence = 4,
    Refused = 5,
    Damaged = 6,
    File = 7,
    Interrupted = 130,
};

struct CommonOptions
{
    std::string library;
    std::string link;  // empty: what the command takes unless told otherwise
};

// What is run once the whole command line was read and found good.
using Action = std::function<ExitCode()>;

void addDemoCommand(CLI::App& app, const CommonOptions& common, Action& action);

}  // namespace fxhost
