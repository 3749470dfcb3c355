// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A hint for long lists: their records lie a kilobyte apart, or anywhere, which the processor does
// not foresee. Asking for one some steps ahead lets it arrive while others are worked on.

#ifndef DRIVER_PREFETCH_H
#define DRIVER_PREFETCH_H

// Begins to load what is at `address`; waits for nothing and may be asked for any address.
inline void prefetch(const void* address)
{
#ifdef __GNUC__
    __builtin_prefetch(address);
#else
    static_cast<void>(address);
#endif
}

#endif
