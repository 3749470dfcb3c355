// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What may stand on the command line and in the configuration file: how large numbers may be.

#pragma once

#include "tools/words.h"

namespace fxtools {

constexpr Range timeoutLimitsMs{10, 60000};  // in less no serial line brings a reply
constexpr Range retryLimits{0, 100};
constexpr Range reconnectLimitsS{0, 86400};

constexpr int usualRetries = 2;

}  // namespace fxtools
