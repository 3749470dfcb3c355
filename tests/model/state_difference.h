// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Compares the whole state of the library's object with the model's.

#ifndef TESTS_MODEL_STATE_DIFFERENCE_H
#define TESTS_MODEL_STATE_DIFFERENCE_H

#include "tests/model/model_driver.h"

#include <string>

// Describes the first difference, "" when there is none. Without `deep` only what is quick to
// compare: numbers, and how long the lists are.
std::string stateDifference(const ModelDriver& model, bool deep);

// Gives the library's object the state in which the library is loaded.
void reloadDriver();

#endif
