// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The one function of a fuzz target, and how it says what broke and what was answered.

#ifndef FUZZ_SUPPORT_FUZZ_TARGET_H
#define FUZZ_SUPPORT_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount);

// Set where the answers to an input are to be seen.
inline std::function<void(const std::string&)> showAnswer;

// Ends the process unless `broken` is empty: the fuzzer keeps the input.
inline void require(const std::string& broken)
{
    if (broken.empty())
        return;
    std::fprintf(stderr, "%s\n", broken.c_str());
    std::abort();
}

inline void require(bool holds, const char* what)
{
    if (!holds)
        require(std::string(what));
}

#endif
