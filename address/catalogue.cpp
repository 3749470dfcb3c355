// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Lists the register types for the editor's choosers and describes how each one's numbers are
// written and bounded.

#include "address/register_types.h"
#include "driver/intf.h"

int intf_getRegListByType(int kind, QList<QString>& names)
{
    if (kind != fxBitTypes && kind != fxWordTypes)
        return 0;
    for (const RegisterType& type : registerTypes) {
        if (isBit(type) == (kind == fxBitTypes))
            names.append(registerTypeName(type));
    }
    return 1;
}

int intf_getRegDiscription(const QString& registerType, QList<QString>& fields)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr)
        return 0;
    fields.append(QLatin1String(type->format));
    fields.append(QString::number(type->first, type->numberBase));
    fields.append(QString::number(type->last, type->numberBase));
    fields.append(QString::number(static_cast<int>(type->kind)));
    fields.append(QLatin1String(type->writable ? "1" : "0"));
    return isDoubleWord(*type) ? 1 : 0;  // not "known": callers go by the texts
}
