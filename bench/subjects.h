// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The two drivers under measurement, with methods named like the entry points: the library, through
// its exported functions, and the plain literal model that the tests compare it with.

#ifndef BENCH_SUBJECTS_H
#define BENCH_SUBJECTS_H

#include "tests/model/library_driver.h"
#include "tests/model/model_driver.h"

using Library = LibraryDriver;
using Model = ModelDriver;

#endif
