// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The driver as a host loads it: a shared library, loaded by name at run time. Its entry points
// are looked up one by one and have the types of the public header. Nothing is linked.
// Member names are those of the entry points without "intf_".

#pragma once

#include "driver/intf.h"
#include "tools/failure.h"

#include <QLibrary>
#include <QStringList>

namespace fxtools {

class DriverLibrary
{
public:
    // An empty `path` looks in the usual places. Throws Failure.
    explicit DriverLibrary(const QString& path = {});
    ~DriverLibrary();
    DriverLibrary(const DriverLibrary&) = delete;
    DriverLibrary& operator=(const DriverLibrary&) = delete;

    QString fileName() const { return m_library.fileName(); }

    decltype(&intf_getProtocolType) getProtocolType = nullptr;
    decltype(&intf_setAddrValueChangeCallBack) setAddrValueChangeCallBack = nullptr;
    decltype(&intf_initProperty) initProperty = nullptr;
    decltype(&intf_addrMerge) addrMerge = nullptr;
    decltype(&intf_addConditionRead) addConditionRead = nullptr;
    decltype(&intf_getSendFrame) getSendFrame = nullptr;
    decltype(&intf_dealRcvFrame) dealRcvFrame = nullptr;
    decltype(&intf_getData) getData = nullptr;
    decltype(&intf_setData) setData = nullptr;
    decltype(&intf_setRcpAddress) setRcpAddress = nullptr;
    decltype(&intf_checkAddrValidity) checkAddrValidity = nullptr;
    decltype(&intf_getRegListByType) getRegListByType = nullptr;
    decltype(&intf_getRegDiscription) getRegDiscription = nullptr;
    decltype(&intf_multiCopy) multiCopy = nullptr;

private:
    template <typename EntryPoint>
    void resolve(EntryPoint& entryPoint, const char* name);
    void resolveAll();
    void requireSameQt() const;

    QLibrary m_library;
};

// Where to look for the library, in this order: only FX_DRIVER if it is set; otherwise the folder
// of the executable, the library folder of the same installation, the folder above, and the
// loader's path.
QStringList driverLibraryPlaces();

}  // namespace fxtools
