// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tells the editor whether an address that a user typed is valid for its register type. The first
// failing test decides, so the tests stand in the order that the result codes promise.

#include "address/register_types.h"
#include "driver/intf.h"

namespace {

enum class AddressCheck
{
    Valid = 0,
    WrongWidth = 1,
    OutOfRange = 2,
    UnknownType = 3,
    NotANumber = 4,
    NotACounterDataType = 5,
    WriteToInput = 6
};

constexpr int bitDataType = -1;

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
    return accessMode == 1 || accessMode == 2;
}

bool isCounterDataType(int dataType)
{
    return dataType == 1 || dataType == 3 || dataType == 5 || dataType == 6 || dataType == 9;
}

AddressCheck checkNumber(const RegisterType* type, const QString& addressText, int* addressIndex,
                         int elements)
{
    if (type == nullptr)
        return AddressCheck::UnknownType;
    bool isNumber = false;
    const int number = addressText.toInt(&isNumber, type->numberBase);
    if (addressIndex != nullptr)
        *addressIndex = number;  // also when it is none or out of range
    if (!isNumber)
        return AddressCheck::NotANumber;
    const qint64 end = static_cast<qint64>(number) + elements;
    return number < type->first || end > type->checkEnd ? AddressCheck::OutOfRange
                                                        : AddressCheck::Valid;
}

AddressCheck checkAddress(const QString& registerType, const QString& addressText,
                          int* addressIndex, int dataType, int count, int accessMode)
{
    const RegisterType* type = findRegisterType(registerType);
    if (!widthSuits(type, dataType == bitDataType))
        return AddressCheck::WrongWidth;
    if (hasSign(addressText))
        return AddressCheck::NotANumber;
    if (registerType == QLatin1String("X") && writes(accessMode))
        return AddressCheck::WriteToInput;
    if (type != nullptr && isDoubleWord(*type) && !isCounterDataType(dataType))
        return AddressCheck::NotACounterDataType;
    return checkNumber(type, addressText, addressIndex, count);
}

AddressCheck checkAddress(const QString& registerType, const QString& addressText,
                          int* addressIndex, int count, bool wordAccess)
{
    const RegisterType* type = findRegisterType(registerType);
    if (!widthSuits(type, !wordAccess))
        return AddressCheck::WrongWidth;
    if (hasSign(addressText))
        return AddressCheck::NotANumber;
    return checkNumber(type, addressText, addressIndex, count);
}

}  // namespace

int intf_checkAddr(const QString& registerType, const QString& addressText, int* addressIndex,
                   int dataType, int count, int accessMode)
{
    return static_cast<int>(
        checkAddress(registerType, addressText, addressIndex, dataType, count, accessMode));
}

int intf_checkAddrValidity(const QString& registerType, const QString& addressText,
                           int* addressIndex, int count, int wordAccess)
{
    return static_cast<int>(
        checkAddress(registerType, addressText, addressIndex, count, wordAccess != 0));
}
