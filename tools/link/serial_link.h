// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A serial port, or a pseudo-terminal by its path: Qt SerialPort with the line settings of the FX
// programming port by default.

#pragma once

#include "tools/link/link.h"
#include "tools/link/link_settings.h"

namespace fxtools {

class SerialLink : public Link
{
public:
    explicit SerialLink(const SerialSettings& settings) : m_settings(settings) {}

    QString name() const override;
    void open() override;
    bool isOpen() const override;
    bool send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;

private:
    bool writeAll(const QByteArray& bytes);
    QString reason() const;  // why it could not be opened, and what would help

    SerialSettings m_settings;
    QSerialPort m_port;
};

}  // namespace fxtools
