// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A pseudo-terminal: the host opens its other end as it would a serial port. It is raw from the
// start, so that a host which sets nothing reads what was sent. With a link path, a symbolic link
// leads to whatever terminal it is this time.

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

    QString open() override;
    void close() override;
    QString name() const override;

private:
    QString openTerminal();
    QString makeLink();
    void removeLink();
    void readAvailable();
    int write(const QByteArray& bytes);

    QString m_linkPath;
    QString m_device;
    int m_master = -1;
    int m_slave = -1;  // kept open: without it the master hangs up whenever a host closes its end
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::unique_ptr<HostConnection> m_host;
};

}  // namespace fxsim
