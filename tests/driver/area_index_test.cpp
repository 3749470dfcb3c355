// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The look-aside of the cache: whatever happens to the list of areas, also behind its back, it
// answers as a scan from the first area upward would.

#include "driver/area_index.h"
#include "tests/support/record_text.h"

#include <gtest/gtest.h>

#include <random>

namespace {
_DATA_ areaOf(const char* registerType, int startIndex, int stationNo = 1)
{
    _DATA_ made;
    made.stationNo = stationNo;
    made.registerType = QString::fromLatin1(registerType);
    made.startIndex = startIndex;
    return made;
}

int scan(const QList<_DATA_>& areas, const _DATA_& key)
{
    for (int i = 0; i < areas.size(); ++i) {
        const _DATA_& area = areas.at(i);
        if (area.stationNo == key.stationNo && area.registerType == key.registerType &&
            area.startIndex == key.startIndex)
            return i;
    }
    return -1;
}

class AreaIndexTest : public ::testing::Test
{
protected:
    int find(const _DATA_& key)
    {
        return index.findOrAppend(areas, key.stationNo, key.registerType, key.startIndex);
    }
    void fill(int count)
    {
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(i, find(areaOf("D", i)));
    }

    AreaIndex index;
    QList<_DATA_> areas;
};

TEST_F(AreaIndexTest, FindsWhatWasAppended)
{
    fill(1000);
    EXPECT_EQ(0, find(areaOf("D", 0)));
    EXPECT_EQ(999, find(areaOf("D", 999)));
    EXPECT_EQ(1, find(areaOf("D", 1)));
    EXPECT_EQ(1000, areas.size());
    EXPECT_EQ(1000, find(areaOf("D", 0, 2)));
    EXPECT_EQ(1001, find(areaOf("d", 0)));
}

// An empty list shares its data with every other empty one: an edit of it must not leave the index
// with the places of the list that it knew before.
TEST_F(AreaIndexTest, ForgetsItsListWhenAnEmptyOneIsEdited)
{
    fill(10);
    areas = QList<_DATA_>();
    {
        const AreaIndex::Edit edit(index, areas);
    }
    EXPECT_EQ(0, find(areaOf("D", 3)));
    EXPECT_EQ("1#D3", textOf(areas));
}

TEST_F(AreaIndexTest, FindsTheFirstOfEqualAreasAlsoNextToTheOneFoundLast)
{
    areas << areaOf("D", 6) << areaOf("D", 5) << areaOf("D", 6);
    ASSERT_EQ(1, find(areaOf("D", 5)));
    EXPECT_EQ(0, find(areaOf("D", 6)));
}

TEST_F(AreaIndexTest, EditBesideEqualAreasStillFindsTheFirst)
{
    areas << areaOf("D", 1) << areaOf("D", 0) << areaOf("D", 1);
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(1, find(areaOf("D", 0)));  // the second of the equal areas is the next one
        const AreaIndex::Edit edit(index, areas);
        areas[1].valueBuffer0[0] = 9;
    }
    EXPECT_EQ(1, find(areaOf("D", 0)));
    EXPECT_EQ(0, find(areaOf("D", 1)));
}

TEST_F(AreaIndexTest, CopyOfTheListKeepsItsValues)
{
    fill(3);
    const QList<_DATA_> copy = areas;
    {
        const AreaIndex::Edit edit(index, areas);
        areas[0].valueBuffer0[0] = 9;
    }
    EXPECT_EQ(3, find(areaOf("M", 0)));
    EXPECT_EQ(3, copy.size());
    EXPECT_EQ(0, copy.at(0).valueBuffer0[0]);
    EXPECT_EQ(9, areas.at(0).valueBuffer0[0]);
}

TEST_F(AreaIndexTest, OneIndexServesTwoListsInTurn)
{
    fill(5);
    QList<_DATA_> other;
    other << areaOf("D", 4);
    EXPECT_EQ(0, index.findOrAppend(other, 1, QString::fromLatin1("D"), 4));
    EXPECT_EQ(4, find(areaOf("D", 4)));
    EXPECT_EQ(1, index.findOrAppend(other, 1, QString::fromLatin1("D"), 3));
    EXPECT_EQ(5, areas.size());
}

TEST_F(AreaIndexTest, ExtremeKeysAreKeysLikeAnyOther)
{
    const _DATA_ keys[] = {areaOf("D", 2147483647, -1), areaOf("D", -2147483647 - 1, -1),
                           areaOf("", 0, 2147483647), areaOf("\xE4\xF6", -1, -2147483647 - 1)};
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(i, find(keys[i]));
    }
}

// Small steps of every sort; the seed is fixed, so that a failure can be repeated.
class RandomSteps
{
public:
    explicit RandomSteps(unsigned int seed) : m_random(seed) {}

    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned int>(limit)); }
    _DATA_ key()
    {
        static const char* const types[] = {"D", "M", "d"};
        const char* type = types[below(3)];
        const int startIndex = below(40);
        return areaOf(type, startIndex, below(2));
    }

private:
    std::minstd_rand m_random;
};

void changeBehindTheBack(QList<_DATA_>& areas, RandomSteps& steps)
{
    const int position = steps.below(static_cast<int>(areas.size()));
    switch (steps.below(5)) {
    case 0:
        areas << steps.key();
        break;
    case 1:
        areas[position] = steps.key();
        break;
    case 2:
        areas.removeAt(position);
        break;
    case 3:
        areas.prepend(steps.key());
        break;
    default:
        if (steps.below(20) == 0)
            areas.clear();
        else if (steps.below(20) == 0)
            areas = QList<_DATA_>() << steps.key() << areas.at(position);
    }
}

TEST_F(AreaIndexTest, AnswersAsAScanThroughAnyRunOfChanges)
{
    RandomSteps steps(20261);
    _DATA_ key = steps.key();
    for (int step = 0; step < 20000; ++step) {
        if (steps.below(3) == 0)
            key = steps.key();
        else
            key.startIndex = (key.startIndex + 1) % 40;  // a run, as most reads are
        const int known = scan(areas, key);
        const int wanted = known < 0 ? static_cast<int>(areas.size()) : known;
        ASSERT_EQ(wanted, find(key)) << "step " << step;
        if (steps.below(3) == 0) {
            const AreaIndex::Edit edit(index, areas);
            areas[wanted].valueBuffer0[0] ^= 1U;
        }
        if (steps.below(6) == 0)
            changeBehindTheBack(areas, steps);
    }
}
}  // namespace
