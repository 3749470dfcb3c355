// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Runs the benchmarks of all files.

#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
