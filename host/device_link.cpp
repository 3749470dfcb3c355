// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See device_link.h.

#include "host/device_link.h"

#include <QIODevice>

namespace fxhost {

namespace {

constexpr int sendTimeoutMs = 2000;  // the longest frame takes 1.1 s at 9600 baud

}  // namespace

bool DeviceLink::send(const QByteArray& bytes)
{
    if (!isOpen() || device().write(bytes) != bytes.size())
        return false;
    while (device().bytesToWrite() > 0) {
        if (!device().waitForBytesWritten(sendTimeoutMs))
            return false;
    }
    return true;
}

QByteArray DeviceLink::receive(int timeoutMs)
{
    if (!isOpen())
        return {};
    if (device().bytesAvailable() == 0)
        device().waitForReadyRead(timeoutMs);
    return device().readAll();
}

}  // namespace fxhost
