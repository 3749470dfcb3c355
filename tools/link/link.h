// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A connection to a PLC that carries bytes: a serial port, a pseudo-terminal, a TCP connection or a
// simulated PLC inside this process. The exchange loop knows nothing else about it. Every call
// blocks for a limited time only.

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
    virtual void open() = 0;           // also a lost link again; throws Failure
    virtual bool isOpen() const = 0;   // false once the other end is gone
    virtual bool send(const QByteArray& bytes) = 0;

    // The first bytes that arrive within `timeoutMs`; empty if none do.
    virtual QByteArray receive(int timeoutMs) = 0;
};

}  // namespace fxtools
