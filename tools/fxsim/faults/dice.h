// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Random numbers that are the same on every machine. Those of exchange n depend on the seed and on
// n alone, so that one fault more or less changes nothing in the other exchanges.

#pragma once

#include <QtGlobal>

namespace fxsim {

class Dice
{
public:
    Dice(quint64 seed, qint64 exchange)
        : m_state(mixed(mixed(seed + increment) + static_cast<quint64>(exchange)))
    {}

    quint64 next() { return mixed(m_state += increment); }
    int below(int limit)
    {
        return static_cast<int>(next() % static_cast<quint64>(limit));
    }  // 0 to limit - 1
    double fraction()
    {
        return static_cast<double>(next() >> 11) / static_cast<double>(1ULL << 53);
    }  // 0 to just under 1

private:
    static constexpr quint64 increment =
        0x9E3779B97F4A7C15;  // SplitMix64, and the two factors below

    static quint64 mixed(quint64 value)
    {
        value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9;
        value = (value ^ value >> 27) * 0x94D049BB133111EB;
        return value ^ value >> 31;
    }

    quint64 m_state;
};

}  // namespace fxsim
