// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Whole host sessions: the bytes choose the calls, their arguments, the replies, the request bytes
// and what the host does inside its callback. Asserted after each call:
//  - state is sound: queues within 513, at most one frame in flight and well formed, no twins;
//  - the model answers the same and holds the same state.

#include "fuzz/support/driver_pair.h"

#include "tests/model/session.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    ByteChoices choices(bytes, byteCount);
    Session session(choices);
    session.inspect = brokenState;
    require(session.play(400));
    require(brokenCache());
    return 0;
}
