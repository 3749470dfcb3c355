// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What an act says that must fail.

#pragma once

#include "tools/failure.h"

#include <gtest/gtest.h>

namespace tool_tests {

template <typename Act>
std::string failureOf(fxtools::ExitCode code, const Act& act)
{
    try {
        act();
    } catch (const fxtools::Failure& failure) {
        EXPECT_EQ(failure.code(), code) << failure.what();
        return failure.what();
    }
    return "no failure";
}

}  // namespace tool_tests
