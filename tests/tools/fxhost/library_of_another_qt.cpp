// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Stands for a driver library that was built with Qt 6, as its note says. Calling any of its entry
// points from a Qt 5 program would crash, so they all do.

#include <cstdlib>

#define FX_CRASHES(name)                                                                           \
    extern "C" __attribute__((visibility("default"))) void name()                                  \
    {                                                                                              \
        std::abort();                                                                              \
    }

FX_CRASHES(intf_getDriverParameter)
FX_CRASHES(intf_getProtocolType)
FX_CRASHES(intf_setAddrValueChangeCallBack)
FX_CRASHES(intf_initProperty)
FX_CRASHES(intf_addrMerge)
FX_CRASHES(intf_addConditionRead)
FX_CRASHES(intf_getSendFrame)
FX_CRASHES(intf_dealRcvFrame)
FX_CRASHES(intf_getData)
FX_CRASHES(intf_setData)
FX_CRASHES(intf_setRcpAddress)
FX_CRASHES(intf_checkAddr)
FX_CRASHES(intf_checkAddrValidity)
FX_CRASHES(intf_getRegListByType)
FX_CRASHES(intf_getRegDiscription)
FX_CRASHES(intf_multiCopy)
