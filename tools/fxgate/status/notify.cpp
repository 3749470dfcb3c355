// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/status/notify.h"

#include <cstdint>
#include <ctime>

#include <systemd/sd-daemon.h>

namespace fxgate {

void notifyReady()
{
    sd_notify(0, "READY=1");
}

void notifyReloading()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    sd_notifyf(0, "RELOADING=1\nMONOTONIC_USEC=%lld",
               static_cast<long long>(now.tv_sec) * 1000000 + now.tv_nsec / 1000);
}

void notifyStopping()
{
    sd_notify(0, "STOPPING=1");
}

void notifyAlive()
{
    sd_notify(0, "WATCHDOG=1");
}

int watchdogMs()
{
    std::uint64_t limitUs = 0;
    return sd_watchdog_enabled(0, &limitUs) > 0 ? static_cast<int>(limitUs / 1000 / 3) : 0;
}

}  // namespace fxgate
