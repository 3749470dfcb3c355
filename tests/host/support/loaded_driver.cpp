// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See loaded_driver.h.

#include "loaded_driver.h"

#include "host/addresses.h"

namespace fxhost_tests {

const fxhost::DriverLibrary& driver()
{
    static const fxhost::DriverLibrary library(QStringLiteral(FX_DRIVER_FILE));
    return library;
}

const fxhost::RegisterCatalogue& catalogue()
{
    static const fxhost::RegisterCatalogue types(driver());
    return types;
}

fxhost::RegisterRange range(const char* address)
{
    return fxhost::parseAddress(QString::fromLatin1(address), catalogue(), driver());
}

}  // namespace fxhost_tests
