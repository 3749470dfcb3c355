// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Takes the data of an accepted reply into the cache and, during an upload, into recipe memory;
// marks what a failed read leaves stale.

#ifndef PROTOCOL_REPLY_DECODING_H
#define PROTOCOL_REPLY_DECODING_H

#include "address/register_types.h"
#include "driver/records.h"

#include <QByteArray>

// What a read covers. Held by value, since callbacks may change the lists.
struct ReadRange
{
    explicit ReadRange(const FRAME_PRO& frame);

    const RegisterType* type;  // null: nothing is decoded
    int stationNo;
    int addressIndex;
    int dataStart;  // position of the first data character in the reply
    int dataChars;
};

// Stores the values of `reply`, telling the host of those that changed. Characters that a short
// reply lacks count as 0.
void storeReply(const ReadRange& range, const QByteArray& reply);

// Marks the areas of a failed read as stale, and as many again beyond them (three times as many
// for "32CV"), creating those that are missing.
void markStale(const ReadRange& range);

#endif
