// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The driver library, loaded when this object is made and unloaded when it goes, with every entry
// point looked up by name and typed by the public header. Looks up nothing else.

#ifndef TESTS_END_TO_END_LOADED_DRIVER_H
#define TESTS_END_TO_END_LOADED_DRIVER_H

#include "driver/intf.h"

class LoadedDriver
{
public:
    LoadedDriver();
    ~LoadedDriver();
    LoadedDriver(const LoadedDriver&) = delete;
    LoadedDriver& operator=(const LoadedDriver&) = delete;

    bool isComplete() const;  // loaded, and every entry point found
    void* symbol(const char* name) const;
    static bool isInMemory();  // whether the library is loaded by anybody

private:
    void* m_handle;

    template <class EntryPoint>
    EntryPoint find(const char* name) const
    {
        return reinterpret_cast<EntryPoint>(symbol(name));
    }

public:
    const decltype(&intf_getDriverParameter) getDriverParameter;
    const decltype(&intf_getDriverPropertyPage) getDriverPropertyPage;
    const decltype(&intf_SetDriverPropertyPage) setDriverPropertyPage;
    const decltype(&intf_getProtocolType) getProtocolType;
    const decltype(&intf_setAddrValueChangeCallBack) setAddrValueChangeCallBack;
    const decltype(&intf_initProperty) initProperty;
    const decltype(&intf_addrMerge) addrMerge;
    const decltype(&intf_addConditionRead) addConditionRead;
    const decltype(&intf_getSendFrame) getSendFrame;
    const decltype(&intf_dealRcvFrame) dealRcvFrame;
    const decltype(&intf_getData) getData;
    const decltype(&intf_setData) setData;
    const decltype(&intf_setRcpAddress) setRcpAddress;
    const decltype(&intf_checkAddr) checkAddr;
    const decltype(&intf_checkAddrValidity) checkAddrValidity;
    const decltype(&intf_getRegListByType) getRegListByType;
    const decltype(&intf_getRegDiscription) getRegDiscription;
    const decltype(&intf_multiCopy) multiCopy;
};

#endif
