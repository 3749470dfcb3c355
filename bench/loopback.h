// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A listening socket on a free loopback port, for servers that benchmarks start themselves.

#ifndef BENCH_LOOPBACK_H
#define BENCH_LOOPBACK_H

constexpr const char* loopbackAddress = "127.0.0.1";

// Descriptor of the socket, which the caller closes; -1 when there is none to be had.
int listenOnLoopback();

int portOf(int socket);

#endif
