// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How ranges of words and counters become read requests: cut to the word limit, sorted, joined as
// long as the block stays within the limit.

#include "tests/plan/plan_of_ranges.h"

namespace {
class WordMerge : public PlanOfRanges
{};

TEST_P(WordMerge, GivesPlan)
{
    mergeAndCompare();
}

const PlanRow wordRanges[] = {
    {"OneWord", 32, {{"D", 7, 1}}, "1#D7/1"},
    {"LengthOfTheLimitIsOnePiece", 32, {{"D", 0, 32}}, "1#D0/32"},
    {"OneMoreThanTheLimit", 32, {{"D", 0, 33}}, "1#D0/32 1#D32/1"},
    {"MultipleOfTheLimitGivesFullPieces", 32, {{"D", 5, 96}}, "1#D5/32 1#D37/32 1#D69/32"},
    {"SpanOfTheLimitJoins", 32, {{"D", 0, 10}, {"D", 30, 2}}, "1#D0/32"},
    {"SpanPastTheLimitOpensABlock", 32, {{"D", 0, 10}, {"D", 31, 2}}, "1#D0/10 1#D31/2"},
    {"IdenticalKeysGiveOneRequest", 32, {{"D", 5, 3}, {"D", 5, 3}}, "1#D5/3"},
    {"KeyInsideAnotherAddsNothing", 32, {{"D", 0, 20}, {"D", 5, 3}}, "1#D0/20"},
    {"KeyThatEndsWithTheBlockAddsNothing", 32, {{"D", 0, 20}, {"D", 15, 5}}, "1#D0/20"},
    {"KeyOneWordLongerGrowsTheBlock", 32, {{"D", 0, 20}, {"D", 15, 6}}, "1#D0/21"},
    {"NeighboursJoin", 32, {{"D", 0, 5}, {"D", 5, 5}}, "1#D0/10"},
    {"GapIsReadAlong", 32, {{"D", 0, 1}, {"D", 31, 1}}, "1#D0/32"},
    {"EqualStartsKeepTheLonger", 32, {{"D", 5, 2}, {"D", 5, 9}}, "1#D5/9"},
    {"EqualStartsKeepTheLongerInEitherOrder", 32, {{"D", 5, 9}, {"D", 5, 2}}, "1#D5/9"},
    {"OrderOfKeysDoesNotMatter",
     32,
     {{"D", 90, 1}, {"D", 0, 1}, {"D", 45, 1}},
     "1#D0/1 1#D45/1 1#D90/1"},
    {"ClosedBlockNeverGrowsAgain", 10, {{"D", 0, 4}, {"D", 8, 9}, {"D", 9, 1}}, "1#D0/4 1#D8/9"},
    {"PieceDroppedInsideTheOpenBlockOnly",
     10,
     {{"D", 0, 8}, {"D", 6, 10}, {"D", 7, 2}},
     "1#D0/8 1#D6/10"},
    {"ShorterLastPieceTakesTheNextKey", 32, {{"D", 0, 40}, {"D", 40, 5}}, "1#D0/32 1#D32/13"},
    {"LimitOneNeverJoins", 1, {{"D", 0, 3}}, "1#D0/1 1#D1/1 1#D2/1"},
    {"OverlappingLongKeys", 32, {{"D", 0, 64}, {"D", 16, 32}}, "1#D0/32 1#D16/32 1#D32/32"},
    {"SpecialRegisters", 32, {{"SD", 8000, 2}, {"SD", 8010, 1}}, "1#SD8000/11"},
    {"TimerValues", 32, {{"TV", 0, 2}, {"TV", 40, 1}}, "1#TV0/2 1#TV40/1"},
    {"CounterValues", 32, {{"CV", 0, 33}}, "1#CV0/32 1#CV32/1"},
    {"LongCountersAreCutInCounters", 32, {{"32CV", 200, 40}}, "1#32CV200/32 1#32CV232/8"},
    {"LongCountersJoinInCounters", 32, {{"32CV", 200, 1}, {"32CV", 231, 1}}, "1#32CV200/32"},
    {"WordTypesNeverJoinEachOther",
     32,
     {{"CV", 0, 1}, {"TV", 1, 1}, {"D", 0, 1}},
     "1#D0/1 1#TV1/1 1#CV0/1"},
};

INSTANTIATE_TEST_SUITE_P(Ranges, WordMerge, ::testing::ValuesIn(wordRanges), nameOf<PlanRow>);
}  // namespace
