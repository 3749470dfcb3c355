// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A simulated PLC on a line whose time is simulated too, so that delays, time-outs and seconds
// without power cost nothing. A fault may take the link away; open() waits until it is back.

#pragma once

#include "tools/exchange/exchange_loop.h"
#include "tools/fxsim/line/session.h"

namespace fxsoak {

class SoakLine : public fxtools::Link
{
public:
    explicit SoakLine(const fxsim::Settings& settings);

    QString name() const override { return QStringLiteral("soak"); }
    void open() override;
    bool isOpen() const override { return m_session.has_value(); }
    bool send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;

    fxsim::Simulator& plc() { return m_plc; }
    qint64 nowUs() const { return m_nowUs; }

private:
    qint64 m_nowUs = 0;
    qint64 m_backAtUs = 0;
    fxsim::Simulator m_plc;
    std::optional<fxsim::Session> m_session;
};

}  // namespace fxsoak
