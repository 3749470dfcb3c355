// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Long tests are this many times shorter under a sanitizer or an emulator, which make each step
// several times as slow. That none of very many values is wrong, the full length shows, in builds
// without; a misuse of memory or of a number shows in the first of many steps that are alike.

#ifndef TESTS_SUPPORT_TIMES_SHORTER_H
#define TESTS_SUPPORT_TIMES_SHORTER_H

#if defined(__SANITIZE_ADDRESS__) || defined(FX_EMULATED)
constexpr int timesShorter = 11;  // odd: who takes each 11th number meets odd ones and even ones
#else
constexpr int timesShorter = 1;
#endif

#endif
