// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the simulator has counted since it started. Sessions count; the `stats` command and --stats
// print.

#pragma once

#include "tools/fxsim/faults/faults.h"
#include "tools/fxsim/line/frame_server.h"

#include <QByteArray>

#include <array>

namespace fxsim {

struct Statistics
{
    qint64 exchanges = 0;  // frames that came whole, answered or not
    qint64 reads = 0;
    qint64 writes = 0;
    qint64 forces = 0;
    std::array<qint64, verdictKinds> verdicts{};
    std::array<qint64, faultKinds> faults{};
    qint64 enquiries = 0;
    qint64 overlongFrames = 0;
    qint64 ungreetedFrames = 0;  // left unanswered because no ENQ came first
    qint64 junkCharacters = 0;
    qint64 ignoredCharacters = 0;  // arrived while the PLC was off
    qint64 charactersIn = 0;
    qint64 charactersOut = 0;
    qint64 charactersLost = 0;  // the host did not read them
    qint64 clients = 0;
    qint64 powerCycles = 0;

    void countRequest(const Request& request);
    QByteArray text() const;
};

}  // namespace fxsim
