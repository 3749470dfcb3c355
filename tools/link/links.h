// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The links to PLCs outside this process.

#pragma once

#include "tools/link/link.h"
#include "tools/link/link_settings.h"

#include <QTcpSocket>

namespace fxtools {

// A serial port, or a pseudo-terminal by its path: Qt SerialPort with the line settings of the FX
// programming port by default.
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

// A TCP connection to a serial server or a simulator. Qt connects; the bytes then bypass its socket
// object and use the descriptor. The object's buffers and notifiers need an event loop, which this
// program does not have, and would take as long as the rest of an exchange.
class TcpLink : public Link
{
public:
    explicit TcpLink(const TcpSettings& settings) : m_settings(settings) {}

    QString name() const override;
    void open() override;
    bool isOpen() const override;
    bool send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;

private:
    int descriptor() const { return static_cast<int>(m_socket.socketDescriptor()); }
    bool waitFor(short event, int timeoutMs) const;

    TcpSettings m_settings;
    QTcpSocket m_socket;
};

}  // namespace fxtools
