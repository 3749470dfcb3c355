// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A pseudo-terminal: the host opens its other end like a serial port. It is raw from the start, so
// a host that sets nothing reads the bytes as they were sent. A symbolic link can give it a fixed
// name.

#pragma once

#include "tools/fxsim/links/link.h"

#include <QSocketNotifier>

#include <memory>

namespace fxsim {

class PtyLink : public Link
{
    Q_OBJECT

public:
    PtyLink(Simulator& simulator, const Clock& clock, const QString& linkPath);
    ~PtyLink() override;

    void open() override;
    void close() override;
    QString name() const override;

private:
    void openTerminal();
    void makeLink() const;
    void removeLink();
    void readAvailable();
    int write(const QByteArray& bytes);

    QString m_linkPath;
    QString m_device;
    int m_master = -1;
    int m_slave = -1;  // kept open: else the master hangs up whenever a host closes its end
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::unique_ptr<HostConnection> m_host;
};

}  // namespace fxsim
