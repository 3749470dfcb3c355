// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The blocks of the polling plan. The driver does not show its plan, but the frames that it returns
// are the blocks of the plan in turn, and each carries its request.

#pragma once

#include "tools/exchange/driver_session.h"

namespace fxtools {

// What one read request covers. A bit request counts bytes.
RegisterRange blockRange(const RegisterCatalogue& catalogue, const VARIABLE& request);

// How many registers one write frame sets: its request counts words, also of counters, and bits one
// by one.
int writtenRegisters(const RegisterType& type, const VARIABLE& request);

// The registers that a frame reads or writes.
RegisterRange requestRange(const RegisterCatalogue& catalogue, const FRAME_PRO& frame);

bool isInside(const RegisterRange& inner, const RegisterRange& outer);
bool overlap(const RegisterRange& one, const RegisterRange& other);
QString fromToText(const RegisterRange& range);  // "D100 … D131"

// Throws Failure if one reply cannot bring all registers of a value.
void requireOneReply(const RegisterRange& value, int wordsPerFrame);

// The plan for `ranges`, block by block, without a link: every frame is taken from the driver and
// fails at once. Replaces the session's plan by an empty one.
QVector<FRAME_PRO> planOf(DriverSession& session, const QVector<RegisterRange>& ranges);

}  // namespace fxtools
