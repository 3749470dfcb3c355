// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host program that exports a symbol `driver` of its own, smaller than the library's object. The
// loader prefers the program's symbols, so the library once constructed its object over it.

#include "driver/intf.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <iterator>

unsigned char driver[64];

TEST(HostWithDriver, KeepsItsOwnSymbol)
{
    constexpr unsigned char mark = 0xA5;
    std::fill(std::begin(driver), std::end(driver), mark);
    ASSERT_EQ(driver, dlsym(RTLD_DEFAULT, "driver")) << "the program does not export it";
    void* const library = dlopen(DRIVER_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(nullptr, library) << dlerror();
    const auto setData = reinterpret_cast<decltype(&intf_setData)>(dlsym(library, "intf_setData"));
    unsigned char value[2] = {7, 0};
    setData(1, QLatin1String("D"), 0, 1, value, 0);
    EXPECT_EQ(0, dlclose(library));
    EXPECT_TRUE(std::all_of(std::begin(driver), std::end(driver),
                            [](unsigned char byte) { return byte == mark; }));
}
