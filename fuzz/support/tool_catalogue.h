// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// For targets that run what reads texts and files: the register types as the tools know them, from
// the library beside or above the target's folder, reading one of several kinds, and reading what
// was written.

#ifndef FUZZ_SUPPORT_TOOL_CATALOGUE_H
#define FUZZ_SUPPORT_TOOL_CATALOGUE_H

#include "fuzz/support/fuzz_target.h"
#include "tools/fxsim/plc/error.h"
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

// The first byte chooses the kind of the rest. What cannot be read is an error of the tools or of
// the simulator, with a text.
template <typename ReadAs>
void readOneOf(int kinds, const ReadAs& readAs, const std::uint8_t* bytes, std::size_t byteCount)
{
    if (byteCount == 0)
        return;
    std::string answer = "read";
    try {
        readAs(bytes[0] % kinds, QByteArray(reinterpret_cast<const char*>(bytes) + 1,
                                            static_cast<int>(byteCount) - 1));
    } catch (const fxtools::Failure& failure) {
        answer = failure.what();
    } catch (const fxsim::Error& error) {
        answer = error.what();
    }
    require(!answer.empty(), "an error without a text");
    if (showAnswer)
        showAnswer(answer);
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
