// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The pair of drivers that most targets run: the library with every callback explained and its
// state sound, beside the model.

#ifndef FUZZ_SUPPORT_DRIVER_PAIR_H
#define FUZZ_SUPPORT_DRIVER_PAIR_H

#include "fuzz/support/fuzz_target.h"
#include "tests/model/choices.h"
#include "tests/model/driver_properties.h"
#include "tests/model/session_world.h"
#include "tests/model/side_by_side.h"

class FuzzedPair : public SideBySide
{
public:
    // The one pair, as new: building another for each input would cost more than the input.
    static FuzzedPair& fresh()
    {
        static FuzzedPair pair;
        pair.reload();
        SideBySide::show = showAnswer;
        pair.library.observe = [](int linkNo, int stationNo, const QString& text, int value) {
            require(unexplainedCallback(linkNo, stationNo, text, value));
        };
        return pair;
    }

    // Both agree after a call, and the library's state is sound.
    static void agree(const std::string& difference)
    {
        require(difference);
        require(brokenState());
    }

    // The same of everything that both hold; for the end of an input.
    void agreeInAll() const
    {
        require(deepDifference());
        require(brokenCache());
    }
};

#endif
