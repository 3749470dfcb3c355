// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The one object: constructed when the library is loaded, destroyed when it is unloaded. What the
// host owns is never freed here.

#include "driver/mitsubishi_fx1s.h"

#include "driver/integers.h"

Mitsubishi_fx1s driver;

Mitsubishi_fx1s::Mitsubishi_fx1s() = default;

Mitsubishi_fx1s::~Mitsubishi_fx1s() = default;

int wordsPerRequest()
{
    return qMax(1, driver.maxWordsPerFrame);
}

int bitsPerRequest()
{
    return driver.maxBitsPerFrame < 1 ? bitsPerArea : driver.maxBitsPerFrame;
}

int servedCount(int startIndex, int count)
{
    return static_cast<int>(qMin<qint64>(qBound(0, count, fxMaxElements), intsFrom(startIndex)));
}
