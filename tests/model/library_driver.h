// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The library's entry points as methods, so that one session can drive it and the model alike.

#ifndef TESTS_MODEL_LIBRARY_DRIVER_H
#define TESTS_MODEL_LIBRARY_DRIVER_H

#include "driver/intf.h"

class LibraryDriver
{
public:
    void getDriverParameter(QString& text) { intf_getDriverParameter(text); }
    void getDriverPropertyPage(QString& text) { intf_getDriverPropertyPage(text); }
    void SetDriverPropertyPage(QString& text) { intf_SetDriverPropertyPage(text); }
    void getProtocolType(int* type) { intf_getProtocolType(type); }
    void setAddrValueChangeCallBack(int (*callback)(int, int, QString&, int))
    {
        intf_setAddrValueChangeCallBack(callback);
    }
    int initProperty(unsigned char* memory, unsigned int context, unsigned short* words,
                     int* status, const char* propertyString, QMutex* mutex)
    {
        return intf_initProperty(memory, context, words, status, propertyString, mutex);
    }
    int addrMerge(QList<KEY_ADDRESS>& keys) { return intf_addrMerge(keys); }
    int addConditionRead(KEY_ADDRESS& key, int tag) { return intf_addConditionRead(key, tag); }
    int getSendFrame(FRAME_PRO* out) { return intf_getSendFrame(out); }
    int dealRcvFrame(QByteArray& reply, QString& errorText)
    {
        return intf_dealRcvFrame(reply, errorText);
    }
    int getData(int stationNo, const QString& registerType, int startIndex, int count,
                unsigned char* out)
    {
        return intf_getData(stationNo, registerType, startIndex, count, out);
    }
    int setData(int stationNo, const QString& registerType, int startIndex, int count,
                unsigned char* data, int tag)
    {
        return intf_setData(stationNo, registerType, startIndex, count, data, tag);
    }
    int setRcpAddress(QVector<_RCP_VAR_PRO>& list) { return intf_setRcpAddress(list); }
    int checkAddr(const QString& registerType, const QString& addressText, int* addressIndex,
                  int dataType, int count, int accessMode)
    {
        return intf_checkAddr(registerType, addressText, addressIndex, dataType, count, accessMode);
    }
    int checkAddrValidity(const QString& registerType, const QString& addressText,
                          int* addressIndex, int count, int wordAccess)
    {
        return intf_checkAddrValidity(registerType, addressText, addressIndex, count, wordAccess);
    }
    int getRegListByType(int kind, QList<QString>& names)
    {
        return intf_getRegListByType(kind, names);
    }
    int getRegDiscription(const QString& registerType, QList<QString>& fields)
    {
        return intf_getRegDiscription(registerType, fields);
    }
    int multiCopy(const QString& registerType, int startIndex, int copies, int step,
                  QVector<QString>& texts, QVector<int>& values)
    {
        return intf_multiCopy(registerType, startIndex, copies, step, texts, values);
    }
};

#endif
