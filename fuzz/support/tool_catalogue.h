// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// For targets that run what reads texts and files: the register types as the tools know them, from
// the library beside or above the target's folder, and reading what was written.

#ifndef FUZZ_SUPPORT_TOOL_CATALOGUE_H
#define FUZZ_SUPPORT_TOOL_CATALOGUE_H

#include "fuzz/support/fuzz_target.h"
#include "tools/library/registers.h"

#include <QCoreApplication>

#include <exception>

inline const fxtools::RegisterCatalogue& catalogue()
{
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static int argumentCount = 1;
    static const QCoreApplication application(argumentCount, arguments);  // knows the folder
    try {
        static const fxtools::DriverLibrary library;
        static const fxtools::RegisterCatalogue instance(library);
        return instance;
    } catch (const fxtools::Failure& failure) {
        require(failure.what());
        std::abort();
    }
}

// What was written by the program itself must be readable.
template <typename Read>
auto readAgain(const Read& read)
{
    try {
        return read();
    } catch (const std::exception& error) {
        require("cannot be read again: " + std::string(error.what()));
        std::abort();
    }
}

#endif
