// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A TCP connection to a serial server, or to a simulator that listens. Qt connects; the bytes then
// go past its socket object, by the descriptor: the object's buffers and notifiers serve an event
// loop, which this program has none of, and would cost as much as the rest of an exchange.

#pragma once

#include "tools/link/link.h"
#include "tools/link/link_settings.h"

#include <QTcpSocket>

namespace fxtools {

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
