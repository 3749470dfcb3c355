// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A serial port, or a pseudo-terminal by its path: Qt SerialPort with the line settings of the FX
// programming port unless others are given.

#pragma once

#include "tools/link/link.h"

#include <QSerialPort>

namespace fxtools {

struct LineSettings
{
    int baud = 9600;
    QSerialPort::DataBits dataBits = QSerialPort::Data7;
    QSerialPort::Parity parity = QSerialPort::EvenParity;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;
};

class SerialLink : public Link
{
public:
    // `kind` is what the user called it: serial or pty.
    SerialLink(const QString& kind, const QString& path, const LineSettings& settings);

    QString name() const override;
    void open() override;
    bool isOpen() const override;
    bool send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;

private:
    bool writeAll(const QByteArray& bytes);
    QString reason() const;  // why it could not be opened, and what would help

    QString m_kind;
    QString m_path;
    LineSettings m_settings;
    QSerialPort m_port;
};

}  // namespace fxtools
