// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the command line of fxview says, and the PLC that it means.

#pragma once

#include "tools/service/connection.h"

#include <optional>

namespace fxview {

struct Options
{
    QString link, plc, configuration, tags, pictures, language;  // empty: not given
    bool isDark = false;
    QString screen = {};     // the file; empty: a plain one
    QString newScreen = {};  // the file to write one to instead of showing a window
};

// Nothing if the command line asks for help or for nothing that there is; then what is to be said
// has been said, and the exit code is this.
std::optional<Options> readOptions(int argumentCount, char** arguments, int& exitCode);

struct ChosenPlc
{
    QString name;  // as people know it: "press1", "serial:/dev/ttyUSB0"
    fxtools::ConnectionSettings settings;
};

// Without anything a simulated PLC with the sample program and its tags. Throws Failure.
ChosenPlc choosePlc(const Options& options);

bool areSampleTags(const ChosenPlc& chosen);

// Those of the tag file that are of this PLC. Throws Failure with all mistakes of the file.
QVector<fxtools::Tag> tagsOf(const fxtools::AddressServices& services);

}  // namespace fxview
