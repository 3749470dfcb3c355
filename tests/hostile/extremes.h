// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The numbers that no sum or product of an int may go beyond.

#ifndef TESTS_HOSTILE_EXTREMES_H
#define TESTS_HOSTILE_EXTREMES_H

constexpr int largest = 2147483647;
constexpr int smallest = -2147483647 - 1;

#endif
