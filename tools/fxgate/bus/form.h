// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A form that values take on the bus: which topics, which payloads, in which order. It reads the
// plant and does no input or output; BusClient sends what it returns, in that order, and calls
// disconnected() when the connection is gone.

#pragma once

#include "tools/fxgate/bus/message.h"
#include "tools/fxgate/plant.h"

#include <QStringList>

namespace fxgate {

// A change that could not be sent when it was made.
struct StoredChange
{
    qint64 row = 0;  // grows with each change that is stored
    Change change;
    bool mayBeRepeated = false;  // it was sent before, but perhaps did not arrive
};

// But for the reason, which not every form tells.
inline bool isSame(const Sample& one, const Sample& other)
{
    return one.timeMs == other.timeMs && one.quality == other.quality && one.value == other.value;
}

// What a received message asks for.
struct Received
{
    Messages messages;
    QVector<WriteRequest> writes;
    bool mustLeave = false;  // disconnect after leaving(), and connect anew
};

class Form
{
public:
    enum class Sending
    {
        Now,
        Later,  // its link is not announced
        Never,  // it is not configured any more
    };

    virtual ~Form() = default;

    virtual QString name() const = 0;  // of its rows in the store
    virtual QString clientId() const = 0;

    // What has to outlive the program.
    virtual QByteArray memory() const = 0;
    virtual void recall(const QByteArray& memory) = 0;

    // Of the connection that is made next, unless the broker cannot be reached: notConnected().
    virtual Message will(qint64 nowMs) = 0;
    virtual void notConnected() {}
    virtual bool wantsWillAfterLeaving() const = 0;  // where the protocol can say so

    virtual QStringList subscriptions() const = 0;
    virtual Messages connected(qint64 nowMs) = 0;  // and subscribed
    virtual void disconnected() = 0;
    virtual bool confirmed() { return false; }  // all that was sent; true: memory() has changed
    virtual Messages leaving(qint64 nowMs) = 0;

    virtual Messages linkChanged(const QString& link, qint64 nowMs) = 0;  // its state or its tags
    virtual Messages dropped(qint64 changes, qint64 nowMs) = 0;           // in all, from the store

    virtual Messages everySecond(qint64 /*nowMs*/) { return {}; }  // while connected

    virtual bool isAnnounced(const QString& link) const = 0;
    virtual Sending sending(const QString& link, const QString& tag) const = 0;
    virtual Messages values(const QVector<Change>& changes, qint64 nowMs) = 0;
    virtual Messages history(const QVector<StoredChange>& changes, qint64 nowMs) = 0;

    virtual Received received(const Message& message, qint64 nowMs) = 0;
    virtual Messages reply(const WriteRequest& request, const WriteResult& result) = 0;
};

}  // namespace fxgate
