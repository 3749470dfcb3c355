// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Cuts a range of elements into pieces that fit one frame each: full ones and, when something is
// left over, a shorter last one.

#ifndef PLAN_PIECES_H
#define PLAN_PIECES_H

#include "driver/mitsubishi_fx1s.h"

class PieceCutter
{
public:
    // Cuts as many of `length` elements as one call serves. `limit` is at least 1.
    PieceCutter(int startIndex, int length, int limit)
        : m_startIndex(startIndex), m_length(servedCount(startIndex, length)), m_limit(limit)
    {}

    int pieceCount() const { return m_length / m_limit + (m_length % m_limit != 0 ? 1 : 0); }
    int start(int piece) const { return m_startIndex + piece * m_limit; }
    int length(int piece) const { return qMin(m_limit, m_length - piece * m_limit); }

private:
    int m_startIndex;
    int m_length;
    int m_limit;
};

#endif
