// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What must hold of the driver at any time, whatever a host or a line does. The fuzz targets and
// the hostile tests assert it; each check answers "" or says what is broken.

#ifndef TESTS_MODEL_DRIVER_PROPERTIES_H
#define TESTS_MODEL_DRIVER_PROPERTIES_H

#include "driver/intf.h"

#include <string>

// Lists within their limits, at most one frame in flight and well formed, counters within bounds.
std::string brokenState();

// No area has a twin, nor has a waiting request; flags and marks keep within their bits.
std::string brokenCache();

// STX, command, upper-case hexadecimal digits, ETX and the right sum, in the length that the
// command asks for and within the record.
std::string malformed(const FRAME_PRO& frame);

// A callback names the link and a monitored element, the end of a one-off read, or a recipe word.
std::string unexplainedCallback(int linkNo, int stationNo, const QString& text, int value);

#endif
