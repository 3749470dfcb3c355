// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One duplicate rule and one limit for both queues of the host: its writes and its one-off reads.

#ifndef DRIVER_REQUEST_QUEUE_H
#define DRIVER_REQUEST_QUEUE_H

#include "driver/records.h"

#include <QList>

// True when both ask for the same run of registers; tag and data are not compared.
bool isSameRequest(const VARIABLE& a, const VARIABLE& b);

// Puts `request` into `queue`: in place of the newest equal one, or else at the end, or, when the
// queue is full, in place of the last. The head may be in flight and is never replaced.
void enqueueRequest(QList<VARIABLE>& queue, const VARIABLE& request);

#endif
