// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One connection to a broker, from its CONNECT to its end, as the bus client sees it. A new
// one is made for each attempt.

#pragma once

#include "tools/fxgate/bus/message.h"

#include <QObject>

#include <functional>

namespace fxgate {

class Connection : public QObject
{
public:
    // Called from the event loop, onEnded once and last. The connection may not be deleted in them,
    // but deleteLater() will do.
    std::function<void()> onConnected;
    std::function<void(int subscription, bool isGranted)> onSubscribed;
    std::function<void(const Message&)> onMessage;
    std::function<void(int message, bool isTaken)> onAcknowledged;  // of QoS 1
    std::function<void(int barrier)> onBarrier;
    std::function<void(const QString& reason)> onEnded;

    virtual QString host() const = 0;
    virtual void open() = 0;
    virtual int publish(const Message& message) = 0;  // its number; -1: the connection is ending
    virtual int subscribe(const QString& topic) = 0;
    virtual int barrier() = 0;  // answered when the broker has read all that was sent before
    virtual void close(bool withWill) = 0;
    virtual void end(const QString& reason) = 0;

    // Goes on without the event loop until something is done or the connection has ended.
    virtual void runUntil(const std::function<bool()>& isDone, int timeoutMs) = 0;

    virtual bool wasConnectSent() const = 0;  // as far as one can know
};

}  // namespace fxgate
