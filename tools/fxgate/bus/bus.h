// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The bus in one form, as the gateway sees it.

#pragma once

#include "tools/fxgate/plant.h"

#include <functional>

namespace fxgate {

struct BusStatus
{
    bool isConnected = false;  // and the form has told what it must tell first
    qint64 sinceMs = 0;
    QString lastError;
    QString storeProblem;    // empty: what has to be stored is
    int attempts = 0;        // to connect, in this run
    qint64 unconfirmed = 0;  // changes that were sent
    qint64 waiting = 0;      // changes that are to be sent
    qint64 dropped = 0;      // changes, in this run
    qint64 sent = 0;         // messages, in this run
    qint64 received = 0;
};

class Bus
{
public:
    virtual ~Bus() = default;

    std::function<void(const WriteRequest&)> onWrite;
    std::function<void(const QString& line)> onState;  // a line for the log

    virtual void start() = 0;
    virtual void tick() = 0;  // several times a second
    virtual void stop() = 0;  // takes at most six seconds

    virtual void publish(const QVector<Change>& changes) = 0;
    virtual void linkChanged(const QString& link) = 0;  // its state or its tags
    virtual void answer(const WriteRequest& request, const WriteResult& result) = 0;

    virtual BusStatus status() const = 0;
};

}  // namespace fxgate
