// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A simulated PLC on a line whose time is simulated too: waiting costs nothing and every run is
// the same to the microsecond. What goes wrong on it is set by the simulator's fault plan, or later
// by a new one; registers that the PLC is to refuse are taken out of its memory. A link that a
// fault took away is there again when open() returns, as much later as the fault lasts.

#pragma once

#include "tests/tools/support/loaded_driver.h"
#include "tools/exchange/plan_cycle.h"
#include "tools/fxsim/line/session.h"

#include <QByteArrayList>

namespace tool_tests {

class VirtualLine : public fxtools::Link
{
public:
    explicit VirtualLine(const fxsim::Settings& settings);

    QString name() const override { return "virtual"; }
    void open() override;
    bool isOpen() const override { return m_session.has_value(); }
    bool send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;
    void rest(qint64 timeUs) { m_nowUs += timeUs; }  // what comes meanwhile waits for the host

    fxsim::PlcMemory& memory() { return m_plc.memory(); }
    fxsim::Simulator& plc() { return m_plc; }
    qint64 nowUs() const { return m_nowUs; }
    const QByteArrayList& sent() const { return m_sent; }  // by the host, a call each
    void forgetSent() { m_sent.clear(); }

    void setFaults(const char* faults);              // its exchanges count from 1 again
    void refuse(int firstAddress, int lastAddress);  // these bytes too, from now on
    void refuseNothing();

    // Settings of a loop that lives in this time.
    fxtools::LoopSettings loopSettings() const;

private:
    qint64 m_nowUs = 0;
    qint64 m_backAtUs = 0;
    fxsim::Simulator m_plc;
    std::optional<fxsim::Session> m_session;
    QByteArrayList m_sent;
};

// Fills the memory so that every 16-bit word names its own place, and tells what it holds.
void fillWithOwnAddresses(fxsim::PlcMemory& memory);
quint16 wordNaming(int byteAddress);

fxsim::Settings badLine(int baud, const char* faults,
                        fxsim::EnquiryMode enquiry = fxsim::EnquiryMode::Optional);

// A planner: a block for each range.
fxtools::Blocks apart(const QVector<fxtools::RegisterRange>& due);

// Byte addresses on the wire.
constexpr int addressOfD0 = 0x1000;
constexpr int addressOfM0 = 0x0100;
constexpr int addressOf32CV200 = 0x0C00;

constexpr int addressOfD(int number)
{
    return addressOfD0 + 2 * number;
}

// The driver, the exchange loop and a PLC on a virtual line, put together: what a test of the
// exchange floor stands on. What the PLC holds is looked up in its own memory.
struct Bench
{
    explicit Bench(const fxsim::Settings& settings = badLine(0, ""),
                   const fxtools::SessionSettings& sessionSettings = {})
        : line(settings), session(driver(), sessionSettings),
          loop(session, line, line.loopSettings())
    {}

    quint32 plcWord(int address) { return line.memory().value(address, 2); }
    quint32 plcDoubleWord(int address) { return line.memory().value(address, 4); }
    void setD(int number, quint32 value) { line.memory().setValue(addressOfD(number), 2, value); }
    void refuseD(int first, int last) { line.refuse(addressOfD(first), addressOfD(last) + 1); }

    VirtualLine line;
    fxtools::DriverSession session;
    fxtools::ExchangeLoop loop;
};

}  // namespace tool_tests
