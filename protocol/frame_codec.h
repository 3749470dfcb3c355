// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Builds request frames from requests and judges the framing of replies. Builders append to the
// frame list of the driver, whose first element is the frame in flight.

#ifndef PROTOCOL_FRAME_CODEC_H
#define PROTOCOL_FRAME_CODEC_H

#include "driver/mitsubishi_fx1s.h"

enum class ReplyJudgement
{
    Rejected = 0,
    Data = 1,
    Acknowledged = 2
};

// Appends the frame that reads `var`.
void getReadFrame(VARIABLE& var);

// Appends the frame that forces the one bit of `var`, or that writes its words.
void getWriteFrame(VARIABLE& var);

// Judges a reply against the frame that waits for it.
ReplyJudgement judgeReply(const QByteArray& reply, const FRAME_PRO& frame);

// The same of `length` bytes against the frame in flight: a ReplyJudgement as a number.
int check_rcv_data(unsigned char* reply, int length);

#endif
