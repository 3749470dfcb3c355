// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The worker of one link, as its supervisor sees it: something that is started, printed by, written
// to, and that ends.

#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace fxgate {

class Worker : public QObject
{
public:
    static constexpr int killedMs = 1000;  // gone by then, unless its disk or port holds it

    // Called from the event loop and from waitUntilEnded(); onEnded once and last, perhaps from
    // start(). The worker may not be deleted in them, but deleteLater() will do.
    std::function<void(const QByteArray& bytes)> onOutput;
    std::function<void(const QByteArray& bytes)> onComplaint;  // on standard error
    std::function<void(const QString& how)> onEnded;

    virtual void start() = 0;
    virtual qint64 pid() const = 0;  // 0: it does not run
    virtual void write(const QByteArray& bytes) = 0;
    virtual void endInput() = 0;
    virtual void kill() = 0;
    virtual bool waitUntilEnded(int timeoutMs) = 0;
};

}  // namespace fxgate
