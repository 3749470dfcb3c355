// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the gateway gets from outside: the time, and chance. A test can be all of it.

#pragma once

#include "tools/fxgate/moment.h"

#include <functional>

namespace fxgate {

struct Environment
{
    std::function<Moment()> now;
    std::function<double()> chance;  // from 0 to 1
};

Environment realEnvironment();

}  // namespace fxgate
