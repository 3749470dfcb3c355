// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tells the editor whether an address that a user typed is valid for its register type. The first
// failing test decides, so the tests stand in the order that the result codes promise.

#include "address/register_types.h"
#include "driver/intf.h"

#include <algorithm>
#include <iterator>

namespace {

bool widthSuits(const RegisterType* type, bool bitAccess)
{
    return type == nullptr || isBit(*type) == bitAccess;  // unknown types fail later
}

bool hasSign(const QString& addressText)
{
    return addressText.contains(QLatin1Char('-')) || addressText.contains(QLatin1Char('+'));
}

bool writes(int accessMode)
{
    return accessMode == fxWriteAccess || accessMode == fxReadWriteAccess;
}

bool isCounterDataType(int dataType)
{
    const int* const end = std::end(fxCounterDataTypes);
    return std::find(std::begin(fxCounterDataTypes), end, dataType) != end;
}

FxAddressCheck checkNumber(const RegisterType* type, const QString& addressText, int* addressIndex,
                           int elements)
{
    if (type == nullptr)
        return fxUnknownType;
    bool isNumber = false;
    const int number = addressText.toInt(&isNumber, type->numberBase);
    if (addressIndex != nullptr)
        *addressIndex = number;  // also when it is none or out of range
    if (!isNumber)
        return fxNotANumber;
    const qint64 end = static_cast<qint64>(number) + elements;
    return number < type->first || end > type->checkEnd ? fxAddressOutOfRange : fxAddressValid;
}

FxAddressCheck checkAddress(const QString& registerType, const QString& addressText,
                            int* addressIndex, int dataType, int count, int accessMode)
{
    const RegisterType* type = findRegisterType(registerType);
    if (!widthSuits(type, dataType == fxBitDataType))
        return fxWrongWidth;
    if (hasSign(addressText))
        return fxNotANumber;
    if (registerType == QLatin1String("X") && writes(accessMode))
        return fxWriteToInput;
    if (type != nullptr && isDoubleWord(*type) && !isCounterDataType(dataType))
        return fxNotACounterDataType;
    return checkNumber(type, addressText, addressIndex, count);
}

FxAddressCheck checkAddress(const QString& registerType, const QString& addressText,
                            int* addressIndex, int count, bool wordAccess)
{
    const RegisterType* type = findRegisterType(registerType);
    if (!widthSuits(type, !wordAccess))
        return fxWrongWidth;
    if (hasSign(addressText))
        return fxNotANumber;
    return checkNumber(type, addressText, addressIndex, count);
}

}  // namespace

int intf_checkAddr(const QString& registerType, const QString& addressText, int* addressIndex,
                   int dataType, int count, int accessMode)
{
    return checkAddress(registerType, addressText, addressIndex, dataType, count, accessMode);
}

int intf_checkAddrValidity(const QString& registerType, const QString& addressText,
                           int* addressIndex, int count, int wordAccess)
{
    return checkAddress(registerType, addressText, addressIndex, count, wordAccess != fxBitAccess);
}
