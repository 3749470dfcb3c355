// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host write is mirrored into the cache at once and queued for the PLC; when its exchange ends,
// the mirrored value is confirmed or dropped, and the host told either way.

#ifndef CACHE_WRITE_VALUES_H
#define CACHE_WRITE_VALUES_H

#include "driver/mitsubishi_fx1s.h"

// Queues one write by the rules of the request queue.
void addVarToList(QList<VARIABLE>& list, VARIABLE& var);

// Mirrors a host write into the cache and reports each monitored element that it changes.
// `count` and `data` as in intf_setData.
void write_saveDataToArea(int stationNo, QString registerType, int startIndex, int count,
                          unsigned char* data);

// Ends a write: 1 confirms the mirrored values, anything else drops them. Reports every monitored
// element of it, changed or not.
void write_FailOrSuc(int stationNo, QString registerType, int startIndex, int count, int success);

#endif
