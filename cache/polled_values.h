// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a read of the PLC leaves in the cache: its values, or the marks of its failure.

#ifndef CACHE_POLLED_VALUES_H
#define CACHE_POLLED_VALUES_H

#include <QString>

#include <vector>

// Stores the values that a read has brought, one after the other from `startIndex` on, and tells
// the host of those that changed; during an upload each goes to recipe memory as well. Areas are
// numbered from `startIndex` on, also when a bit read does not start on a multiple of eight.
void storePolledValues(int stationNo, QString registerType, int startIndex,
                       const std::vector<unsigned char>& bytes);

// Marks `areaCount` areas as stale, creating those that are missing.
void markStale(int stationNo, QString registerType, int startIndex, int areaCount);

#endif
