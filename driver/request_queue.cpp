// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The duplicate rule of the queues.

#include "driver/request_queue.h"

#include "driver/intf.h"

bool isSameRequest(const VARIABLE& a, const VARIABLE& b)
{
    return a.addressIndex == b.addressIndex && a.count == b.count && a.stationNo == b.stationNo &&
           a.registerType == b.registerType;  // the text last: it costs most
}

void enqueueRequest(QList<VARIABLE>& queue, const VARIABLE& request)
{
    const int size = static_cast<int>(queue.size());
    for (int i = size - 1; i > 0; --i) {
        if (isSameRequest(queue.at(i), request)) {
            queue[i] = request;
            return;
        }
    }
    if (size < fxMaxQueuedRequests)
        queue.append(request);
    else
        queue[fxMaxQueuedRequests - 1] = request;
}
