// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See device_link.h.

#include "host/device_link.h"

#include <QIODevice>

namespace fxhost {

namespace {

constexpr int sendTimeoutMs = 2000;  // the longest frame takes 1.1 s at 9600 baud

bool writeAll(QIODevice& device, const QByteArray& bytes)
{
    if (device.write(bytes) != bytes.size())
        return false;
    while (device.bytesToWrite() > 0) {
        if (!device.waitForBytesWritten(sendTimeoutMs))
            return false;
    }
    return true;
}

}  // namespace

// What takes no bytes is gone: a port that hung up reads as silence and stays open in name.
bool DeviceLink::send(const QByteArray& bytes)
{
    const bool sent = isOpen() && writeAll(device(), bytes);
    if (!sent)
        device().close();
    return sent;
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
