// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the benchmarks feed the driver: monitored ranges and well-formed replies.

#ifndef BENCH_WORKLOAD_H
#define BENCH_WORKLOAD_H

#include "driver/intf.h"

#include <QMutex>

#include <vector>

// A monitored range of "D" words.
KEY_ADDRESS wordKey(int station, int startIndex, int length);

// `wordCount` monitored words in ranges of a thousand.
QList<KEY_ADDRESS> wordRange(int station, int wordCount);

// Values of `wordCount` words: their number, or with every `changedEach`-th one `variant` off.
QByteArray wordPattern(int wordCount, int variant, int changedEach);

// The reply that carries those value bytes.
QByteArray readReply(const QByteArray& values);

#endif
