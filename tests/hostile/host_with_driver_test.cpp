// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host program that exports a symbol `driver` of its own, smaller than the library's object. The
// loader prefers the program's symbols, so the library once constructed its object over it.

#include "tests/support/loaded_library.h"

#include <algorithm>
#include <iterator>

unsigned char driver[64];

TEST(HostWithDriver, KeepsItsOwnSymbol)
{
    constexpr unsigned char mark = 0xA5;
    std::fill(std::begin(driver), std::end(driver), mark);
    ASSERT_EQ(driver, dlsym(RTLD_DEFAULT, "driver")) << "the program does not export it";
    {
        const LoadedLibrary library;
        unsigned char value[2] = {7, 0};
        ENTRY_POINT(library.handle, intf_setData)(1, QLatin1String("D"), 0, 1, value, 0);
    }
    EXPECT_TRUE(std::all_of(std::begin(driver), std::end(driver),
                            [](unsigned char byte) { return byte == mark; }));
}
