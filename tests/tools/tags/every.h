// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Periods as the tests write them.

#ifndef TESTS_TOOLS_TAGS_EVERY_H
#define TESTS_TOOLS_TAGS_EVERY_H

#include "tests/tools/support/loaded_driver.h"
#include "tools/tags/schedule.h"

namespace tool_tests {

constexpr qint64 second = 1000000;  // in microseconds, as all times of a schedule

inline fxtools::PeriodicRange every(int periodMs, const char* address)
{
    return {range(address), 1000 * qint64(periodMs)};
}

}  // namespace tool_tests

#endif
