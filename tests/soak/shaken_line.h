// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A virtual line that can be cut in every call of the host, in the middle of what it carries too,
// and that remembers what the PLC held when a frame of the host had come to it.

#pragma once

#include "tests/tools/support/virtual_line.h"

#include <functional>

namespace fxsoak {

class ShakenLine : public tool_tests::VirtualLine
{
public:
    // Called before each send and receive of the host: the world goes on meanwhile.
    std::function<void()> onCall;

    using VirtualLine::VirtualLine;

    // A PLC with a serial port sends on into a cut cable; a connection is gone with all it carried.
    void setSerial(bool isSerial) { m_isSerial = isSerial; }

    // The call that is on its way carries `share` of its bytes; then the link is gone until open(),
    // which returns `forUs` later.
    void cut(double share, qint64 forUs);
    void close(qint64 forUs);  // by the host itself
    qint64 cuts(bool whileSending) const { return m_cuts[whileSending]; }

    void open() override;
    bool isOpen() const override { return !m_isCut && VirtualLine::isOpen(); }
    bool send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;

    // A frame of the host and what it came to.
    struct Attempt
    {
        fxsim::PlcMemory memory;  // of the PLC, right behind it
        bool wasWritten = false;  // the PLC carried out a write
    };
    const std::vector<Attempt>& attempts() const { return m_attempts; }
    void forgetAttempts() { m_attempts.clear(); }

private:
    bool deliver(const QByteArray& bytes);
    qint64 writesCarriedOut();

    bool m_isSerial = true;
    bool m_isCut = false;
    std::optional<double> m_share;  // set while a call is cut
    qint64 m_cutUntilUs = 0;
    std::array<qint64, 2> m_cuts = {};
    std::vector<Attempt> m_attempts;
};

}  // namespace fxsoak
