// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One moment on two clocks. What is told and stored has the time of day; how long something took is
// measured on the steady clock, which nobody sets.

#pragma once

#include <QtGlobal>

namespace fxgate {

struct Moment
{
    qint64 utcMs = 0;     // since 1970
    qint64 steadyMs = 0;  // since the machine started
};

}  // namespace fxgate
