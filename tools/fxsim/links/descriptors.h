// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Descriptors that no client gets, so that there is always one for a file and for telling the next
// client that there are too many: without any, a server is woken for ever by a client that it
// cannot accept.

#pragma once

#include <sys/resource.h>

namespace fxsim {

inline bool isTooMany(int descriptor)
{
    constexpr rlim_t spare = 16;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<rlim_t>(descriptor) + spare >= limit.rlim_cur;
}

}  // namespace fxsim
