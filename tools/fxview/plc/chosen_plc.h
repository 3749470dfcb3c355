// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The PLC that the command line means, and its tags.

#pragma once

#include "tools/service/configuration.h"
#include "tools/service/connection.h"

namespace fxview {

struct ChosenPlc
{
    QString name;  // as people know it: "press1", "serial:/dev/ttyUSB0"
    fxtools::ConnectionSettings settings;
};

// Without any wish a simulated PLC with the sample program and its tags; without a tag file the
// configured one. Throws Failure.
ChosenPlc choosePlc(const fxtools::PlcWish& wish, const QString& tagFile);

bool areSampleTags(const ChosenPlc& chosen);

struct ChosenTags
{
    QVector<fxtools::Tag> tags;
    QString mistakes;  // of the file: the first, and how many more; their rows are left out
};

// Those of the tag file that are of this PLC. Throws Failure if there is none.
ChosenTags tagsOf(const fxtools::AddressServices& services);

}  // namespace fxview
