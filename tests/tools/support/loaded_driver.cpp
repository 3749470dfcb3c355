// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/support/loaded_driver.h"

#include "tools/library/addresses.h"

namespace tool_tests {

const fxtools::DriverLibrary& driver()
{
    static const fxtools::DriverLibrary library(QStringLiteral(FX_DRIVER_FILE));
    return library;
}

const fxtools::RegisterCatalogue& catalogue()
{
    static const fxtools::RegisterCatalogue types(driver());
    return types;
}

fxtools::RegisterRange range(const char* address)
{
    return fxtools::parseAddress(QString::fromLatin1(address), catalogue());
}

}  // namespace tool_tests
