// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A real serial port with 7 data bits, even parity and 1 stop bit. The hardware paces the
// characters.

#pragma once

#include "tools/fxsim/links/link.h"

#include <QSerialPort>

#include <memory>

namespace fxsim {

class SerialLink : public Link
{
    Q_OBJECT

public:
    SerialLink(Simulator& simulator, const Clock& clock, const QString& device, int baud);

    void open() override;
    void close() override;
    QString name() const override;

private:
    void lookForHangup();

    QString m_device;
    QSerialPort m_port;
    QTimer m_watch;
    std::unique_ptr<HostConnection> m_host;
};

}  // namespace fxsim
