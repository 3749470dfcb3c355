// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// SIGINT, SIGTERM and SIGHUP end the event loop, so that links, files and counts are brought to a
// clean end.

#pragma once

#include <QSocketNotifier>

#include <memory>

namespace fxsim {

class EndSignals
{
public:
    EndSignals();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

}  // namespace fxsim
