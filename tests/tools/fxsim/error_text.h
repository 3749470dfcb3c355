// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// For tests of what goes wrong: the text of the Error that a call throws.

#pragma once

#include "tools/fxsim/plc/error.h"

template <typename Call>
QString errorText(const Call& call)
{
    try {
        call();
    } catch (const fxsim::Error& error) {
        return error.text();
    }
    return "no error";
}
