// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
/// @file
/// What a screen editor asks about addresses and register types. These functions need no connection
/// and do not affect an existing one. A host includes intf.h, which includes this.

#ifndef DRIVER_ADDRESS_SERVICES_H
#define DRIVER_ADDRESS_SERVICES_H

#include "entry_point.h"

#include <QList>
#include <QString>
#include <QVector>

// ---- Address services -------------------------------------------------------------------------

constexpr int fxBitDataType = -1;                      ///< data type of a bit; all others are words
constexpr int fxCounterDataTypes[] = {1, 3, 5, 6, 9};  ///< data types of "32CV"

/// What the address is used for; any other value means read.
enum FxAccessMode
{
    fxReadAccess = 0,      ///< read
    fxWriteAccess = 1,     ///< write
    fxReadWriteAccess = 2  ///< both
};

/// The result of an address check.
enum FxAddressCheck
{
    fxAddressValid = 0,         ///< the address exists
    fxWrongWidth = 1,           ///< a bit of a word type, or a word of a bit type
    fxAddressOutOfRange = 2,    ///< the first or the last register is out of range
    fxUnknownType = 3,          ///< no such register type
    fxNotANumber = 4,           ///< a sign, or not a number in the type's base
    fxNotACounterDataType = 5,  ///< "32CV" with none of #fxCounterDataTypes
    fxWriteToInput = 6          ///< inputs cannot be written
};

/// Checks the number of an address. The checks run in this order, and the first that fails gives
/// the result: width, sign, write to "X", data type of "32CV", register type, number, range.
/// @param registerType       exact text, such as "X" or "32CV"
/// @param addressText        the number, as on paper
/// @param[out] addressIndex  the number, in or out of range; 0 if the text is not one;
///                           unchanged if an earlier check fails
/// @param dataType           #fxBitDataType, one of #fxCounterDataTypes, or another word type
/// @param count              number of registers from the address on
/// @param accessMode         an FxAccessMode
/// @return an FxAddressCheck
FX_ENTRY_POINT int intf_checkAddr(const QString& registerType, const QString& addressText,
                                  int* addressIndex, int dataType, int count, int accessMode);

/// The width of an access.
enum FxAccessWidth
{
    fxBitAccess = 0,  ///< one bit
    fxWordAccess = 1  ///< one word; any other value means the same
};

/// Checks the number of an address as intf_checkAddr does, if only the width of the access is
/// known.
/// @param registerType       exact text, such as "X" or "32CV"
/// @param addressText        the number, as on paper
/// @param[out] addressIndex  as in intf_checkAddr
/// @param count              number of registers from the address on
/// @param wordAccess         an FxAccessWidth
/// @return an FxAddressCheck
FX_ENTRY_POINT int intf_checkAddrValidity(const QString& registerType, const QString& addressText,
                                          int* addressIndex, int count, int wordAccess);

/// Which register types to list.
enum FxTypeList
{
    fxBitTypes = 0,  ///< bits
    fxWordTypes = 1  ///< words and 32-bit counters
};

/// Lists the names of the register types of one kind.
/// @param kind           an FxTypeList
/// @param[in,out] names  the names are appended
/// @return 1; 0 for any other kind, with nothing appended
FX_ENTRY_POINT int intf_getRegListByType(int kind, QList<QString>& names);

/// Describes a register type by five texts.
/// @param registerType    exact text, such as "X" or "32CV"
/// @param[in,out] fields  five texts are appended, none for an unknown type: number format (one
///                        character for each digit, 'o' octal or 'd' decimal), lowest number,
///                        highest number, width ("0" bit, "1" word, "2" 32 bits), "1" if the
///                        type can be written, else "0"
/// @return 1 for "32CV", else 0, also for an unknown type: look at `fields`
FX_ENTRY_POINT int intf_getRegDiscription(const QString& registerType, QList<QString>& fields);

constexpr int fxMaxCopies = 1000000;  ///< most copies in one call

/// Special steps; any other step below 1 is 1.
enum FxSeriesStep
{
    fxPlainStep = -1,    ///< 1
    fxStepOf32Bits = -2  ///< for 32-bit values: 2 for 16-bit types, 1 for all others
};

/// The result for a series of addresses.
enum FxSeriesResult
{
    fxSeriesUnknownType = 0,  ///< nothing appended
    fxSeriesFitted = 1,       ///< every number fits
    fxSeriesClamped = 2       ///< at least one was too high and became the type's last number
};

/// Makes the addresses for copies of an object. Does not check for numbers below the type's first.
/// @param registerType    exact text, such as "X" or "32CV"
/// @param startIndex      number of the first copy
/// @param copies          how many, at most #fxMaxCopies; below 1 nothing is appended
/// @param step            from one copy to the next, or an FxSeriesStep
/// @param[in,out] texts   the addresses are appended as texts, of "X" and "Y" in octal
/// @param[in,out] values  the addresses are appended as numbers
/// @return an FxSeriesResult for all copies asked for, also for those above #fxMaxCopies
FX_ENTRY_POINT int intf_multiCopy(const QString& registerType, int startIndex, int copies, int step,
                                  QVector<QString>& texts, QVector<int>& values);

#endif
