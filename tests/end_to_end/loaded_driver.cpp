// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Loading, looking up and unloading, as a host does it.

#include "tests/end_to_end/loaded_driver.h"

#include <dlfcn.h>

LoadedDriver::LoadedDriver()
    : m_handle(dlopen(DRIVER_LIBRARY, RTLD_NOW | RTLD_LOCAL)),
      getDriverParameter(find<decltype(&intf_getDriverParameter)>("intf_getDriverParameter")),
      getDriverPropertyPage(
          find<decltype(&intf_getDriverPropertyPage)>("intf_getDriverPropertyPage")),
      setDriverPropertyPage(
          find<decltype(&intf_SetDriverPropertyPage)>("intf_SetDriverPropertyPage")),
      getProtocolType(find<decltype(&intf_getProtocolType)>("intf_getProtocolType")),
      setAddrValueChangeCallBack(
          find<decltype(&intf_setAddrValueChangeCallBack)>("intf_setAddrValueChangeCallBack")),
      initProperty(find<decltype(&intf_initProperty)>("intf_initProperty")),
      addrMerge(find<decltype(&intf_addrMerge)>("intf_addrMerge")),
      addConditionRead(find<decltype(&intf_addConditionRead)>("intf_addConditionRead")),
      getSendFrame(find<decltype(&intf_getSendFrame)>("intf_getSendFrame")),
      dealRcvFrame(find<decltype(&intf_dealRcvFrame)>("intf_dealRcvFrame")),
      getData(find<decltype(&intf_getData)>("intf_getData")),
      setData(find<decltype(&intf_setData)>("intf_setData")),
      setRcpAddress(find<decltype(&intf_setRcpAddress)>("intf_setRcpAddress")),
      checkAddr(find<decltype(&intf_checkAddr)>("intf_checkAddr")),
      checkAddrValidity(find<decltype(&intf_checkAddrValidity)>("intf_checkAddrValidity")),
      getRegListByType(find<decltype(&intf_getRegListByType)>("intf_getRegListByType")),
      getRegDiscription(find<decltype(&intf_getRegDiscription)>("intf_getRegDiscription")),
      multiCopy(find<decltype(&intf_multiCopy)>("intf_multiCopy"))
{}

LoadedDriver::~LoadedDriver()
{
    if (m_handle != nullptr)
        dlclose(m_handle);
}

bool LoadedDriver::isComplete() const
{
    return m_handle != nullptr && getDriverParameter != nullptr &&
           getDriverPropertyPage != nullptr && setDriverPropertyPage != nullptr &&
           getProtocolType != nullptr && setAddrValueChangeCallBack != nullptr &&
           initProperty != nullptr && addrMerge != nullptr && addConditionRead != nullptr &&
           getSendFrame != nullptr && dealRcvFrame != nullptr && getData != nullptr &&
           setData != nullptr && setRcpAddress != nullptr && checkAddr != nullptr &&
           checkAddrValidity != nullptr && getRegListByType != nullptr &&
           getRegDiscription != nullptr && multiCopy != nullptr;
}

void* LoadedDriver::symbol(const char* name) const
{
    return m_handle == nullptr ? nullptr : dlsym(m_handle, name);
}

bool LoadedDriver::isInMemory()
{
    void* handle = dlopen(DRIVER_LIBRARY, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (handle == nullptr)
        return false;
    dlclose(handle);
    return true;
}
