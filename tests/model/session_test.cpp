// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Random sessions, each named by its seed: the library answers every call as the model does.

#include "tests/model/session.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

constexpr int callsPerSession = 2000;

// For a longer run, or to repeat one session: FX_MODEL_SEED=395 FX_MODEL_SESSIONS=1
int fromEnvironment(const char* name, int otherwise)
{
    const char* const text = std::getenv(name);
    return text ? std::atoi(text) : otherwise;
}

std::string playSession(int seed)
{
    RandomChoices choices(static_cast<unsigned int>(seed));
    Session session(choices);
    return session.play(callsPerSession);
}

class ModelSession : public ::testing::TestWithParam<int>
{};

}  // namespace

TEST_P(ModelSession, LibraryAnswersAsTheModelDoes)
{
    const int sessions = fromEnvironment("FX_MODEL_SESSIONS", 10);
    const int firstSeed = fromEnvironment("FX_MODEL_SEED", 1) + GetParam() * sessions;
    for (int seed = firstSeed; seed < firstSeed + sessions; ++seed)
        ASSERT_EQ(playSession(seed), "") << "seed " << seed;
}

INSTANTIATE_TEST_SUITE_P(Share, ModelSession, ::testing::Range(0, 6));
