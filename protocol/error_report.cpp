// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Formats the error report. The count shows as the request holds it.

#include "protocol/error_report.h"

#include "address/register_types.h"
#include "driver/mitsubishi_fx1s.h"

namespace {

QString addressText(const VARIABLE& request)
{
    const RegisterType* type = findRegisterType(request.registerType);
    const int numberBase = type == nullptr ? 10 : type->numberBase;
    return QString::number(static_cast<uint>(request.addressIndex), numberBase);
}

}  // namespace

QString getErrorInfo(QByteArray reply)
{
    if (driver.frames.isEmpty())
        return QString();
    const VARIABLE& request = driver.frames.at(0).variable;
    return QString::fromLatin1("%1#%2%3(%4)(%5)")
        .arg(request.stationNo)
        .arg(request.registerType)
        .arg(addressText(request))
        .arg(request.count)
        .arg(reply.size());
}
