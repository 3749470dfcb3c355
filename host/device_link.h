// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Sending and receiving over a Qt device, the same for a serial port and a TCP socket.

#pragma once

#include "host/link.h"

class QIODevice;

namespace fxhost {

class DeviceLink : public Link
{
public:
    bool send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;

protected:
    virtual QIODevice& device() = 0;
};

}  // namespace fxhost
