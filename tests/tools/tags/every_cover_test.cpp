// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The shortest cover of every set of up to twelve numbers in a row of places, against a table that
// knows nothing of runs: its row for a set of places is the least, over all blocks that cover the
// lowest of them, of the block's cost and the row for the places that the block leaves. The same
// for every set of values of up to three numbers, which may share some, in a row of six.

#include "tests/support/times_shorter.h"
#include "tools/tags/shortest_plan.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

using namespace fxtools;

namespace {

using Places = std::uint32_t;  // a bit each

constexpr int placeCount = timesShorter > 1 ? 16 : 24;
constexpr int mostInSet = 12;
constexpr Places setCount = Places(1) << placeCount;
constexpr int sharedPlaces = 6;

Places block(int first, int width)
{
    return ((Places(1) << width) - 1) << first;
}

int leastCost(Places wanted, const BlockCost& cost, const std::vector<int>& least)
{
    const int lowest = __builtin_ctz(wanted);
    int best = std::numeric_limits<int>::max();
    for (int width = 1; width <= cost.mostNumbers; ++width) {
        for (int first = std::max(lowest - width + 1, 0); first <= lowest; ++first) {
            const int own = static_cast<int>(cost.fixed + cost.perNumber * width);
            best = std::min(best, own + least[wanted & ~block(first, width)]);
        }
    }
    return best;
}

int costOfBlocks(const QVector<Span>& blocks, const BlockCost& cost)
{
    int sum = 0;
    for (const Span& one : blocks)
        sum += static_cast<int>(cost.fixed + cost.perNumber * one.width());
    return sum;
}

bool isWhole(const Span& value, const QVector<Span>& blocks)
{
    return std::any_of(blocks.begin(), blocks.end(), [&value](const Span& one) {
        return one.first <= value.first && value.last <= one.last;
    });
}

// The same for a set of values, a bit each.
int leastCost(Places wanted, const QVector<Span>& all, const BlockCost& cost,
              const std::vector<int>& least)
{
    const Span& lowest = all[__builtin_ctz(wanted)];
    int best = std::numeric_limits<int>::max();
    for (int first = 0; first <= lowest.first; ++first) {
        for (int last = lowest.last; last < first + cost.mostNumbers; ++last) {
            Places left = wanted;
            for (int value = 0; value < all.size(); ++value) {
                if (isWhole(all[value], {{first, last}}))
                    left &= ~(Places(1) << value);
            }
            const Span read = {first, last};
            best = std::min(best, costOfBlocks({read}, cost) + least[left]);
        }
    }
    return best;
}

Places covered(const QVector<Span>& blocks)
{
    Places places = 0;
    for (const Span& one : blocks)
        places |= block(one.first, one.width());
    return places;
}

bool allFit(const QVector<Span>& blocks, int mostNumbers)
{
    return std::all_of(blocks.begin(), blocks.end(), [mostNumbers](const Span& one) {
        return one.width() >= 1 && one.width() <= mostNumbers;
    });
}

QVector<Span> valuesOf(Places wanted)
{
    QVector<Span> values;
    values.reserve(mostInSet);
    for (Places left = wanted; left != 0; left &= left - 1)
        values.append({__builtin_ctz(left), __builtin_ctz(left)});
    return values;
}

class EveryCover : public testing::TestWithParam<BlockCost>
{};

}  // namespace

TEST_P(EveryCover, CostsNoMoreThanAnyOther)
{
    const BlockCost& cost = GetParam();
    std::vector<int> least(setCount, 0);
    for (Places wanted = 1; wanted < setCount; ++wanted) {
        if (__builtin_popcount(wanted) > mostInSet)
            continue;
        least[wanted] = leastCost(wanted, cost, least);
        const QVector<Span> blocks = shortestCover(valuesOf(wanted), cost);
        ASSERT_TRUE(allFit(blocks, cost.mostNumbers)) << "places " << std::hex << wanted;
        ASSERT_EQ(wanted & ~covered(blocks), 0U) << "places " << std::hex << wanted;
        ASSERT_EQ(costOfBlocks(blocks, cost), least[wanted]) << "places " << std::hex << wanted;
    }
}

TEST_P(EveryCover, OfValuesThatShareNumbersCostsNoMoreThanAnyOther)
{
    const BlockCost cost = {GetParam().fixed, GetParam().perNumber, 5};
    QVector<Span> all;
    for (int first = 0; first < sharedPlaces; ++first) {
        for (int last = first; last < qMin(first + 3, sharedPlaces); ++last)
            all.append({first, last});
    }
    std::vector<int> least(size_t(1) << all.size(), 0);
    for (Places wanted = 1; wanted < least.size(); ++wanted) {
        least[wanted] = leastCost(wanted, all, cost, least);
        QVector<Span> values;
        for (Places left = wanted; left != 0; left &= left - 1)
            values.append(all[__builtin_ctz(left)]);
        const QVector<Span> blocks = shortestCover(values, cost);
        ASSERT_TRUE(allFit(blocks, cost.mostNumbers)) << "values " << std::hex << wanted;
        for (const Span& value : values)
            ASSERT_TRUE(isWhole(value, blocks)) << "values " << std::hex << wanted;
        ASSERT_EQ(costOfBlocks(blocks, cost), least[wanted]) << "values " << std::hex << wanted;
    }
}

// In characters at 9600 baud, with a turnaround of 20 ms or none: 15 or 34 for each block, and two
// for each byte.
INSTANTIATE_TEST_SUITE_P(Words, EveryCover,
                         testing::Values(BlockCost{34, 4, 8}, BlockCost{15, 4, 24},
                                         BlockCost{15, 4, 5}));
INSTANTIATE_TEST_SUITE_P(BytesOfBits, EveryCover, testing::Values(BlockCost{34, 2, 18}));
INSTANTIATE_TEST_SUITE_P(Counters, EveryCover,
                         testing::Values(BlockCost{34, 8, 16}, BlockCost{15, 8, 3}));
