// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How ranges of bits become read requests of whole bytes that start on multiples of eight.

#include "tests/plan/plan_of_ranges.h"

namespace {
class BitMerge : public PlanOfRanges
{};

TEST_P(BitMerge, GivesPlan)
{
    mergeAndCompare();
}

const PlanRow bitRanges[] = {
    {"SingleBitReadsItsByte", 32, {{"M", 5, 1}}, "1#M0/1"},
    {"LastBitOfAByte", 32, {{"M", 15, 1}}, "1#M8/1"},
    {"EightBits", 32, {{"M", 8, 8}}, "1#M8/1"},
    {"NineBits", 32, {{"M", 8, 9}}, "1#M8/2"},
    {"BitsOfOneByteJoin", 32, {{"M", 5, 1}, {"M", 6, 1}}, "1#M0/1"},
    {"GapIsReadAlong", 32, {{"M", 5, 1}, {"M", 20, 3}}, "1#M0/3"},
    {"LengthOfTheLimitIsOnePiece", 32, {{"M", 0, 256}}, "1#M0/32"},
    {"OneBitMoreThanTheLimit", 32, {{"M", 0, 257}}, "1#M0/32 1#M256/1"},
    {"MultipleOfTheLimit", 32, {{"M", 0, 512}}, "1#M0/32 1#M256/32"},
    {"SpanOfTheLimitJoins", 32, {{"M", 0, 1}, {"M", 248, 8}}, "1#M0/32"},
    {"SpanPastTheLimitOpensABlock", 32, {{"M", 0, 1}, {"M", 256, 1}}, "1#M0/1 1#M256/1"},
    {"SpanIsMeasuredFromTheStartOfTheByte", 1, {{"M", 7, 1}, {"M", 8, 1}}, "1#M0/1 1#M8/1"},
    {"TwoBytesOfTwo", 2, {{"M", 7, 1}, {"M", 8, 1}}, "1#M0/2"},
    {"IdenticalKeysGiveOneRequest", 32, {{"X", 3, 9}, {"X", 3, 9}}, "1#X0/2"},
    {"KeyInsideAnotherAddsNothing", 32, {{"Y", 0, 64}, {"Y", 17, 3}}, "1#Y0/8"},
    {"UnalignedPiecesOfALongKey", 1, {{"M", 5, 20}}, "1#M0/1 1#M8/1 1#M16/1"},
    {"UnalignedKeyIsCutBeforeItIsAligned", 2, {{"M", 5, 20}}, "1#M0/2 1#M16/1"},
    {"OrderOfKeysDoesNotMatter", 1, {{"S", 90, 1}, {"S", 0, 1}}, "1#S0/1 1#S88/1"},
    {"SpecialRelaysAlignTo8000", 32, {{"SM", 8001, 1}, {"SM", 8013, 1}}, "1#SM8000/2"},
    {"TimerContacts", 32, {{"T", 9, 1}}, "1#T8/1"},
    {"CounterContacts", 32, {{"C", 255, 1}}, "1#C248/1"},
    {"BitTypesNeverJoinEachOther",
     32,
     {{"S", 0, 1}, {"SM", 8000, 1}, {"X", 0, 1}, {"Y", 0, 1}},
     "1#X0/1 1#Y0/1 1#SM8000/1 1#S0/1"},
    {"ClosedBlockNeverGrowsAgain", 2, {{"M", 0, 8}, {"M", 16, 8}, {"M", 8, 1}}, "1#M0/2 1#M16/1"},
};

INSTANTIATE_TEST_SUITE_P(Ranges, BitMerge, ::testing::ValuesIn(bitRanges), nameOf<PlanRow>);

// The bytes of a piece are counted from its length alone.
const PlanRow oddities[] = {
    {"OffsetWithinTheByteIsNotCounted", 32, {{"M", 5, 8}}, "1#M0/1"},
    {"OffsetIsNotCountedForALaterPieceEither", 32, {{"M", 0, 1}, {"M", 13, 8}}, "1#M0/2"},
    {"PieceThatReachesPastItsByteIsDropped", 32, {{"M", 0, 8}, {"M", 7, 8}}, "1#M0/1"},
    {"OffsetOfALongRangeIsNotCounted", 32, {{"X", 7, 16}}, "1#X0/2"},
};

INSTANTIATE_TEST_SUITE_P(Oddities, BitMerge, ::testing::ValuesIn(oddities), nameOf<PlanRow>);
}  // namespace
