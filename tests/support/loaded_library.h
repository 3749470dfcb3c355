// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The library as a host loads it: nothing is linked, the types come from the header and the
// addresses from the file.

#ifndef TESTS_SUPPORT_LOADED_LIBRARY_H
#define TESTS_SUPPORT_LOADED_LIBRARY_H

#include "driver/intf.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#define ENTRY_POINT(library, name) reinterpret_cast<decltype(&(name))>(dlsym(library, #name))

class LoadedLibrary
{
public:
    LoadedLibrary() : handle(dlopen(DRIVER_LIBRARY, RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(nullptr, handle) << dlerror();
    }
    ~LoadedLibrary() { EXPECT_EQ(0, dlclose(handle)); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    void* const handle;
};

#endif
