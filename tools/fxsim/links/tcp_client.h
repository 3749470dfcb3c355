// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host that connected over TCP. Its bytes go through the bare descriptor: the buffers and signals
// of a socket object would cost as much as the PLC itself. Deletes itself when the host
// disconnects.

#pragma once

#include "tools/fxsim/links/link.h"

#include <QSocketNotifier>

namespace fxsim {

class TcpClient : public QObject
{
    Q_OBJECT

public:
    // Owns `descriptor`, a connected socket. `name` is that of the host in the trace.
    TcpClient(Simulator& simulator, const Clock& clock, int descriptor, const QByteArray& name,
              QObject* parent);
    ~TcpClient() override;

signals:
    void linkTaken(int forMs);

private:
    void readAvailable();
    int write(const QByteArray& bytes) const;

    int m_descriptor;
    QSocketNotifier m_notifier;
    HostConnection m_host;
};

}  // namespace fxsim
