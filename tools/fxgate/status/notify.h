// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tells systemd how the service does; does nothing where no systemd has started it.

#pragma once

namespace fxgate {

void notifyReady();
void notifyReloading();  // followed by notifyReady()
void notifyStopping();
void notifyAlive();  // for the watchdog

int watchdogMs();  // how often it wants to hear that; 0: never

}  // namespace fxgate
