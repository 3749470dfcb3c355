// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// From the characters of an accepted reply to the bytes that they stand for.

#ifndef PROTOCOL_REPLY_DECODING_H
#define PROTOCOL_REPLY_DECODING_H

#include "driver/records.h"

#include <QByteArray>

#include <vector>

// Data characters of a whole reply, as far as they are decoded, or marked as stale when it fails:
// those of fxMaxElements counters. A frame limit beyond all that a PLC can address must not cost
// the host its memory.
int dataChars(const FRAME_PRO& frame);

// The bytes of a reply to `frame`; those that a short reply lacks are 0.
std::vector<unsigned char> decodeReply(const FRAME_PRO& frame, const QByteArray& reply);

#endif
