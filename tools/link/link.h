// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A way to a PLC that carries bytes: a serial port, a pseudo-terminal, a TCP connection or a
// simulated PLC inside this process. The exchange loop sends and receives through it and knows
// nothing more of it. All calls block at most as long as they say.

#pragma once

#include "tools/failure.h"

#include <QByteArray>
#include <QString>

namespace fxtools {

class Link
{
public:
    virtual ~Link() = default;

    virtual QString name() const = 0;  // as the user would write it
    virtual void open() = 0;           // also anew, after a loss; throws Failure
    virtual bool isOpen() const = 0;   // false once the other end is gone
    virtual bool send(const QByteArray& bytes) = 0;

    // Whatever arrives first within `timeoutMs`; empty when nothing did.
    virtual QByteArray receive(int timeoutMs) = 0;
};

}  // namespace fxtools
