// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What stands before the declaration of each function that the driver exports.

#ifndef DRIVER_ENTRY_POINT_H
#define DRIVER_ENTRY_POINT_H

#define FX_EXPORT __attribute__((visibility("default")))
#define FX_ENTRY_POINT extern "C" FX_EXPORT

#endif
