// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The shortest plan beside the driver's own one, for sets of registers as they occur and as they
// come: never above it, and by how much it is below.

#include "tests/support/times_shorter.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/exchange/blocks.h"
#include "tools/tags/shortest_plan.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr LineCost lines[] = {{20000, 9600}, {0, 9600}, {35000, 19200}, {5000, 115200}};

class RandomSets
{
public:
    explicit RandomSets(unsigned seed) : m_random(seed) {}

    int below(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }

    std::set<int> among(int first, int width, int wanted)
    {
        std::set<int> numbers;
        while (static_cast<int>(numbers.size()) < wanted)
            numbers.insert(first + below(width));
        return numbers;
    }

    // Runs of some registers here and there, of all kinds.
    QVector<RegisterRange> ranges()
    {
        static const QVector<RegisterRange> wholes = {range("D0:8000"), range("SM8000:256"),
                                                      range("M0:3072"), range("32CV200:56"),
                                                      range("TV0:256")};
        QVector<RegisterRange> all;
        for (int left = 1 + below(60); left > 0; --left) {
            const RegisterRange& whole = wholes[below(wholes.size())];
            const int count = 1 + below(below(4) == 0 ? 50 : 3);
            const int window = std::min(whole.count, 100 << below(6));
            all.append(whole.part(below(window - count + 1), count));
        }
        return all;
    }

private:
    std::mt19937 m_random;
};

QVector<RegisterRange> wordsOf(const std::set<int>& numbers)
{
    QVector<RegisterRange> words;
    for (const int number : numbers)
        words.append(range("D0:8000").part(number, 1));
    return words;
}

Cost givenCost(const QVector<RegisterRange>& due, int words, const LineCost& line)
{
    DriverSession session(driver(), {1, words});
    Cost cost = 0;
    for (const FRAME_PRO& frame : planOf(session, due))
        cost +=
            line.turnaroundUs * line.baud + charactersCost(frame.frameLength + frame.replyLength);
    return cost;
}

// The numbers that a plan may count: registers, or bytes of eight bits, of each type.
std::map<QString, std::set<int>> numbersOf(const QVector<RegisterRange>& ranges)
{
    std::map<QString, std::set<int>> numbers;
    for (const RegisterRange& one : ranges) {
        for (int number = one.first; number < one.first + one.count; ++number)
            numbers[one.type.name].insert(one.type.isBit() ? number / 8 : number);
    }
    return numbers;
}

int mostNumbers(const RegisterType& type, int words)
{
    return type.width == RegisterWidth::DoubleWord ? words / 2 : words;
}

// The fewest blocks that reach all the numbers: each begins with the lowest that is left.
int fewestBlocks(const std::set<int>& numbers, int most)
{
    int blocks = 0;
    for (auto next = numbers.begin(); next != numbers.end();) {
        ++blocks;
        next = numbers.lower_bound(*next + most);
    }
    return blocks;
}

// No plan costs less than the fewest blocks with nothing in them, and each number once.
Cost bound(const QVector<RegisterRange>& due, int words, const LineCost& line)
{
    Cost sum = 0;
    for (const auto& [name, numbers] : numbersOf(due)) {
        const RegisterType& type = *catalogue().find(name);
        sum += fewestBlocks(numbers, mostNumbers(type, words)) * exchangeCost(line, 0) +
               charactersCost(2 * type.valueBytes() * static_cast<int>(numbers.size()));
    }
    return sum;
}

void expectSound(const QVector<RegisterRange>& due, int words, const LineCost& line)
{
    const QVector<PlannedBlock> plan = shortestPlan(due, words, line);
    QVector<RegisterRange> read;
    QVector<RegisterRange> wanted;
    for (const PlannedBlock& block : plan) {
        read.append(block.registers);
        wanted += block.due;
        EXPECT_LE(block.bytes(), 2 * words);
        EXPECT_LE(block.registers.count, (block.registers.type.isBit() ? 8 : 1) *
                                             mostNumbers(block.registers.type, words));
        for (const RegisterRange& one : block.due)
            EXPECT_TRUE(isInside(one, block.registers)) << one.text().toStdString();
    }
    EXPECT_EQ(numbersOf(wanted), numbersOf(due));
    for (const auto& [name, numbers] : numbersOf(due)) {
        for (const int number : numbers)
            EXPECT_EQ(numbersOf(read)[name].count(number), 1U) << name.toStdString() << number;
    }
    EXPECT_LE(costOf(plan, line), givenCost(due, words, line));
    EXPECT_GE(costOf(plan, line), bound(due, words, line));
}

// In per cent of the driver's own plan, over many sets.
template <typename MakeSet>
double savedPercent(const MakeSet& makeSet)
{
    constexpr int sets = 60;
    const LineCost& line = lines[0];
    Cost given = 0;
    Cost shortest = 0;
    for (unsigned seed = 0; seed < sets; ++seed) {
        RandomSets random(seed);
        const QVector<RegisterRange> due = wordsOf(makeSet(random));
        given += givenCost(due, 32, line);
        shortest += costOf(shortestPlan(due, 32, line), line);
    }
    return 100.0 * static_cast<double>(given - shortest) / static_cast<double>(given);
}

std::set<int> sixAreas(RandomSets& random, int width, int wordsInEach)
{
    std::set<int> words;
    for (int area = 0; area < 6; ++area)
        words.merge(random.among(1000 * area, width, wordsInEach));
    return words;
}

}  // namespace

TEST(Saving, IsNeverNegativeAndNoBlockMissesOrExceedsAnything)
{
    for (unsigned seed = 0; seed < 150 / timesShorter && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomSets random(seed);
        const int words = seed % 3 == 0 ? 2 + random.below(31) : 32;
        expectSound(random.ranges(), words, lines[seed % 4]);
    }
}

TEST(Saving, OfAreasIsAFewPercent)
{
    EXPECT_NEAR(savedPercent([](RandomSets& random) { return sixAreas(random, 70, 20); }), 6, 1.5);
}

TEST(Saving, OfWideAreasIsASixth)
{
    EXPECT_NEAR(savedPercent([](RandomSets& random) { return sixAreas(random, 110, 10); }), 17,
                1.5);
}

TEST(Saving, OfScatteredWordsIsAFifth)
{
    EXPECT_NEAR(savedPercent([](RandomSets& random) { return random.among(0, 1000, 40); }), 22,
                1.5);
}

// The driver joins two of them at a time over 29 words between them.
TEST(Saving, OfWordsThirtyApartIsHalf)
{
    std::set<int> words;
    for (int word = 0; word < 24; ++word)
        words.insert(30 * word);
    EXPECT_NEAR(savedPercent([&words](RandomSets&) { return words; }), 51.7, 0.05);
}
