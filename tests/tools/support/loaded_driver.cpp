// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/support/loaded_driver.h"

#include "tools/library/addresses.h"

namespace tool_tests {

namespace {

// The catalogue is made before any session.
struct Loaded
{
    fxtools::DriverLibrary library = fxtools::DriverLibrary(QStringLiteral(FX_DRIVER_FILE));
    fxtools::RegisterCatalogue catalogue = fxtools::RegisterCatalogue(library);
};

const Loaded& loaded()
{
    static const Loaded instance;
    return instance;
}

}  // namespace

const fxtools::DriverLibrary& driver()
{
    return loaded().library;
}

const fxtools::RegisterCatalogue& catalogue()
{
    return loaded().catalogue;
}

fxtools::RegisterRange range(const char* address)
{
    return fxtools::parseAddress(QString::fromLatin1(address), catalogue());
}

}  // namespace tool_tests
